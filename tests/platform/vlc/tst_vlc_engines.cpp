// The engines on real libvlc against servers on 127.0.0.1 from scripts/services;
// decoded sound goes to a counter, so no sound card is needed. Playlists and the
// Mp3 transport ride the same engines end to end in tests/catalogue and tests/music.
#include "ServicePeer.h"
#include "platform/vlc/RealMedia.h"
#include "platform/vlc/VlcInstance.h"
#include "platform/vlc/VlcLocalEngine.h"
#include "platform/vlc/VlcStationEngine.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QSet>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

const QStringList TestOptions{u"--aout=dummy"_s, u"--quiet"_s};

// Every state read while polling for ms milliseconds, the event loop running.
template <typename Read>
QSet<int> statesSeen(Read read, int ms)
{
    QSet<int> seen{read()};
    QElapsedTimer t;
    for (t.start(); t.elapsed() < ms; QTest::qWait(5))
        seen << read();
    return seen << read();
}

VlcAudioTap &tap(std::unique_ptr<StationEngine> &e) { return static_cast<VlcStationEngine &>(*e).countDecodedAudio(); }
VlcAudioTap &tap(std::unique_ptr<LocalEngine> &e) { return static_cast<VlcLocalEngine &>(*e).countDecodedAudio(); }

// The program's own engines, made without options, on a file and on a URL
// that nothing answers, for a while. Answers 0 when the file played.
int silentChild(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    RealMedia media;
    auto file = media.createLocalEngine();
    auto station = media.createStationEngine();
    file->setMute(true); // a machine with a sound card hears nothing of it
    file->setFileName(QString::fromLocal8Bit(argv[2]));
    station->setURL(QString::fromLocal8Bit(argv[3]));
    QTimer::singleShot(1500, &app, &QCoreApplication::quit);
    return app.exec() + (file->PlayState() == 2 ? 0 : 1);
}

} // namespace

class tst_vlc_engines : public QObject {
    Q_OBJECT
    QTemporaryDir m_files;
    std::unique_ptr<ServicePeer> m_http, m_icecast;
    QString file(const QString &name) const { return m_files.filePath(name); }
    QString url(const QString &name) const { return u"http://127.0.0.1:%1/%2"_s.arg(m_http->port()).arg(name); }
    QString icecastUrl() const { return u"http://127.0.0.1:%1%2"_s.arg(m_icecast->port()).arg(m_icecast->value(u"MOUNT"_s)); }

private slots:
    void initTestCase()
    {
        for (const char *tool : {"icecast2", "ffmpeg", "sox", "lame", "python3"}) {
            if (!ServicePeer::haveTool(QLatin1String(tool)))
                QSKIP(qPrintable(u"%1 is not installed (see scripts/debian-packages.txt)"_s.arg(QLatin1String(tool))));
        }
        QVERIFY(ServicePeer::run(u"tone.sh"_s, {file(u"tone.mp3"_s), u"6"_s, u"440"_s}));
        QVERIFY(ServicePeer::run(u"tone.sh"_s, {file(u"local.mp3"_s), u"4"_s, u"330"_s}));
        QFile text(file(u"text.mp3"_s));
        QVERIFY(text.open(QIODevice::WriteOnly) && text.write("No sound here, only a name that says so.\n") > 0);
        m_http = std::make_unique<ServicePeer>(u"http.sh"_s, QStringList{m_files.path()}, 150);
        m_icecast = std::make_unique<ServicePeer>(u"icecast.sh"_s, QStringList{file(u"tone.mp3"_s)}, 150);
        QVERIFY2(m_http->ok() && m_icecast->ok(), qPrintable(m_http->error() + m_icecast->error()));
    }

    void stationPlaysStopsAndFails()
    {
        RealMedia media(TestOptions);
        auto engine = media.createStationEngine();
        VlcAudioTap &sound = tap(engine);
        QCOMPARE((QList<int>{engine->playState(), engine->volume(), engine->mute()}), (QList<int>{0, 50, 0}));
        engine->setVolume(30); // given while there is no sound output yet: libvlc alone would drop them
        engine->setMute(true);
        engine->setURL(icecastUrl());
        QTRY_COMPARE_WITH_TIMEOUT(engine->playState(), 3, 5000);
        // Playing is sound, muted or not: the tone at half scale.
        QTRY_VERIFY_WITH_TIMEOUT(sound.outputVolume() == 30 && sound.outputMute() == 1 && sound.peak() > 12000, 3000);
        const QString at = engine->currentPositionString();
        QTRY_VERIFY_WITH_TIMEOUT(at.size() == 5 && engine->currentPositionString() > at, 2500);
        engine->setVolume(150);
        engine->setMute(false);
        QTRY_VERIFY_WITH_TIMEOUT(sound.outputVolume() == 100 && sound.outputMute() == 0, 2000);

        // A new URL while playing: the old source goes, the new one starts by itself from its start.
        engine->setURL(url(u"tone.mp3"_s));
        QVERIFY(engine->playState() != 3);
        QTRY_COMPARE_WITH_TIMEOUT(engine->playState(), 3, 5000);
        QCOMPARE(engine->currentPositionString().left(4), u"00:0"_s);
        engine->stop();
        const qint64 counted = sound.samples();
        QTest::qWait(300);
        QCOMPARE((QStringList{QString::number(engine->playState()), engine->currentPositionString(), engine->URL()}),
                 (QStringList{u"1"_s, QString(), url(u"tone.mp3"_s)})); // stop keeps the URL
        QCOMPARE(sound.samples(), counted); // and the sound really stopped

        // What cannot open is never ready, buffering or playing, and ends in error.
        for (const QString &source : {url(u"none.mp3"_s), u"Please click Requried Channels"_s}) {
            engine->setURL(source);
            QVERIFY2(!statesSeen([&] { return engine->playState(); }, 1500).intersects({3, 6, 10}), qPrintable(source));
            QCOMPARE(engine->playState(), 0);
        }
        engine->setURL(QString()); // an empty URL closes
        QCOMPARE(engine->playState(), 0);
    }

    void localOpensAtOncePlaysAndCloses()
    {
        RealMedia media(TestOptions);
        auto engine = media.createLocalEngine();
        VlcAudioTap &sound = tap(engine);
        engine->Play(); // nothing loaded: nothing happens
        QCOMPARE((QList<double>{double(engine->PlayState()), engine->Duration()}), (QList<double>{6, 0}));
        // Read right after FileName and Play with no event loop between: a file
        // plays or has failed by then; a stream is not waited for.
        const auto opens = [&](const QString &name, int state) {
            QElapsedTimer t;
            t.start();
            engine->setFileName(name);
            const int now = engine->PlayState();
            engine->Play(); // as the panel does next: no second wait
            return now == state && t.elapsed() < VlcLocalEngine::OpenWaitMs + 300;
        };
        engine->setVolume(-2500); // -25 dB, given while there is no sound output yet
        engine->setMute(true);
        QVERIFY(opens(file(u"local.mp3"_s), 2));
        QTRY_VERIFY_WITH_TIMEOUT(sound.outputVolume() == 6 && sound.outputMute() == 1 && sound.peak() > 12000, 3000);
        for (const auto &[name, state] : {std::pair{file(u"text.mp3"_s), 6}, {file(u"missing.mp3"_s), 6}, {url(u"tone.mp3"_s), 3},
                                          {file(u"local.mp3"_s), 2}})
            QVERIFY2(opens(name, state), qPrintable(name));

        engine->Stop();
        QCOMPARE((QList<double>{double(engine->PlayState()), engine->CurrentPosition()}), (QList<double>{0, 0}));
        engine->setCurrentPosition(3.0); // given while stopped: where the next Play begins
        engine->Play();
        QCOMPARE(engine->PlayState(), 2); // at once, as after FileName
        QTRY_VERIFY_WITH_TIMEOUT(engine->CurrentPosition() >= 3.0, 2000);
        QTRY_COMPARE_WITH_TIMEOUT(engine->PlayState(), 0, 3000); // the natural end is stopped
        const qint64 counted = sound.samples();
        QCOMPARE(statesSeen([&] { return engine->PlayState(); }, 600), QSet<int>{0}); // and nothing else starts
        QVERIFY(sound.samples() == counted && qAbs(engine->Duration() - 4.0) < 0.2);  // its length still known
        engine->setFileName(QString()); // an empty name closes
        engine->Play();
        QCOMPARE((QList<double>{double(engine->PlayState()), engine->CurrentPosition(), engine->Duration()}),
                 (QList<double>{6, 0, 0}));
    }

    void printsNothing()
    {
        // No sound server to be found: the default output falls through to
        // ALSA, and on a machine without a card that fails too, with much to say.
        QTemporaryDir home;
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(u"XDG_RUNTIME_DIR"_s, home.path());
        env.insert(u"PULSE_SERVER"_s, u"unix:"_s + home.filePath(u"none"_s));
        QProcess child;
        child.setProcessEnvironment(env);
        child.start(QCoreApplication::applicationFilePath(),
                    {u"--silent-child"_s, file(u"local.mp3"_s), u"http://127.0.0.1:%1/"_s.arg(ServicePeer::closedPort())});
        QVERIFY(child.waitForFinished(20000) && child.exitStatus() == QProcess::NormalExit);
        QCOMPARE(child.exitCode(), 0); // the file did play
        QCOMPARE(child.readAllStandardOutput() + child.readAllStandardError(), QByteArray());
    }

    void oneInstanceOrNone()
    {
        {
            RealMedia first(TestOptions), second({u"--quiet"_s});
            QVERIFY(first.instance() && second.instance() == first.instance());
            QCOMPARE(vlcInstanceOptions(), TestOptions); // the first one's stand
        }
        QVERIFY(vlcInstanceOptions().isEmpty()); // all holders gone: released
        // The next start is afresh, here with an option libvlc refuses: engines that play nothing.
        RealMedia broken({u"--no-such-option-here"_s});
        auto station = broken.createStationEngine();
        auto local = broken.createLocalEngine();
        station->setURL(icecastUrl());
        local->setFileName(file(u"local.mp3"_s));
        local->Play();
        QVERIFY(!broken.instance() && !statesSeen([&] { return station->playState(); }, 300).contains(3));
        QCOMPARE((QList<int>{station->playState(), local->PlayState()}), (QList<int>{0, 6}));
    }
};

int main(int argc, char **argv)
{
    if (argc == 4 && qstrcmp(argv[1], "--silent-child") == 0)
        return silentChild(argc, argv);
    QCoreApplication app(argc, argv);
    tst_vlc_engines test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_vlc_engines.moc"
