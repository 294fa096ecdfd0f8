// The mixer section on the real ALSA mixer of a PulseAudio null sink, started per test.
#include "ServicePeer.h"
#include "panel/PanelWorld.h"
#include "mixer/MixerFader.h"
#include "mixer/MixerSection.h"
#include "mixer/Nebular1.h"
#include "mixer/PlayerFader.h"
#include "platform/LocalEngine.h"
#include "platform/alsa/AlsaMixerDevice.h"
#include "platform/vlc/RealMedia.h"

#include <QElapsedTimer>
#include <QGroupBox>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QRegularExpression>
#include <QTest>

namespace {

struct RealMixerWorld : ScriptedPlatform { // panels on the machine's mixer, and on media the test picks
    explicit RealMixerWorld(Media *media = nullptr)
        : real{app, dialogs, connection, shell, process, clock, forms, tray, interfaces, media ? *media : ScriptedPlatform::media, alsa}
    {
        defineForms(real);
    }
    Panel *open(const char *name) { return forms.Show(QLatin1String(name)), forms.get<Panel>(QLatin1String(name)); }
    AlsaMixerDevice alsa;
    Platform real;
};

// A sound server; this process's clients (the ALSA plugin, libvlc, pactl) use it.
std::unique_ptr<ServicePeer> pulse()
{
    auto peer = std::make_unique<ServicePeer>(QStringLiteral("pulse.sh"), QStringList{}, 90);
    for (auto [name, key] : {std::pair("PULSE_SERVER", "SERVER"), {"PULSE_CLIENTCONFIG", "CLIENTCONF"}, {"XDG_RUNTIME_DIR", "RUNTIME"}})
        qputenv(name, peer->value(QLatin1String(key)).toUtf8());
    return peer;
}

QString sink(const char *what) // what pactl says of the sink: the raw volume of each channel, or the mute
{
    QProcess p;
    p.start(QStringLiteral("pactl"), {QLatin1String(what), QStringLiteral("zsink")});
    p.waitForFinished(5000);
    static const QRegularExpression noise(QStringLiteral("Volume:|Mute:|front-\\w+:|/ +\\S+ / +\\S+ dB,?|balance \\S+"));
    return QString::fromUtf8(p.readAllStandardOutput()).remove(noise).simplified();
}

double recordedRms() // of what reached the sink over about a second, full scale 1; -1 when the recorder did not run
{
    QProcess rec;
    rec.start(QStringLiteral("timeout"), {"1.2", "parec", "-d", "zsink.monitor", "--raw", "--format=s16le", "--rate=44100", "--channels=2", "--latency-msec=20"});
    rec.waitForFinished(5000);
    const QByteArray raw = rec.readAllStandardOutput();
    const auto *s = reinterpret_cast<const qint16 *>(raw.constData());
    const qsizetype n = raw.size() / 2;
    double sum = 0;
    for (qsizetype i = n / 4; i < n; ++i) // the first part may still carry the sound before a change
        sum += double(s[i]) * s[i];
    return n < 44100 ? -1 : std::sqrt(sum / double(n - n / 4)) / 32768.0;
}

} // namespace

class tst_mixer_pulse : public QObject {
    Q_OBJECT
private slots:
    void init();
    void stripsMoveTheSinkAndFailQuietlyWithoutIt();
    void playerFaderAtZeroSilencesTheEngine();
};

void tst_mixer_pulse::init()
{
    if (!ServicePeer::haveTool("pulseaudio") || !ServicePeer::haveTool("pactl") || !ServicePeer::haveTool("parec"))
        QSKIP("pulseaudio, pactl or parec is not installed (scripts/debian-packages.txt)");
    if (AlsaMixerDevice::deviceName() != "default")
        QSKIP("this machine has a sound card: the mixer opens the card, not the sound server");
}

void tst_mixer_pulse::stripsMoveTheSinkAndFailQuietlyWithoutIt()
{
    auto server = pulse();
    QVERIFY2(server->ok(), qPrintable(server->error()));
    RealMixerWorld w;
    MixerSection *m = w.open("Tafm")->mixer();
    // The server's mixer has a master and a capture element and nothing else.
    QCOMPARE(QStringList({m->TXTVol->text(), m->Text5->text(), m->Text3->text()}), QStringList({"10.0007630093087", "N/A", "32768"}));
    QVERIFY(w.dialogs.shown.isEmpty() && m->VolFrame[5]->isHidden());
    // A move: raw, percent and 0-to-10 fields (balance leaves them), and the sink on its scale of 0..65536.
    const QString half = QStringLiteral("32769 | 50.0022888532845 | 5.00061040744697"), low = QStringLiteral("3 | 4.57770656900893E-03 | 4.5780558522814E-04");
    const std::tuple<QWidget *, int, QString> moves[] = {
        {m->VolumeControl[0], 0, "65535 | 100 | 10.0007630093087 / 65536 65536 no"}, {m->VolumeControl[0], 65535 - 32769, half + " / 32770 32770 no"},
        {m->BalanceControl[0], -50, half + " / 32770 16384 no"}, /* 16384.5 to even */ {m->BalanceControl[0], 100, half + " / 0 32770 no"},
        {m->BalanceControl[0], -50, half + " / 32770 16384 no"}, {m->VolumeControl[0], 65535 - 3, low + " / 3 2 no"}, /* 1.5 to even */
        {m->MuteOff[0], 0, low + " / 3 2 yes"}, {m->MuteOn[0], 0, low + " / 3 2 no"}};
    for (const auto &[control, position, heard] : moves) {
        auto *fader = qobject_cast<MixerFader *>(control);
        fader ? fader->setSliderPosition(position) : static_cast<QPushButton *>(control)->click();
        const QString fields = QStringList({m->txtvolumecontrol[0]->text(), m->T0[0]->text(), m->TXTVol->text()}).join(u" | ");
        QCOMPARE(fields + " / " + sink("get-sink-volume") + u' ' + sink("get-sink-mute"), heard);
    }
    // The server goes away: writes fail at once and quietly, and the next
    // panels open to the message (Malfm loads Tafm too) until a server comes back.
    server.reset();
    QElapsedTimer t;
    t.start();
    m->VolumeControl[0]->setSliderPosition(0);
    m->MuteOff[0]->click();
    QVERIFY2(t.elapsed() < 500 && Nebular1::lastResult != mixer::NoError, qPrintable(QString::number(t.elapsed())));
    RealMixerWorld v;
    v.open("Afm");
    m = v.open("Malfm")->mixer();
    QCOMPARE(std::tuple(w.dialogs.shown.size(), v.dialogs.shown.size(), v.dialogs.shown.value(0).prompt, m->T0[0]->text()),
             std::tuple(qsizetype(0), qsizetype(3), MixerSection::NoMixerMessage, QStringLiteral("50.0007629510948")));
    server = pulse();
    QVERIFY2(server->ok(), qPrintable(server->error()));
    v.open("Mp3");
    QCOMPARE(v.dialogs.shown.size(), 3);
}

void tst_mixer_pulse::playerFaderAtZeroSilencesTheEngine()
{
    auto server = pulse();
    QVERIFY2(server->ok(), qPrintable(server->error()));
    QTemporaryDir dir;
    const QString tone = dir.filePath(QStringLiteral("tone.mp3"));
    QVERIFY(ServicePeer::run(QStringLiteral("tone.sh"), {tone, QStringLiteral("20")}));
    RealMedia media({QStringLiteral("--aout=pulse"), QStringLiteral("--quiet")});
    RealMixerWorld w(&media);
    Panel *mp3 = w.open("Mp3");
    mp3->Player()->setFileName(tone);
    QTRY_COMPARE_WITH_TIMEOUT(mp3->Player()->PlayState(), 2, 5000);
    QTest::qWait(500);
    // Heard; silent at 0 and below 25; at 25 quiet (-18.75 dB, steeper on the server's scale) but there.
    QList<double> heard{recordedRms()};
    for (int v : {0, 20, 25}) {
        mp3->mixer()->Volumesl->setSliderPosition(v);
        QTest::qWait(400);
        heard << recordedRms();
    }
    const bool right = heard[0] > 0.1 && heard[1] >= 0 && heard[1] < 1e-5 && heard[2] >= 0 && heard[2] < 1e-5 && heard[3] > 1e-4 && heard[3] < heard[0] / 4;
    QVERIFY2(right, qPrintable(QStringLiteral("%1 %2 %3 %4").arg(heard[0]).arg(heard[1]).arg(heard[2]).arg(heard[3])));
    mp3->Player()->Stop();
}

QTEST_MAIN(tst_mixer_pulse)
#include "tst_mixer_pulse.moc"
