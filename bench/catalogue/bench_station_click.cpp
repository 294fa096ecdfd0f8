// A station click to the first decoded audio, median of 10: from the
// button's click through the panel, the catalogue's URL and the real
// engine, on the local Icecast stream (Tafm s1, whose .asx names the mount),
// beside cvlc given the same URL in the same run. Runs itself in a network
// namespace of its own, where the catalogue's port 80 on 127.0.0.1 is free;
// its catalogue points every row at 127.0.0.1.

#include "ServicePeer.h"
#include "doubles/ScriptedPlatform.h"
#include "panel/Panel.h"
#include "platform/Platform.h"
#include "platform/vlc/RealMedia.h"
#include "platform/vlc/VlcStationEngine.h"
#include "shell/ShellForms.h"
#include "widgets/GlowButton.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMouseEvent>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QThread>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include "CvlcReference.h"

namespace {

using namespace benchref;




double median(std::vector<double> v)
{
    v.erase(std::remove(v.begin(), v.end(), NoAudio), v.end());
    if (v.empty())
        return NoAudio;
    std::sort(v.begin(), v.end());
    const size_t n = v.size();
    return n % 2 ? v[n / 2] : (v[n / 2 - 1] + v[n / 2]) / 2;
}

void click(QWidget *w)
{
    const QPointF at(2, 2);
    QMouseEvent down(QEvent::MouseButtonPress, at, w->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QMouseEvent up(QEvent::MouseButtonRelease, at, w->mapToGlobal(at), Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(w, &down);
    QApplication::sendEvent(w, &up);
}

// Into a network namespace of our own, once, with its loopback up.
void enterNamespace(char **argv)
{
    if (std::getenv("ZARVENT_BENCH_NETNS"))
        return;
    ::setenv("ZARVENT_BENCH_NETNS", "1", 1);
    std::vector<char *> args{const_cast<char *>("unshare"), const_cast<char *>("-n"), const_cast<char *>("sh"),
                             const_cast<char *>("-c"), const_cast<char *>("ip link set lo up && exec \"$0\" \"$@\"")};
    for (char **a = argv; *a; ++a)
        args.push_back(*a);
    args.push_back(nullptr);
    ::execvp("unshare", args.data());
    std::fprintf(stderr, "bench_station_click: cannot make a network namespace (needs root)\n");
    std::exit(77);
}

} // namespace

int main(int argc, char **argv)
{
    enterNamespace(argv);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    QTemporaryDir files;
    const QString web = files.filePath(QStringLiteral("web"));
    QDir().mkpath(web);
    if (!ServicePeer::run(QStringLiteral("tone.sh"), {files.filePath(QStringLiteral("tone.mp3")), QStringLiteral("6"), QStringLiteral("440")})) {
        std::fprintf(stderr, "no tone (sox, lame)\n");
        return 1;
    }
    ServicePeer icecast(QStringLiteral("icecast.sh"), {files.filePath(QStringLiteral("tone.mp3"))}, 240);
    if (!icecast.ok()) {
        std::fprintf(stderr, "icecast: %s\n", qPrintable(icecast.error()));
        return 1;
    }
    const QString mount = QStringLiteral("http://127.0.0.1:%1%2").arg(icecast.port()).arg(icecast.value(QStringLiteral("MOUNT")));
    QFile asx(web + QStringLiteral("/hi2.asx"));
    if (!asx.open(QIODevice::WriteOnly)
        || asx.write(QStringLiteral("<asx version=\"3.0\"><entry><ref href=\"%1\"/></entry></asx>\n").arg(mount).toUtf8()) <= 0)
        return 1;
    asx.close();
    ServicePeer http(QStringLiteral("http_port.sh"), {web, QStringLiteral("80")}, 240);
    if (!http.ok()) {
        std::fprintf(stderr, "http: %s\n", qPrintable(http.error()));
        return 1;
    }

    std::vector<double> panel, reference;
    {
        RealMedia media{QStringList{QStringLiteral("--quiet")}};
        ScriptedPlatform sp;
        Platform platform{sp.app, sp.dialogs, sp.connection, sp.shell, sp.process, sp.clock, sp.forms, sp.tray, sp.interfaces, media};
        defineForms(platform);
        sp.forms.Show(QStringLiteral("Tafm"));
        auto *p = sp.forms.get<Panel>(QStringLiteral("Tafm"));
        auto *engine = dynamic_cast<VlcStationEngine *>(p->player());
        VlcAudioTap &tap = engine->countDecodedAudio();
        GlowButton *s1 = p->stationButton(QStringLiteral("s1"));
        for (int i = 0; i < 10; ++i) {
            tap.reset();
            const auto t0 = SteadyClock::now();
            click(s1);
            const bool ok = waitFor([&] { return tap.firstAudioNs() != 0; }, 10000);
            panel.push_back(ok ? msBetween(t0, tap.firstAudioNs()) : NoAudio);
            p->stop_Click();
            waitFor([&] { return engine->playState() != 3; }, 2000);
            QThread::msleep(200);
        }
    }
    const QString url = QStringLiteral("http://127.0.0.1/hi2.asx");
    Cvlc cvlc;
    if (cvlc.start(200)) {
        for (int i = 0; i < 10; ++i)
            reference.push_back(cvlc.startTime(url));
    }
    std::printf("station click to first decoded audio, %s via Tafm s1, median of 10\n", qPrintable(url));
    std::printf("  Zarvent panel: %.1f ms (", median(panel));
    for (double v : panel)
        std::printf(" %.0f", v);
    std::printf(" )\n  cvlc:          %.1f ms (", median(reference));
    for (double v : reference)
        std::printf(" %.0f", v);
    std::printf(" )%s\n", reference.empty() ? " not measured: cvlc did not start" : "");
    return 0;
}
