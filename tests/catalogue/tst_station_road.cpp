// The road of one station on real parts: the map, the panel, a station
// button, libvlc, and servers on 127.0.0.1. Runs in a network namespace of
// its own (see in_netns.sh), where the catalogue's fixed ports are free; its
// catalogue is built with every host at 127.0.0.1.
#include "ServicePeer.h"
#include "catalogue/Station.h"
#include "doubles/ScriptedPlatform.h"
#include "panel/Panel.h"
#include "platform/Platform.h"
#include "platform/vlc/RealMedia.h"
#include "platform/vlc/VlcStationEngine.h"
#include "shell/Mainmap.h"
#include "shell/ShellForms.h"
#include "widgets/ClickLabel.h"
#include "widgets/GlowButton.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFrame>
#include <QLabel>
#include <QMouseEvent>
#include <QTest>

#include <memory>

namespace {

void click(QWidget *w)
{
    const QPointF at(2, 2);
    QMouseEvent down(QEvent::MouseButtonPress, at, w->mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
    QMouseEvent up(QEvent::MouseButtonRelease, at, w->mapToGlobal(at), Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(w, &down);
    QApplication::sendEvent(w, &up);
}

qint64 residentKb()
{
    QFile f(QStringLiteral("/proc/self/status"));
    if (!f.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray &line : f.readAll().split('\n'))
        if (line.startsWith("VmRSS:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    return -1;
}

// The real engines behind the scripted seams; the media outlives the forms.
struct World {
    RealMedia media{QStringList{QStringLiteral("--quiet")}};
    ScriptedPlatform sp;
    Platform platform{sp.app, sp.dialogs, sp.connection, sp.shell, sp.process, sp.clock, sp.forms, sp.tray, sp.interfaces, media};
    World()
    {
        sp.connection.connectedAnswer = true;
        defineForms(platform);
    }
    // Real time and the panel's timers advance together.
    void run(int ms)
    {
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < ms) {
            QTest::qWait(16);
            sp.clock.advance(16);
        }
    }
    template <typename Done>
    bool runUntil(Done done, int ms)
    {
        QElapsedTimer t;
        t.start();
        while (!done() && t.elapsed() < ms) {
            QTest::qWait(16);
            sp.clock.advance(16);
        }
        return done();
    }
};

} // namespace

class tst_station_road : public QObject {
    Q_OBJECT
private slots:
    void initTestCase();
    void fromTheMapToSound();
    void playlistsPlayTheirFirstEntry();
    void unreachableRowsStayConnecting();
    void hundredSwitchesThenStop();

private:
    bool write(const QString &path, const QByteArray &text)
    {
        QFile f(path);
        return f.open(QIODevice::WriteOnly) && f.write(text) == text.size();
    }
    Panel *tafm(VlcStationEngine **engine);

    QTemporaryDir m_files;
    std::unique_ptr<ServicePeer> m_icecast, m_web, m_pls;
    std::unique_ptr<World> m_world;
};

void tst_station_road::initTestCase()
{
    for (const char *tool : {"icecast2", "ffmpeg", "sox", "lame", "python3"})
        if (!ServicePeer::haveTool(QLatin1String(tool)))
            QSKIP(qPrintable(QStringLiteral("%1 is not installed").arg(QLatin1String(tool))));
    // The test's own catalogue points every row at this machine.
    QCOMPARE(stationsOf(QStringLiteral("Tafm")).first().host, QStringLiteral("127.0.0.1"));
    QVERIFY(m_files.isValid());
    const QString web = m_files.filePath(QStringLiteral("web")), pls = m_files.filePath(QStringLiteral("pls"));
    QVERIFY(QDir().mkpath(web + QStringLiteral("/reliveradio")) && QDir().mkpath(pls));
    QVERIFY(ServicePeer::run(QStringLiteral("tone.sh"), {m_files.filePath(QStringLiteral("tone.mp3")), QStringLiteral("6"), QStringLiteral("440")}));
    QVERIFY(ServicePeer::run(QStringLiteral("tone.sh"), {web + QStringLiteral("/first.mp3"), QStringLiteral("20"), QStringLiteral("660")}));
    QVERIFY(QFile::copy(web + QStringLiteral("/first.mp3"), web + QStringLiteral("/second.mp3")));
    QVERIFY(QFile::copy(web + QStringLiteral("/first.mp3"), web + QStringLiteral("/reliveradio/reliveradio.mp3")));

    m_icecast = std::make_unique<ServicePeer>(QStringLiteral("icecast.sh"), QStringList{m_files.filePath(QStringLiteral("tone.mp3"))}, 150);
    QVERIFY2(m_icecast->ok(), qPrintable(m_icecast->error()));
    const QString mount = QStringLiteral("http://127.0.0.1:%1%2").arg(m_icecast->port()).arg(m_icecast->value(QStringLiteral("MOUNT")));
    // Tafm s1 "/hi2.asx" on port 80: Icecast first, a file second.
    QVERIFY(write(web + QStringLiteral("/hi2.asx"),
                  QStringLiteral("<asx version=\"3.0\"><entry><ref href=\"%1\"/></entry>"
                                 "<entry><ref href=\"http://127.0.0.1/second.mp3\"/></entry></asx>\n")
                      .arg(mount).toUtf8()));
    // Tafm s3 "/" on port 8000 answers with a .pls playlist.
    QVERIFY(write(pls + QStringLiteral("/index.html"),
                  "[playlist]\nNumberOfEntries=2\nFile1=http://127.0.0.1/first.mp3\nLength1=-1\n"
                  "File2=http://127.0.0.1/second.mp3\nLength2=-1\nVersion=2\n"));
    m_web = std::make_unique<ServicePeer>(QStringLiteral("http_port.sh"), QStringList{web, QStringLiteral("80")}, 150);
    QVERIFY2(m_web->ok(), qPrintable(m_web->error()));
    m_pls = std::make_unique<ServicePeer>(QStringLiteral("http_port.sh"), QStringList{pls, QStringLiteral("8000")}, 150);
    QVERIFY2(m_pls->ok(), qPrintable(m_pls->error()));
    m_world = std::make_unique<World>();
}

Panel *tst_station_road::tafm(VlcStationEngine **engine)
{
    Panel *p = m_world->sp.forms.get<Panel>(QStringLiteral("Tafm"));
    *engine = p ? dynamic_cast<VlcStationEngine *>(p->player()) : nullptr;
    return p;
}

void tst_station_road::fromTheMapToSound()
{
    World &w = *m_world;
    w.sp.forms.Show(QStringLiteral("Mainmap"));
    auto *map = w.sp.forms.get<Mainmap>(QStringLiteral("Mainmap"));
    QVERIFY(map);
    click(map->Tn1);
    VlcStationEngine *engine = nullptr;
    Panel *p = tafm(&engine);
    QVERIFY(p && p->isVisible() && engine);
    engine->countDecodedAudio();

    // Label1 widens the panel until the grid is in view.
    click(p->Label1);
    QVERIFY(w.runUntil([&] { return p->Width() >= 18990; }, 15000));
    GlowButton *s1 = p->stationButton(QStringLiteral("s1"));
    QVERIFY(s1->mapTo(p, QPoint(0, 0)).x() + s1->width() <= p->width());

    click(s1);
    QVERIFY2(w.runUntil([&] { return p->cptn->text() == QLatin1String("Playing  Hi Fm") && engine->countDecodedAudio().samples() > 0; }, 15000),
             qPrintable(p->cptn->text()));
    QCOMPARE(p->fName->text(), QStringLiteral("Playing  Hi Fm"));
    QVERIFY(p->time->text().startsWith(QLatin1String("Played Time ")));
    w.run(500);
    QVERIFY(engine->countDecodedAudio().peak() > 1000);
    // The first entry of the .asx is the Icecast mount; the second is never asked for.
    QVERIFY(!m_web->file(QStringLiteral("http.log")).contains(QLatin1String("GET /second.mp3")));
}

void tst_station_road::playlistsPlayTheirFirstEntry()
{
    World &w = *m_world;
    VlcStationEngine *engine = nullptr;
    Panel *p = tafm(&engine);
    QVERIFY(engine);
    // s3 goes to port 8000, whose "/" answers with a .pls.
    click(p->stationButton(QStringLiteral("s3")));
    QVERIFY2(w.runUntil([&] { return p->cptn->text() == QLatin1String("Playing  Tarnelith Fm "); }, 15000), qPrintable(p->cptn->text()));
    const QString log = m_web->file(QStringLiteral("http.log"));
    QVERIFY(log.contains(QLatin1String("GET /first.mp3")));
    QVERIFY(!log.contains(QLatin1String("GET /second.mp3")));
    QVERIFY(m_pls->file(QStringLiteral("http.log")).contains(QLatin1String("GET / ")));
    // A plain file row, s42, on the same road.
    click(p->stationButton(QStringLiteral("s42")));
    QVERIFY2(w.runUntil([&] { return p->cptn->text() == QLatin1String("Playing  Releive Radio"); }, 15000), qPrintable(p->cptn->text()));
    p->stop_Click();
}

void tst_station_road::unreachableRowsStayConnecting()
{
    World &w = *m_world;
    w.sp.forms.Show(QStringLiteral("kanna"));
    auto *kanna = w.sp.forms.get<Panel>(QStringLiteral("kanna"));
    VlcStationEngine *engine = nullptr;
    Panel *tamil = tafm(&engine);
    // kanna's "hhttp" row, and Tafm's s12 on a port nobody listens on.
    const QList<QPair<Panel *, QString>> rows{{kanna, QStringLiteral("s10")}, {tamil, QStringLiteral("s12")}};
    for (const auto &[p, button] : rows) {
        click(p->stationButton(button));
        QSet<QString> seen;
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < 3000) {
            w.run(48);
            seen << p->cptn->text();
        }
        QCOMPARE(seen, QSet<QString>{QStringLiteral("Connecting.......")});
        QVERIFY(w.sp.dialogs.shown.isEmpty());
    }
    kanna->stop_Click();
}

void tst_station_road::hundredSwitchesThenStop()
{
    World &w = *m_world;
    VlcStationEngine *engine = nullptr;
    Panel *p = tafm(&engine);
    GlowButton *a = p->stationButton(QStringLiteral("s42")), *b = p->stationButton(QStringLiteral("s1"));
    click(a);
    QVERIFY(w.runUntil([&] { return engine->playState() == 3; }, 15000));
    const qint64 before = residentKb();
    for (int i = 0; i < 100; ++i)
        click(i % 2 ? a : b);
    // The last click was s42.
    QVERIFY2(w.runUntil([&] { return p->cptn->text() == QLatin1String("Playing  Releive Radio"); }, 20000), qPrintable(p->cptn->text()));
    QVERIFY(engine->URL().endsWith(QLatin1String("/reliveradio/reliveradio.mp3")));
    w.run(1000);
    const qint64 after = residentKb();
    qInfo("resident memory: %lld kB before 100 switches, %lld kB after, growth %lld kB", before, after, after - before);
    QVERIFY(after - before < 10 * 1024);
    p->stop_Click();
    w.run(200);
    QVERIFY(engine->playState() != 3);
}

QTEST_MAIN(tst_station_road)
#include "tst_station_road.moc"
