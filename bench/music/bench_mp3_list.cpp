// Time from pointing Mp3's list at a folder of MP3 files to its entries
// being there, beside a sorted QDir listing of the same folder.
//   bench_mp3_list [files] [passes]
// The folder holds empty files named like songs; the cache is warm.

#include "music/FileList.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace {

double median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    const int files = argc > 1 ? std::atoi(argv[1]) : 10000;
    const int passes = argc > 2 ? std::atoi(argv[2]) : 11;

    QTemporaryDir dir;
    for (int i = 0; i < files; ++i) {
        QFile f(dir.filePath(QStringLiteral("%1 - Artist %2 - Song title.mp3").arg(i * 7919 % files).arg(i)));
        if (!f.open(QIODevice::WriteOnly))
            return 1;
    }
    QTemporaryDir other;
    FileList list;
    std::vector<double> ours, qdir;
    for (int pass = 0; pass < passes; ++pass) {
        list.setPath(other.path());
        QElapsedTimer t;
        t.start();
        list.setPath(dir.path());
        const int count = list.ListCount();
        ours.push_back(t.nsecsElapsed() / 1e6);
        if (count != files)
            return 2;

        t.restart();
        const QStringList names = QDir(dir.path(), QStringLiteral("*.mp3"), QDir::Name | QDir::IgnoreCase, QDir::Files).entryList();
        qdir.push_back(t.nsecsElapsed() / 1e6);
        if (names.size() != files)
            return 3;
    }
    std::printf("list of %d files, median of %d passes:\n", files, passes);
    std::printf("  FileList::setPath          %8.1f ms  (target <= 100 ms)\n", median(ours));
    std::printf("  QDir sorted entryList      %8.1f ms\n", median(qdir));
    return 0;
}
