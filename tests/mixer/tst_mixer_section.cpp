// The mixer section on a scripted device, line by line and on the player's fader; the ALSA scale.
#include "panel/PanelWorld.h"
#include "mixer/MixerFader.h"
#include "mixer/MixerSection.h"
#include "mixer/PlayerFader.h"
#include "platform/alsa/AlsaMixerDevice.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using namespace mixer;
using V = std::vector<std::uint32_t>;

class tst_mixer_section : public QObject {
    Q_OBJECT
private slots:
    void loadCrossesRawFieldsAndLinesTakeStaleLevels();
    void playerFaderThresholdsMuteGapAndAlsaScale();
};

void tst_mixer_section::loadCrossesRawFieldsAndLinesTakeStaleLevels()
{
    // Levels told apart by line, so that a raw field shows whose level it holds.
    PanelWorld w;
    const std::tuple<std::uint32_t, std::uint32_t, std::uint32_t> lines[] = {
        {Speakers, Volume, 65535}, {CompactDiscSource, Volume, 3000}, {UndefinedSource, Volume, 4000}, {TelephoneSource, Volume, 6000},
        {SynthesizerSource, Volume, 7000}, {PcSpeakerSource, Volume, 9000}, {DigitalSource, Volume, 8000}, {LineSource, Volume, 2000},
        {Speakers, Bass, 11000}, {Speakers, Treble, 10000}, {MicrophoneSource, Volume, 12345}};
    for (const auto &[component, type, level] : lines)
        w.sp.mixer.control(component, type).values = {level, level};
    w.sp.mixer.control(WaveOutSource, Volume).values = {1000, 500}; // read as the louder channel
    MixerSection *m = w.open("Tafm")->mixer();
    // The raw field and the fader of each pass land on the strip numbered like
    // the pass; the 0-to-10 fields belong to their own lines, the microphone's
    // keeps its start text, and the percents read the crossed raw fields.
    QList<int> raw;
    for (int strip = 0; strip < MixerSection::Strips; ++strip)
        raw << m->txtvolumecontrol[strip]->text().toInt() << 65535 - m->VolumeControl[strip]->Value();
    QCOMPARE(raw, QList<int>({65535, 65535, 1000, 1000, 1000, 1000, 3000, 3000, 4000, 4000, 6000, 6000, 7000, 7000, 9000, 9000,
                              8000, 8000, 2000, 2000, 11000, 11000, 10000, 10000}));
    QStringList texts;
    for (const QLineEdit *field : {m->TXTVol, m->Text5, m->Text3, m->Text6, m->Text10, m->T0[0], m->T0[5], m->T0[10], m->T0[11]})
        texts << field->text();
    QCOMPARE(texts, QStringList({"10.0007630093087", "0.152601861742713", "32768", "0.91561117045628", "1.52601861742713", "100",
                                 "9.15541313801785", "16.7849240863661", "15.2590218966964"}));
    // Missing lines show N/A and repeat the level before; NoDevice of the
    // treble, in the last pass, puts fader 10 back to 0, its balance stays.
    PanelWorld v;
    v.sp.mixer.control(LineSource, Volume).values = {2000, 2000};
    v.sp.mixer.removeControl(Speakers, Treble);
    v.sp.mixer.removeControl(Speakers, Bass);
    m = v.open("Tafm")->mixer();
    QCOMPARE(std::tuple(m->Text10->text(), m->txtvolumecontrol[11]->text(), m->VolumeControl[10]->Value(), m->BalanceControl[10]->isHidden()),
             std::tuple(QStringLiteral("N/A"), QStringLiteral("2000"), 0, false));
    // A failed read shows -1 / 6553 and skips the closing part.
    v.sp.mixer.control(Speakers, Volume).failRead = true;
    m = v.open("Afm")->mixer();
    QCOMPARE(std::pair(m->TXTVol->text(), m->txtvolumecontrol[0]->text()), std::pair(QStringLiteral("-1.52601861742713E-04"), QStringLiteral("32768")));

    w.sp.mixer.removeControl(CompactDiscSource, Mute);
    m = w.open("kanna")->mixer();
    const auto id = [&](std::uint32_t component, std::uint32_t type) { return w.sp.mixer.control(component, type).id; };
    const std::uint32_t wave = id(WaveOutSource, Volume), micMute = id(MicrophoneSource, Mute), nothing = 0;
    // A control and its move, then the control written and its values; nothing when no write is made.
    const std::tuple<QWidget *, int, std::uint32_t, V> script[] = {
        {m->VolumeControl[5], 65535 - 40000, wave, {40000, 40000}},
        {m->VolumeControl[2], 65535 - 20000, id(LineSource, Volume), {20000, 20000}},
        {m->BalanceControl[5], -50, wave, {40000, 20000}},           // its own raw level, the text of strip 2's
        {m->BalanceControl[10], 10, id(Speakers, Treble), {20000}},  // a mono strip writes the stale level
        {m->VolumeControl[11], 65535 - 123, id(Speakers, Bass), {123}}, // and its own from its own fader
        {m->VolumeControl[3], 0, nothing, {}},                       // the microphone's level record is never filled
        {m->MuteOff[1], 0, nothing, {}},                             // no mute control, before any click: control 0
        {m->MuteOff[3], 0, micMute, {1}},                            // the microphone has a mute of its own
        {m->MuteOn[3], 0, micMute, {0}},
        {m->MuteOff[0], 0, id(Speakers, Mute), {1}},
        {m->MuteOff[1], 0, id(Speakers, Mute), {1}},                 // CD's clicks go where the last clicks went
        {m->MuteOn[1], 0, micMute, {0}},
        {m->MuteOff[9], 0, id(PcSpeakerSource, Mute), {1}}};         // the last strip with a pair finds its own
    for (const auto &[control, position, written, values] : script) {
        const qsizetype before = w.sp.mixer.writes.size();
        auto *fader = qobject_cast<MixerFader *>(control);
        fader ? fader->setSliderPosition(position) : static_cast<QPushButton *>(control)->click();
        QCOMPARE(w.sp.mixer.writes.size() > before ? std::pair(w.sp.mixer.writes.last().controlId, w.sp.mixer.writes.last().values)
                                                   : std::pair(nothing, V()),
                 std::pair(written, values));
    }
    QCOMPARE(QStringList({m->Text5->text(), m->Text10->text()}), QStringList(2, "3.05203723485427"));
}

void tst_mixer_section::playerFaderThresholdsMuteGapAndAlsaScale()
{
    PanelWorld w;
    MixerSection *m = w.open("Tafm")->mixer();
    ScriptedStationEngine *engine = w.sp.media.stations.first();
    QCOMPARE(std::pair(m->Volumesl->Value(), engine->vol), std::pair(100, 50)); // Load's 2000 held at the top; no handler ran
    const auto shown = [m] { // the speaker pictures: muted, low, high, silent
        QString on;
        for (QLabel *image : m->Image3)
            on += image->isHidden() ? u'-' : u'x';
        return on;
    };
    // The level: mute, pictures and the label's colour.
    const std::tuple<int, bool, QString, std::uint32_t> steps[] = {
        {30, false, "-x--", 0xC0C000},  {0, true, "---x", 0xC0C000}, {10, true, "---x", 0xC0C000}, {22, true, "---x", 0x80000012},
        {25, false, "-x--", 0x80000012}, {45, false, "-x--", 130},    {70, false, "--x-", 128},     {85, false, "--x-", 0},
        {100, false, "----", 255},       {59, false, "-x--", 130},    {60, false, "--x-", 128}};
    for (const auto &[v, muted, pictures, colour] : steps) {
        m->Volumesl->setSliderPosition(v);
        QCOMPARE(std::tuple(engine->vol, engine->muted, shown(), m->vlForeColor(), m->vl->text(), m->levelText),
                 std::tuple(v, muted, pictures, colour, QString::number(v), QString::number(v)));
    }
    // mutel twice at 50: silent with the muted picture, then sound with none.
    m->Volumesl->setSliderPosition(50);
    QTest::mouseClick(m->mutel, Qt::LeftButton);
    QCOMPARE(std::pair(engine->muted, shown()), std::pair(true, QStringLiteral("x---")));
    QTest::mouseClick(m->mutel, Qt::LeftButton);
    QCOMPARE(std::pair(engine->muted, shown()), std::pair(false, QStringLiteral("----")));

    // ALSA ranges to levels of 0..65535, and back where the element has no more steps than a level.
    const std::tuple<long, long, long, std::uint32_t> cases[] = {
        {0, 65536, 65536, 65535}, {0, 65536, 0, 0},     {0, 65536, 32768, 32768}, {0, 31, 31, 65535},   {0, 31, 15, 31710}, {-20, 10, -20, 0},
        {-20, 10, 10, 65535},     {-20, 10, -5, 32768}, {5, 5, 5, 0},             {0, 100, 120, 65535}, {0, 100, -3, 0}};
    for (const auto &[min, max, value, level] : cases) {
        QCOMPARE(AlsaMixerDevice::toLevel(value, min, max), level);
        if (value >= min && value <= max && max > min && max - min <= 65535)
            QCOMPARE(AlsaMixerDevice::fromLevel(level, min, max), value);
    }
    QCOMPARE(std::pair(AlsaMixerDevice::fromLevel(32768, 0, 65536), AlsaMixerDevice::fromLevel(70000, 0, 31)), std::pair(32769L, 31L)); // 32768.5000076; held
}

QTEST_MAIN(tst_mixer_section)
#include "tst_mixer_section.moc"
