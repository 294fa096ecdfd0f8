// The station and local engines on real libvlc, against real servers on
// 127.0.0.1 started by scripts/services. Sound goes to a counter of decoded
// samples, so no sound card is needed; only the silence check runs the
// default sound output, in a child process of this binary.
#include "ServicePeer.h"
#include "platform/vlc/RealMedia.h"
#include "platform/vlc/VlcInstance.h"
#include "platform/vlc/VlcLocalEngine.h"
#include "platform/vlc/VlcStationEngine.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTest>
#include <QTimer>

#include <limits>
#include <memory>
#include <vector>

namespace {

const QStringList TestOptions{QStringLiteral("--aout=dummy"), QStringLiteral("--quiet")};
const QRegularExpression PositionForm(QStringLiteral("^\\d\\d+:[0-5]\\d$"));
const char SilentChild[] = "--silent-child";

// Every playState seen while polling for ms milliseconds, the event loop running.
template <typename Read>
QSet<int> statesSeen(Read read, int ms)
{
    QSet<int> seen;
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < ms) {
        seen << read();
        QTest::qWait(5);
    }
    seen << read();
    return seen;
}

VlcStationEngine *station(std::unique_ptr<StationEngine> &engine)
{
    return dynamic_cast<VlcStationEngine *>(engine.get());
}

VlcLocalEngine *local(std::unique_ptr<LocalEngine> &engine)
{
    return dynamic_cast<VlcLocalEngine *>(engine.get());
}

} // namespace

class tst_vlc_engines : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void stationPlaysSources_data();
    void stationPlaysSources();
    void stationUrlReplacesWhatPlays();
    void stationNeverPlaysWhatCannotOpen();
    void stationPlaylistPlaysFirstEntry_data();
    void stationPlaylistPlaysFirstEntry();
    void stationVolumeAndMuteBeforeOutput();
    void localPlaysSeeksEnds();
    void localStopSeekClose();
    void localVolumeAndMuteBeforeOutput();
    void localOpensAtOnce();
    void printsNothing();
    void oneInstanceShared();
    void libvlcThatCannotStart();

private:
    QString url(const QString &file) const
    {
        return QStringLiteral("http://127.0.0.1:%1/%2").arg(m_http->port()).arg(file);
    }
    QString icecastUrl() const
    {
        return QStringLiteral("http://127.0.0.1:%1%2").arg(m_icecast->port()).arg(m_icecast->value(QStringLiteral("MOUNT")));
    }
    bool write(const QString &name, const QString &text) const
    {
        QFile f(m_files.filePath(name));
        return f.open(QIODevice::WriteOnly) && f.write(text.toUtf8()) == text.toUtf8().size();
    }

    QTemporaryDir m_files;
    std::unique_ptr<ServicePeer> m_http;
    std::unique_ptr<ServicePeer> m_icecast;
};

void tst_vlc_engines::initTestCase()
{
    for (const char *tool : {"icecast2", "ffmpeg", "sox", "lame", "python3"}) {
        if (!ServicePeer::haveTool(QLatin1String(tool)))
            QSKIP(qPrintable(QStringLiteral("%1 is not installed (see scripts/debian-packages.txt)").arg(QLatin1String(tool))));
    }
    QVERIFY(m_files.isValid());
    // A 6 s tone for HTTP and Icecast, two distinct ones for the playlists,
    // a 4 s one for the local engine.
    QVERIFY(ServicePeer::run(QStringLiteral("tone.sh"), {m_files.filePath(QStringLiteral("tone.mp3")), QStringLiteral("6"), QStringLiteral("440")}));
    QVERIFY(ServicePeer::run(QStringLiteral("tone.sh"), {m_files.filePath(QStringLiteral("first.mp3")), QStringLiteral("4"), QStringLiteral("660")}));
    QVERIFY(ServicePeer::run(QStringLiteral("tone.sh"), {m_files.filePath(QStringLiteral("second.mp3")), QStringLiteral("4"), QStringLiteral("880")}));
    QVERIFY(ServicePeer::run(QStringLiteral("tone.sh"), {m_files.filePath(QStringLiteral("local.mp3")), QStringLiteral("4"), QStringLiteral("330")}));

    m_http = std::make_unique<ServicePeer>(QStringLiteral("http.sh"), QStringList{m_files.path()}, 150);
    QVERIFY2(m_http->ok(), qPrintable(m_http->error()));
    m_icecast = std::make_unique<ServicePeer>(QStringLiteral("icecast.sh"), QStringList{m_files.filePath(QStringLiteral("tone.mp3"))}, 150);
    QVERIFY2(m_icecast->ok(), qPrintable(m_icecast->error()));

    QVERIFY(write(QStringLiteral("list.asx"),
                  QStringLiteral("<asx version=\"3.0\">\n"
                                 "  <title>Two tones</title>\n"
                                 "  <entry><ref href=\"%1\"/></entry>\n"
                                 "  <entry><ref href=\"%2\"/></entry>\n"
                                 "</asx>\n")
                      .arg(url(QStringLiteral("first.mp3")), url(QStringLiteral("second.mp3")))));
    QVERIFY(write(QStringLiteral("list.pls"),
                  QStringLiteral("[playlist]\nNumberOfEntries=2\nFile1=%1\nTitle1=First\nLength1=-1\n"
                                 "File2=%2\nTitle2=Second\nLength2=-1\nVersion=2\n")
                      .arg(url(QStringLiteral("first.mp3")), url(QStringLiteral("second.mp3")))));
}

void tst_vlc_engines::cleanupTestCase()
{
    m_icecast.reset();
    m_http.reset();
}

void tst_vlc_engines::stationPlaysSources_data()
{
    QTest::addColumn<bool>("live");
    QTest::newRow("MP3 file over HTTP") << false;
    QTest::newRow("Icecast stream") << true;
}

void tst_vlc_engines::stationPlaysSources()
{
    QFETCH(bool, live);
    const QString source = live ? icecastUrl() : url(QStringLiteral("tone.mp3"));
    RealMedia media(TestOptions);
    auto engine = media.createStationEngine();
    VlcAudioTap &tap = station(engine)->countDecodedAudio();
    QCOMPARE(engine->playState(), 0);
    QCOMPARE(engine->currentPositionString(), QString());

    engine->setURL(source);
    QCOMPARE(engine->URL(), source);
    QTRY_COMPARE_WITH_TIMEOUT(engine->playState(), 3, 5000);
    // Playing means sound: samples decoded, and a half-scale tone, not silence.
    QTRY_VERIFY_WITH_TIMEOUT(tap.samples() > 44100 / 10, 2000);
    QVERIFY2(tap.peak() > 12000, qPrintable(QString::number(tap.peak())));

    const QString first = engine->currentPositionString();
    QVERIFY2(PositionForm.match(first).hasMatch(), qPrintable(first));
    QTRY_VERIFY_WITH_TIMEOUT(engine->currentPositionString() != first, 2500);
    QVERIFY(PositionForm.match(engine->currentPositionString()).hasMatch());
    QVERIFY(engine->currentPositionString() > first);
    QCOMPARE(engine->playState(), 3);

    engine->stop();
    QCOMPARE(engine->playState(), 1);
    QCOMPARE(engine->currentPositionString(), QString());
    QCOMPARE(engine->URL(), source); // stop keeps the URL
    const qint64 counted = tap.samples();
    QTest::qWait(300);
    QCOMPARE(tap.samples(), counted); // and the sound really stopped
    QCOMPARE(engine->playState(), 1);
}

void tst_vlc_engines::stationUrlReplacesWhatPlays()
{
    RealMedia media(TestOptions);
    auto engine = media.createStationEngine();
    VlcAudioTap &tap = station(engine)->countDecodedAudio();

    engine->setURL(icecastUrl());
    QTRY_COMPARE_WITH_TIMEOUT(engine->playState(), 3, 5000);
    QTRY_VERIFY_WITH_TIMEOUT(engine->currentPositionString() >= QStringLiteral("00:01"), 3000);

    // A new URL while playing: the old source goes, the new one starts by
    // itself from its beginning.
    engine->setURL(url(QStringLiteral("second.mp3")));
    QVERIFY(engine->playState() != 3);
    QTRY_COMPARE_WITH_TIMEOUT(engine->playState(), 3, 5000);
    QCOMPARE(engine->currentPositionString().left(4), QStringLiteral("00:0"));
    QVERIFY(m_http->file(QStringLiteral("http.log")).contains(QStringLiteral("GET /second.mp3")));
    tap.reset();
    QTRY_VERIFY_WITH_TIMEOUT(tap.samples() > 0, 2000);

    // The same URL again restarts it.
    engine->setURL(engine->URL());
    QTRY_COMPARE_WITH_TIMEOUT(engine->playState(), 3, 5000);

    // An empty URL closes: nothing plays, no position.
    engine->setURL(QString());
    QCOMPARE(engine->playState(), 0);
    QCOMPARE(engine->currentPositionString(), QString());
    const qint64 counted = tap.samples();
    QTest::qWait(300);
    QCOMPARE(tap.samples(), counted);
    QCOMPARE(engine->playState(), 0);
}

void tst_vlc_engines::stationNeverPlaysWhatCannotOpen()
{
    const QStringList sources{
        QStringLiteral("http://127.0.0.1:%1/radio.mp3").arg(ServicePeer::closedPort()), // dead port
        QStringLiteral("zzqx://127.0.0.1/radio.mp3"),                                    // unknown scheme
        QStringLiteral("Please click Requried Channels"),                                 // no URL at all
        url(QStringLiteral("none.mp3")),                                                  // 404
    };
    RealMedia media(TestOptions);
    std::vector<std::unique_ptr<StationEngine>> engines;
    std::vector<VlcAudioTap *> taps;
    for (const QString &source : sources) {
        engines.push_back(media.createStationEngine());
        taps.push_back(&station(engines.back())->countDecodedAudio());
        engines.back()->setURL(source);
    }
    // All at once, for a bounded while.
    std::vector<QSet<int>> seen(engines.size());
    QElapsedTimer t;
    t.start();
    while (t.elapsed() < 2000) {
        for (size_t i = 0; i < engines.size(); ++i)
            seen[i] << engines[i]->playState();
        QTest::qWait(5);
    }
    for (size_t i = 0; i < engines.size(); ++i) {
        const QString what = sources[int(i)];
        QVERIFY2(!seen[i].contains(3) && !seen[i].contains(6) && !seen[i].contains(10), qPrintable(what));
        QVERIFY2(engines[i]->playState() == 0, qPrintable(what)); // ends in error
        QVERIFY2(engines[i]->currentPositionString().isEmpty(), qPrintable(what));
        QVERIFY2(taps[i]->samples() == 0, qPrintable(what));
    }
    // The engine stays usable after a failure.
    engines.front()->setURL(url(QStringLiteral("tone.mp3")));
    QTRY_COMPARE_WITH_TIMEOUT(engines.front()->playState(), 3, 5000);
}

void tst_vlc_engines::stationPlaylistPlaysFirstEntry_data()
{
    QTest::addColumn<QString>("playlist");
    QTest::newRow("asx") << QStringLiteral("list.asx");
    QTest::newRow("pls") << QStringLiteral("list.pls");
}

void tst_vlc_engines::stationPlaylistPlaysFirstEntry()
{
    QFETCH(QString, playlist);
    const auto requests = [this](const QString &file) {
        return m_http->file(QStringLiteral("http.log")).count(QStringLiteral("GET /") + file);
    };
    const int firstBefore = requests(QStringLiteral("first.mp3"));
    const int secondBefore = requests(QStringLiteral("second.mp3"));

    RealMedia media(TestOptions);
    auto engine = media.createStationEngine();
    VlcAudioTap &tap = station(engine)->countDecodedAudio();
    engine->setURL(url(playlist));
    QTRY_COMPARE_WITH_TIMEOUT(engine->playState(), 3, 5000);
    QTRY_VERIFY_WITH_TIMEOUT(tap.samples() > 0, 2000);
    QVERIFY(tap.peak() > 12000);
    // What plays is the first entry (a 4 s file): the second is not asked for.
    QVERIFY(requests(QStringLiteral("first.mp3")) > firstBefore);
    QCOMPARE(requests(QStringLiteral("second.mp3")), secondBefore);
    QCOMPARE(engine->URL(), url(playlist));
    engine->stop();
    QCOMPARE(engine->playState(), 1);
}

void tst_vlc_engines::stationVolumeAndMuteBeforeOutput()
{
    RealMedia media(TestOptions);
    auto engine = media.createStationEngine();
    VlcAudioTap &tap = station(engine)->countDecodedAudio();
    QCOMPARE(engine->volume(), 50); // as stored with the control
    QCOMPARE(engine->mute(), false);

    // Given while there is no sound output yet: libvlc alone would drop them.
    engine->setVolume(30);
    engine->setMute(true);
    QCOMPARE(engine->volume(), 30);
    QCOMPARE(engine->mute(), true);
    engine->setURL(icecastUrl());
    QTRY_COMPARE_WITH_TIMEOUT(engine->playState(), 3, 5000);
    QTRY_VERIFY2_WITH_TIMEOUT(tap.outputVolume() == 30 && tap.outputMute() == 1,
                              qPrintable(QStringLiteral("output volume %1 mute %2").arg(tap.outputVolume()).arg(tap.outputMute())), 3000);
    QTRY_VERIFY_WITH_TIMEOUT(tap.samples() > 0, 2000); // muted, the stream goes on

    engine->setVolume(70);
    engine->setMute(false);
    QTRY_VERIFY_WITH_TIMEOUT(tap.outputVolume() == 70 && tap.outputMute() == 0, 2000);
    QCOMPARE(engine->mute(), false);

    engine->setVolume(150);
    QCOMPARE(engine->volume(), 100);
    engine->setVolume(-5);
    QCOMPARE(engine->volume(), 0);
    QTRY_COMPARE_WITH_TIMEOUT(tap.outputVolume(), 0, 2000);

    // Kept across a new source.
    engine->setVolume(40);
    engine->setURL(url(QStringLiteral("tone.mp3")));
    QTRY_COMPARE_WITH_TIMEOUT(engine->playState(), 3, 5000);
    QTRY_COMPARE_WITH_TIMEOUT(tap.outputVolume(), 40, 2000);
    QCOMPARE(tap.outputMute(), 0);
}

void tst_vlc_engines::localPlaysSeeksEnds()
{
    const QString file = m_files.filePath(QStringLiteral("local.mp3"));
    RealMedia media(TestOptions);
    auto engine = media.createLocalEngine();
    VlcAudioTap &tap = local(engine)->countDecodedAudio();
    QCOMPARE(engine->PlayState(), 6);
    QCOMPARE(engine->Duration(), 0.0);

    engine->setFileName(file);
    QCOMPARE(engine->FileName(), file);
    QTRY_COMPARE_WITH_TIMEOUT(engine->PlayState(), 2, 3000);
    QTRY_VERIFY_WITH_TIMEOUT(tap.samples() > 0, 2000);
    QVERIFY(tap.peak() > 12000);
    QTRY_VERIFY_WITH_TIMEOUT(qAbs(engine->Duration() - 4.0) < 0.2, 2000);

    // Seek: read back at once, then it plays on from there.
    engine->setCurrentPosition(2.0);
    QCOMPARE(engine->CurrentPosition(), 2.0);
    QTRY_VERIFY_WITH_TIMEOUT(engine->CurrentPosition() > 2.2, 2000);
    QVERIFY(engine->CurrentPosition() < 3.5);

    // Pause holds the position; a second Pause changes nothing; Play resumes.
    engine->Pause();
    QCOMPARE(engine->PlayState(), 1);
    QTest::qWait(100);
    const double held = engine->CurrentPosition();
    QTest::qWait(400);
    QVERIFY(qAbs(engine->CurrentPosition() - held) < 0.05);
    engine->Pause();
    QCOMPARE(engine->PlayState(), 1);
    engine->Play();
    QCOMPARE(engine->PlayState(), 2);
    QTRY_VERIFY_WITH_TIMEOUT(engine->CurrentPosition() > held + 0.2, 2000);

    // The natural end: stopped (0), and nothing else starts.
    QTRY_COMPARE_WITH_TIMEOUT(engine->PlayState(), 0, 4000);
    const qint64 counted = tap.samples();
    QVERIFY(statesSeen([&] { return engine->PlayState(); }, 600) == QSet<int>{0});
    QCOMPARE(tap.samples(), counted);
    QVERIFY(qAbs(engine->Duration() - 4.0) < 0.2); // still known
    QCOMPARE(engine->FileName(), file);

    // Play after the end starts it again from the top.
    engine->Play();
    QTRY_COMPARE_WITH_TIMEOUT(engine->PlayState(), 2, 3000);
    QTRY_VERIFY_WITH_TIMEOUT(tap.samples() > counted, 2000);
    QVERIFY(engine->CurrentPosition() < 1.5);
}

void tst_vlc_engines::localStopSeekClose()
{
    const QString file = m_files.filePath(QStringLiteral("local.mp3"));
    RealMedia media(TestOptions);
    auto engine = media.createLocalEngine();
    local(engine)->countDecodedAudio();
    engine->Play(); // nothing loaded: nothing happens
    engine->Pause();
    engine->Stop();
    engine->setCurrentPosition(1.0);
    QCOMPARE(engine->PlayState(), 6);

    engine->setFileName(file);
    QTRY_COMPARE_WITH_TIMEOUT(engine->PlayState(), 2, 3000);
    engine->Stop();
    QCOMPARE(engine->PlayState(), 0);
    QCOMPARE(engine->CurrentPosition(), 0.0);
    QTRY_VERIFY_WITH_TIMEOUT(engine->Duration() > 3.8, 1000);

    // A position given while stopped is where the next Play begins.
    engine->setCurrentPosition(3.0);
    engine->Play();
    QTRY_COMPARE_WITH_TIMEOUT(engine->PlayState(), 2, 3000);
    QTRY_VERIFY_WITH_TIMEOUT(engine->CurrentPosition() >= 3.0, 2000);
    QTRY_COMPARE_WITH_TIMEOUT(engine->PlayState(), 0, 3000); // 1 s left
    engine->setCurrentPosition(std::numeric_limits<double>::quiet_NaN()); // ignored
    engine->setCurrentPosition(-7);

    // An empty name closes.
    engine->setFileName(QString());
    QCOMPARE(engine->PlayState(), 6);
    QCOMPARE(engine->FileName(), QString());
    QCOMPARE(engine->CurrentPosition(), 0.0);
    QCOMPARE(engine->Duration(), 0.0);
    engine->Play();
    QCOMPARE(engine->PlayState(), 6);

    // A file that is not there never plays and ends closed.
    engine->setFileName(m_files.filePath(QStringLiteral("missing.mp3")));
    const QSet<int> seen = statesSeen([&] { return engine->PlayState(); }, 1500);
    QVERIFY(!seen.contains(2) && !seen.contains(1));
    QCOMPARE(engine->PlayState(), 6);
    QCOMPARE(engine->Duration(), 0.0);

    // A file that is no sound at all.
    engine->setFileName(m_files.filePath(QStringLiteral("list.pls")));
    QTRY_VERIFY_WITH_TIMEOUT(engine->PlayState() != 3, 3000);
    QVERIFY(engine->PlayState() != 2);
}

void tst_vlc_engines::localVolumeAndMuteBeforeOutput()
{
    RealMedia media(TestOptions);
    auto engine = media.createLocalEngine();
    VlcAudioTap &tap = local(engine)->countDecodedAudio();
    QCOMPARE(engine->Volume(), 0L);
    engine->setVolume(-2500); // -25 dB
    engine->setMute(true);
    QCOMPARE(engine->Volume(), -2500L);
    QCOMPARE(engine->Mute(), true);
    engine->setFileName(m_files.filePath(QStringLiteral("local.mp3")));
    QTRY_COMPARE_WITH_TIMEOUT(engine->PlayState(), 2, 3000);
    QTRY_VERIFY_WITH_TIMEOUT(tap.outputVolume() == 6 && tap.outputMute() == 1, 3000);
    engine->setVolume(0);
    engine->setMute(false);
    QTRY_VERIFY_WITH_TIMEOUT(tap.outputVolume() == 100 && tap.outputMute() == 0, 2000);
    engine->setVolume(-10000);
    QTRY_COMPARE_WITH_TIMEOUT(tap.outputVolume(), 0, 2000);
}

void tst_vlc_engines::oneInstanceShared()
{
    QVERIFY(vlcInstanceOptions().isEmpty()); // nothing left over from earlier tests
    {
        RealMedia first(TestOptions);
        RealMedia second({QStringLiteral("--quiet")});
        auto a = first.createStationEngine();
        QCOMPARE(vlcInstanceOptions(), TestOptions);
        auto b = second.createLocalEngine();
        QVERIFY(first.instance());
        QCOMPARE(second.instance(), first.instance());
        QCOMPARE(vlcInstanceOptions(), TestOptions); // the first one's stand
        // Both work on the one instance at once.
        local(b)->countDecodedAudio();
        station(a)->countDecodedAudio();
        a->setURL(icecastUrl());
        b->setFileName(m_files.filePath(QStringLiteral("local.mp3")));
        QTRY_COMPARE_WITH_TIMEOUT(a->playState(), 3, 5000);
        QTRY_COMPARE_WITH_TIMEOUT(b->PlayState(), 2, 3000);
    }
    // All holders gone: released; the next use starts afresh with its options.
    QVERIFY(vlcInstanceOptions().isEmpty());
    RealMedia third({QStringLiteral("--quiet")});
    QVERIFY(third.instance());
    QCOMPARE(vlcInstanceOptions(), QStringList{QStringLiteral("--quiet")});
}

void tst_vlc_engines::libvlcThatCannotStart()
{
    RealMedia media({QStringLiteral("--no-such-option-here")});
    auto stationEngine = media.createStationEngine();
    QVERIFY(!media.instance());
    auto localEngine = media.createLocalEngine();
    stationEngine->setURL(icecastUrl());
    stationEngine->setVolume(20);
    stationEngine->setMute(true);
    QCOMPARE(stationEngine->URL(), icecastUrl());
    QCOMPARE(stationEngine->volume(), 20);
    QVERIFY(!statesSeen([&] { return stationEngine->playState(); }, 300).contains(3));
    stationEngine->stop();
    QCOMPARE(stationEngine->currentPositionString(), QString());
    localEngine->setFileName(m_files.filePath(QStringLiteral("local.mp3")));
    localEngine->Play();
    QCOMPARE(localEngine->PlayState(), 6);
    QCOMPARE(localEngine->Duration(), 0.0);
}

void tst_vlc_engines::localOpensAtOnce()
{
    QVERIFY(write(QStringLiteral("text.mp3"), QStringLiteral("No sound here, only a name that says so.\n")));
    struct Case {
        QString file;
        int state; // read right after FileName, with no event loop between
    };
    const Case cases[] = {
        {m_files.filePath(QStringLiteral("local.mp3")), 2},
        {m_files.filePath(QStringLiteral("text.mp3")), 6},
        {m_files.filePath(QStringLiteral("missing.mp3")), 6},
        {url(QStringLiteral("tone.mp3")), 3}, // a stream is not waited for
        {m_files.filePath(QStringLiteral("local.mp3")), 2},
    };
    RealMedia media(TestOptions);
    auto engine = media.createLocalEngine();
    local(engine)->countDecodedAudio();
    for (const Case &c : cases) {
        QElapsedTimer t;
        t.start();
        engine->setFileName(c.file);
        const int state = engine->PlayState();
        engine->Play(); // as the panel does next: no second wait
        const qint64 took = t.elapsed();
        QVERIFY2(state == c.state, qPrintable(QStringLiteral("%1: %2").arg(c.file).arg(state)));
        QVERIFY2(took < VlcLocalEngine::OpenWaitMs + 300, qPrintable(QStringLiteral("%1: %2 ms").arg(c.file).arg(took)));
        QCOMPARE(engine->PlayState() == 2, c.state == 2);
    }
    // Started again after Stop, at once too.
    engine->Stop();
    QCOMPARE(engine->PlayState(), 0);
    engine->Play();
    QCOMPARE(engine->PlayState(), 2);
}

void tst_vlc_engines::printsNothing()
{
    QTemporaryDir home;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    // No sound server to be found: the default output falls through to ALSA,
    // and on a machine without a card that fails too, with much to say.
    env.insert(QStringLiteral("XDG_RUNTIME_DIR"), home.path());
    env.insert(QStringLiteral("PULSE_SERVER"), QStringLiteral("unix:") + home.filePath(QStringLiteral("none")));
    QProcess child;
    child.setProcessEnvironment(env);
    child.start(QCoreApplication::applicationFilePath(),
                {QLatin1String(SilentChild), m_files.filePath(QStringLiteral("local.mp3")),
                 QStringLiteral("http://127.0.0.1:%1/none.mp3").arg(ServicePeer::closedPort())});
    QVERIFY(child.waitForFinished(20000));
    QCOMPARE(child.exitStatus(), QProcess::NormalExit);
    QCOMPARE(child.exitCode(), 0); // the file did play
    QCOMPARE(QString::fromLocal8Bit(child.readAllStandardOutput()), QString());
    QCOMPARE(QString::fromLocal8Bit(child.readAllStandardError()), QString());
}

// The program's own engines, made without options: a local file and a URL
// that nothing answers, each for a while. Answers 0 when the file played.
static int silentChild(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    RealMedia media;
    auto file = media.createLocalEngine();
    auto station = media.createStationEngine();
    file->setMute(true); // a machine with a sound card hears nothing of it
    file->setFileName(QString::fromLocal8Bit(argv[2]));
    const bool played = file->PlayState() == 2;
    station->setURL(QString::fromLocal8Bit(argv[3]));
    QTimer::singleShot(1500, &app, &QCoreApplication::quit);
    app.exec();
    return played ? 0 : 1;
}

int main(int argc, char **argv)
{
    if (argc == 4 && qstrcmp(argv[1], SilentChild) == 0)
        return silentChild(argc, argv);
    QCoreApplication app(argc, argv);
    tst_vlc_engines test;
    QTEST_SET_MAIN_SOURCE_PATH
    return QTest::qExec(&test, argc, argv);
}
#include "tst_vlc_engines.moc"
