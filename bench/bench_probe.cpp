// How long the start-up probe takes to give up when there is no network.
//   bench_probe [runs] [url]
// Run it where the machine has no route out (or inside `unshare -n`).

#include "platform/posix/RealConnection.h"

#include <QCoreApplication>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 10;
    const QString url = argc > 2 ? QString::fromLocal8Bit(argv[2]) : QStringLiteral("http://example.com/");
    RealConnection connection;
    std::vector<double> ms;
    int answered = 0;
    for (int i = 0; i < runs; ++i) {
        const auto t0 = std::chrono::steady_clock::now();
        answered += connection.probe(url) ? 1 : 0;
        ms.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - t0).count());
    }
    std::sort(ms.begin(), ms.end());
    std::printf("probe %s, %d runs (%d answered): median %.1f ms, min %.1f ms, max %.1f ms (target for a failure <= 1000 ms)\n",
                qPrintable(url), runs, answered, ms[ms.size() / 2], ms.front(), ms.back());
    return 0;
}
