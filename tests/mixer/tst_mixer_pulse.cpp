// The mixer section on the real ALSA mixer of a real sound server:
// PulseAudio with a null sink, started for each test on a runtime folder of
// its own. What the strips write is read back with pactl, and what the
// player plays is recorded from the sink's monitor.
#include "ServicePeer.h"
#include "doubles/ScriptedPlatform.h"
#include "mixer/MixerFader.h"
#include "mixer/MixerSection.h"
#include "mixer/Nebular1.h"
#include "mixer/PlayerFader.h"
#include "panel/Panel.h"
#include "platform/LocalEngine.h"
#include "platform/vlc/RealMedia.h"
#include "platform/alsa/AlsaMixerDevice.h"
#include "shell/ShellForms.h"

#include <QElapsedTimer>
#include <QGroupBox>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

#include <cmath>
#include <functional>

namespace {

// A panel world whose mixer is the machine's, and whose media the test picks.
struct RealMixerWorld {
    explicit RealMixerWorld(Media *media = nullptr)
        : platform{sp.app, sp.dialogs, sp.connection, sp.shell, sp.process, sp.clock, forms, sp.tray, sp.interfaces,
                   media ? *media : sp.media, alsa}
    {
        defineForms(platform);
    }
    Panel *open(const QString &name)
    {
        forms.Show(name);
        return forms.get<Panel>(name);
    }

    ScriptedPlatform sp;
    AlsaMixerDevice alsa;
    Forms forms;
    Platform platform;
};

// Points this process's sound clients (the ALSA plugin, libvlc, pactl) at the peer.
void useServer(const ServicePeer &pulse)
{
    qputenv("PULSE_SERVER", pulse.value(QStringLiteral("SERVER")).toUtf8());
    qputenv("PULSE_CLIENTCONFIG", pulse.value(QStringLiteral("CLIENTCONF")).toUtf8());
    qputenv("XDG_RUNTIME_DIR", pulse.value(QStringLiteral("RUNTIME")).toUtf8());
}

QString pactl(const QStringList &args)
{
    QProcess p;
    p.start(QStringLiteral("pactl"), args);
    p.waitForFinished(5000);
    return QString::fromUtf8(p.readAllStandardOutput());
}

// The sink's raw volume per channel.
QList<int> sinkVolume()
{
    const QString out = pactl({QStringLiteral("get-sink-volume"), QStringLiteral("zsink")});
    QList<int> channels;
    static const QRegularExpression channel(QStringLiteral("front-(?:left|right): (\\d+)"));
    for (auto it = channel.globalMatch(out); it.hasNext();)
        channels << it.next().captured(1).toInt();
    return channels;
}

bool sinkMuted()
{
    return pactl({QStringLiteral("get-sink-mute"), QStringLiteral("zsink")}).contains(QStringLiteral("yes"));
}

// RMS of what reached the sink over about a second, full scale 1.
double recordedRms()
{
    QProcess rec;
    rec.start(QStringLiteral("timeout"), {"1.2", "parec", "-d", "zsink.monitor", "--raw", "--format=s16le",
                                          "--rate=44100", "--channels=2", "--latency-msec=20"});
    rec.waitForFinished(5000);
    const QByteArray raw = rec.readAllStandardOutput();
    const auto *s = reinterpret_cast<const qint16 *>(raw.constData());
    const qsizetype n = raw.size() / 2;
    if (n < 44100) // less than half a second: the recorder did not run
        return -1;
    double sum = 0;
    for (qsizetype i = n / 4; i < n; ++i) // the first part may still carry the sound before a change
        sum += double(s[i]) * s[i];
    return std::sqrt(sum / double(n - n / 4)) / 32768.0;
}

bool within(int ms, const std::function<bool()> &condition)
{
    QElapsedTimer t;
    t.start();
    while (!condition()) {
        if (t.elapsed() > ms)
            return false;
        QTest::qWait(10);
    }
    return true;
}

} // namespace

class tst_mixer_pulse : public QObject {
    Q_OBJECT
private slots:
    void init();
    void stripsMoveTheSink();
    void noServerGivesTheMessage();
    void playerFaderAtZeroSilencesTheEngine();
};

void tst_mixer_pulse::init()
{
    for (const char *tool : {"pulseaudio", "pactl", "parec"})
        if (!ServicePeer::haveTool(QLatin1String(tool)))
            QSKIP(qPrintable(QLatin1String(tool) + QStringLiteral(" is not installed (scripts/debian-packages.txt)")));
    if (AlsaMixerDevice::deviceName() != "default")
        QSKIP("this machine has a sound card: the mixer opens the card, not the sound server");
}

void tst_mixer_pulse::stripsMoveTheSink()
{
    auto pulse = std::make_unique<ServicePeer>(QStringLiteral("pulse.sh"), QStringList{}, 60);
    QVERIFY2(pulse->ok(), qPrintable(pulse->error()));
    useServer(*pulse);
    RealMixerWorld w;
    MixerSection *m = w.open(QStringLiteral("Tafm"))->mixer();
    QVERIFY(w.sp.dialogs.shown.isEmpty());
    // The server's mixer has a master and a capture element and nothing else.
    QCOMPARE(m->TXTVol->text(), QString("10.0007630093087"));
    QCOMPARE(m->Text5->text(), QString("N/A"));
    QVERIFY(m->VolFrame[5]->isHidden());
    QCOMPARE(m->Text3->text(), QString("32768"));

    // The sink runs 0..65536: level 32768 is raw 32769 to the nearest.
    m->VolumeControl[0]->setSliderPosition(65535 - 32768);
    QCOMPARE(sinkVolume(), (QList<int>{32769, 32769}));
    m->BalanceControl[0]->setSliderPosition(50);
    QCOMPARE(sinkVolume(), (QList<int>{16384, 32769}));
    m->BalanceControl[0]->setSliderPosition(-100);
    QCOMPARE(sinkVolume(), (QList<int>{32769, 0}));

    QVERIFY(!sinkMuted());
    m->MuteOff[0]->click();
    QVERIFY(sinkMuted());
    m->MuteOn[0]->click();
    QVERIFY(!sinkMuted());

    // The server goes away: writes fail at once and quietly.
    pulse.reset();
    QElapsedTimer t;
    t.start();
    m->VolumeControl[0]->setSliderPosition(0);
    m->MuteOff[0]->click();
    QVERIFY2(t.elapsed() < 500, qPrintable(QString::number(t.elapsed())));
    QVERIFY(Nebular1::lastResult != mixer::NoError);
    QCOMPARE(m->TXTVol->text(), QString("10.0007630093087"));
    QVERIFY(w.sp.dialogs.shown.isEmpty());
}

void tst_mixer_pulse::noServerGivesTheMessage()
{
    {
        ServicePeer pulse(QStringLiteral("pulse.sh"), {}, 60);
        QVERIFY2(pulse.ok(), qPrintable(pulse.error()));
        useServer(pulse); // and then it stops: the address leads nowhere
    }
    RealMixerWorld w;
    w.open(QStringLiteral("Afm"));
    w.open(QStringLiteral("kanna")); // loads Tafm too
    QCOMPARE(w.sp.dialogs.shown.size(), 3);
    QCOMPARE(w.sp.dialogs.shown.first().prompt, MixerSection::NoMixerMessage);

    // A server that starts later is found by the next panel that opens.
    ServicePeer pulse(QStringLiteral("pulse.sh"), {}, 60);
    QVERIFY2(pulse.ok(), qPrintable(pulse.error()));
    useServer(pulse);
    w.open(QStringLiteral("Mp3"));
    QCOMPARE(w.sp.dialogs.shown.size(), 3);
}

void tst_mixer_pulse::playerFaderAtZeroSilencesTheEngine()
{
    ServicePeer pulse(QStringLiteral("pulse.sh"), {}, 90);
    QVERIFY2(pulse.ok(), qPrintable(pulse.error()));
    useServer(pulse);
    QTemporaryDir dir;
    const QString tone = dir.filePath(QStringLiteral("tone.mp3"));
    QVERIFY(ServicePeer::run(QStringLiteral("tone.sh"), {tone, QStringLiteral("20")}));

    RealMedia media({QStringLiteral("--aout=pulse"), QStringLiteral("--quiet")});
    RealMixerWorld w(&media);
    Panel *mp3 = w.open(QStringLiteral("Mp3"));
    MixerSection *m = mp3->mixer();
    mp3->Player()->setFileName(tone);
    QVERIFY(within(5000, [&] { return mp3->Player()->PlayState() == 2; }));
    QTest::qWait(500);
    const double playing = recordedRms();
    QVERIFY2(playing > 0.1, qPrintable(QString::number(playing)));

    m->Volumesl->setSliderPosition(0);
    QTest::qWait(400);
    const double silenced = recordedRms();
    QVERIFY2(silenced >= 0 && silenced < 1e-5, qPrintable(QString::number(silenced)));

    // Still mute below 25; back at 25, quiet (the engine's -18.75 dB is
    // steeper still on the sound server's own scale) but there.
    m->Volumesl->setSliderPosition(20);
    QTest::qWait(400);
    QVERIFY(recordedRms() < 1e-5);
    m->Volumesl->setSliderPosition(25);
    QTest::qWait(400);
    const double back = recordedRms();
    QVERIFY2(back > 1e-4 && back < playing / 4, qPrintable(QString::number(back)));
    mp3->Player()->Stop();
}

QTEST_MAIN(tst_mixer_pulse)
#include "tst_mixer_pulse.moc"
