// A station's road on real parts, the map to libvlc, against servers on 127.0.0.1 at
// the catalogue's fixed ports: in a network namespace of its own, with every host 127.0.0.1.
#include "ServicePeer.h"
#include "doubles/ScriptedPlatform.h"
#include "panel/Panel.h"
#include "platform/vlc/RealMedia.h"
#include "platform/vlc/VlcStationEngine.h"
#include "shell/Mainmap.h"
#include "shell/ShellForms.h"
#include "widgets/ClickLabel.h"
#include "widgets/GlowButton.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QTest>

#include <unistd.h>

class tst_station_road : public QObject {
    Q_OBJECT
    QTemporaryDir m_files;
    std::unique_ptr<ServicePeer> m_icecast, m_web, m_pls;
    RealMedia m_media{QStringList{QStringLiteral("--quiet")}}; // outlives the forms
    ScriptedPlatform sp;
    Platform m_platform{sp.app, sp.dialogs, sp.connection, sp.shell, sp.process, sp.clock, sp.forms, sp.tray, sp.interfaces, m_media};
    Panel *tafm = nullptr;
    VlcStationEngine *engine = nullptr;

    static void click(QWidget *w) { QTest::mouseClick(w, Qt::LeftButton, {}, QPoint(2, 2)); }
    // Real time and the panels' timers go on together until `done` or `ms` are up.
    bool runUntil(const std::function<bool()> &done, int ms)
    {
        QElapsedTimer t;
        t.start();
        do {
            QTest::qWait(16);
            sp.clock.advance(16);
        } while (!done() && t.elapsed() < ms);
        return done();
    }
    // The status line once it reads "Playing  <name>", or as it stands after `ms`.
    QString playing(Panel *p, const QString &name, int ms = 15000)
    {
        runUntil([&] { return p->cptn->text() == "Playing  " + name; }, ms);
        return p->cptn->text();
    }

private slots:
    void initTestCase()
    {
        for (const char *tool : {"icecast2", "ffmpeg", "sox", "lame", "python3"})
            if (!ServicePeer::haveTool(QLatin1String(tool)))
                QSKIP(qPrintable(QLatin1String(tool) + QStringLiteral(" is not installed")));
        // Port 80 serves Tafm s1's .asx (the Icecast mount, then a file) and s42's file;
        // port 8000 answers Tafm s3's "/" with a .pls of two files.
        const QString web = m_files.filePath(QStringLiteral("web")), pls = m_files.filePath(QStringLiteral("pls"));
        QVERIFY(QDir().mkpath(web + "/reliveradio") && QDir().mkpath(pls));
        QVERIFY(ServicePeer::run(QStringLiteral("tone.sh"), {web + "/first.mp3", QStringLiteral("20")}));
        QVERIFY(QFile::copy(web + "/first.mp3", web + "/reliveradio/reliveradio.mp3"));
        m_icecast = std::make_unique<ServicePeer>(QStringLiteral("icecast.sh"), QStringList{web + "/first.mp3"}, 150);
        const QString mount = QStringLiteral("http://127.0.0.1:%1%2").arg(m_icecast->port()).arg(m_icecast->value("MOUNT"));
        for (const auto &[path, text] :
             {std::pair{web + "/hi2.asx", "<asx version=\"3.0\"><entry><ref href=\"" + mount + "\"/></entry>"
                                          "<entry><ref href=\"http://127.0.0.1/second.mp3\"/></entry></asx>\n"},
              std::pair{pls + "/index.html", QStringLiteral("[playlist]\nNumberOfEntries=2\nFile1=http://127.0.0.1/first.mp3\nLength1=-1\n"
                                                            "File2=http://127.0.0.1/second.mp3\nLength2=-1\nVersion=2\n")}}) {
            QFile f(path);
            QVERIFY(f.open(QIODevice::WriteOnly) && f.write(text.toUtf8()) > 0);
        }
        m_web = std::make_unique<ServicePeer>(QStringLiteral("http_port.sh"), QStringList{web, "80"}, 150);
        m_pls = std::make_unique<ServicePeer>(QStringLiteral("http_port.sh"), QStringList{pls, "8000"}, 150);
        QVERIFY2(m_icecast->ok() && m_web->ok() && m_pls->ok(), qPrintable(m_icecast->error() + m_web->error() + m_pls->error()));
        sp.connection.connectedAnswer = true;
        defineForms(m_platform);
    }

    void fromTheMapToSoundAndPlaylists()
    {
        sp.forms.Show(QStringLiteral("Mainmap"));
        click(sp.forms.get<Mainmap>(QStringLiteral("Mainmap"))->Tn1);
        tafm = sp.forms.get<Panel>(QStringLiteral("Tafm"));
        engine = dynamic_cast<VlcStationEngine *>(tafm->player());
        QVERIFY(tafm->isVisible() && engine);
        engine->countDecodedAudio();
        click(tafm->Label1); // widens the panel until the grid is in view
        QVERIFY(runUntil([&] { return tafm->Width() >= 18990; }, 15000));
        click(tafm->stationButton(QStringLiteral("s1")));
        QCOMPARE(playing(tafm, QStringLiteral("Hi Fm")), QStringLiteral("Playing  Hi Fm"));
        QVERIFY(runUntil([&] { return engine->countDecodedAudio().peak() > 1000; }, 5000));
        // A playlist plays its first entry (s1's is the Icecast mount) and never asks for the second.
        click(tafm->stationButton(QStringLiteral("s3")));
        QCOMPARE(playing(tafm, QStringLiteral("Tarnelith Fm ")), QStringLiteral("Playing  Tarnelith Fm "));
        const QString served = m_web->file(QStringLiteral("http.log"));
        QVERIFY(m_pls->file(QStringLiteral("http.log")).contains(QLatin1String("GET / ")));
        QVERIFY(served.contains(QLatin1String("GET /first.mp3")) && !served.contains(QLatin1String("GET /second.mp3")));
    }

    void deadRowsThenAHundredSwitches()
    {
        QVERIFY(engine);
        sp.forms.Show(QStringLiteral("kanna"));
        auto *kanna = sp.forms.get<Panel>(QStringLiteral("kanna"));
        // kanna's "hhttp" row, and Tafm's s12 on a port nobody listens on: no box, no end.
        for (const auto &[p, button] : {std::pair{kanna, "s10"}, std::pair{tafm, "s12"}}) {
            click(p->stationButton(QLatin1String(button)));
            QSet<QString> seen;
            runUntil([&] { return seen << p->cptn->text(), false; }, 3000);
            QCOMPARE(seen, QSet<QString>{QStringLiteral("Connecting.......")});
        }
        QVERIFY(sp.dialogs.shown.isEmpty());
        kanna->stop_Click();

        auto residentKb = [] {
            QFile f(QStringLiteral("/proc/self/statm")); // the second field: resident pages
            return f.open(QIODevice::ReadOnly) ? f.readAll().split(' ').value(1).toLongLong() * getpagesize() / 1024 : -1;
        };
        GlowButton *a = tafm->stationButton(QStringLiteral("s42")), *b = tafm->stationButton(QStringLiteral("s1"));
        click(a); // a plain file on the same road
        QVERIFY(runUntil([&] { return engine->playState() == 3; }, 15000));
        const qint64 before = residentKb();
        for (int i = 0; i < 100; ++i)
            click(i % 2 ? a : b);
        QCOMPARE(playing(tafm, QStringLiteral("Releive Radio"), 20000), QStringLiteral("Playing  Releive Radio")); // s42 last
        QVERIFY(engine->URL().endsWith(QLatin1String("/reliveradio/reliveradio.mp3")));
        runUntil([] { return false; }, 1000);
        qInfo("resident memory: %lld kB before 100 switches, %lld kB after", before, residentKb());
        QVERIFY(residentKb() - before < 10 * 1024);
    }
};

QTEST_MAIN(tst_station_road)
#include "tst_station_road.moc"
