// The mixer section of a panel on a scripted mixer device: the lines found
// at Load and their quirks, the level and balance arithmetic, the group
// fader, the two mutes and the player chain.
#include "basic/RuntimeError.h"
#include "doubles/ScriptedPlatform.h"
#include "mixer/MixerFader.h"
#include "mixer/MixerSection.h"
#include "mixer/Nebular1.h"
#include "mixer/PlayerFader.h"
#include "panel/Panel.h"
#include "platform/Twips.h"
#include "platform/alsa/AlsaMixerDevice.h"
#include "shell/ShellForms.h"
#include "widgets/ClickLabel.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using V = std::vector<std::uint32_t>;

namespace {

struct World {
    ScriptedPlatform sp;
    World() { defineForms(sp.platform); }
    MixerSection *open(const QString &name)
    {
        sp.forms.Show(name);
        return sp.forms.get<Panel>(name)->mixer();
    }
    std::uint32_t id(std::uint32_t component, std::uint32_t type) { return sp.mixer.control(component, type).id; }
    ScriptedMixerDevice::Write lastWrite() const { return sp.mixer.writes.last(); }
};

// The user's move: the fader reports it, as a drag would.
void drag(QAbstractSlider *fader, int position) { fader->setSliderPosition(position); }

QString raw(MixerSection *m, int strip) { return m->txtvolumecontrol[strip]->text(); }

} // namespace

class tst_mixer_section : public QObject {
    Q_OBJECT
private slots:
    void loadCrossesRawFieldsAndMarksMissingLines();
    void loadWithoutAMixer();
    void levelAndBalanceArithmetic();
    void staleLineLevel();
    void groupFaderAndItsLinks();
    void lineMutes();
    void playerFaderThresholdsAndMuteGap();
    void wrappersAndRequests();
    void alsaScaling();
};

void tst_mixer_section::loadCrossesRawFieldsAndMarksMissingLines()
{
    // Levels told apart by line, so a raw field shows whose level it holds.
    const std::uint32_t speakers = 65535, wave = 1000, cd = 3000, aux = 4000, phone = 6000, midi = 7000,
                        pcspk = 9000, digital = 8000, line = 2000, bass = 11000, treble = 10000;
    struct Case {
        const char *name;
        bool phoneMissing, toneMissing;
    } cases[] = {{"every line", false, false}, {"no telephone", true, false}, {"no treble or bass", false, true}};
    for (const Case &c : cases) {
        World w;
        ScriptedMixerDevice &d = w.sp.mixer;
        d.control(mixer::Speakers, mixer::Volume).values = {speakers, speakers};
        d.control(mixer::WaveOutSource, mixer::Volume).values = {wave, 500}; // read as the louder channel
        d.control(mixer::CompactDiscSource, mixer::Volume).values = {cd, cd};
        d.control(mixer::UndefinedSource, mixer::Volume).values = {aux, aux};
        d.control(mixer::TelephoneSource, mixer::Volume).values = {phone, phone};
        d.control(mixer::SynthesizerSource, mixer::Volume).values = {midi, midi};
        d.control(mixer::PcSpeakerSource, mixer::Volume).values = {pcspk, pcspk};
        d.control(mixer::DigitalSource, mixer::Volume).values = {digital, digital};
        d.control(mixer::LineSource, mixer::Volume).values = {line, line};
        d.control(mixer::Speakers, mixer::Bass).values = {bass, bass};
        d.control(mixer::Speakers, mixer::Treble).values = {treble, treble};
        d.control(mixer::MicrophoneSource, mixer::Volume).values = {12345, 12345};
        if (c.phoneMissing)
            d.removeLine(mixer::TelephoneSource);
        if (c.toneMissing) {
            d.removeControl(mixer::Speakers, mixer::Treble);
            d.removeControl(mixer::Speakers, mixer::Bass);
        }
        MixerSection *m = w.open(QStringLiteral("Tafm"));
        QVERIFY2(w.sp.dialogs.shown.isEmpty(), c.name);

        // The raw field and the fader of each pass land on the strip numbered
        // like the pass; a missing line repeats the level before it.
        const std::uint32_t byPass[12] = {speakers, wave, wave,  cd,    aux,  c.phoneMissing ? aux : phone, midi, pcspk,
                                          digital,  line, c.toneMissing ? line : bass, c.toneMissing ? line : treble};
        for (int step = 0; step < 12; ++step) {
            QCOMPARE(raw(m, step), QString::number(byPass[step]));
            // NoDevice of the treble, in the last pass, puts fader 10 back to 0.
            const bool reset = c.toneMissing && step == 10;
            QCOMPARE(m->VolumeControl[step]->Value(), reset ? 0 : int(65535 - byPass[step]));
        }
        // The 0-to-10 fields do belong to their own lines; the microphone's keeps its start text.
        QCOMPARE(m->TXTVol->text(), QString("10.0007630093087"));
        QCOMPARE(m->Text5->text(), QString("0.152601861742713"));
        QCOMPARE(m->Text3->text(), QString("32768"));
        QCOMPARE(m->lineRecord[3].dwControlID, 0u);
        // The strips lie whole inside the unfolded, narrow panel.
        const QRect unfolded(0, 0, twips::toPixels(Panel::LoadedWidth), twips::toPixels(Panel::UnfoldLimit + 20));
        QVERIFY(unfolded.contains(m->f1->geometry()));
        // Load's refresh reads the crossed raw fields.
        QCOMPARE(m->T0[0]->text(), QString("100"));
        // Strip 5 shows the telephone's 6000, or AUX's 4000 where it is missing.
        QCOMPARE(m->T0[5]->text(), QString(c.phoneMissing ? "6.10360875867857" : "9.15541313801785"));
        if (c.phoneMissing) {
            QCOMPARE(m->Text6->text(), QString("N/A"));
            QVERIFY(m->VolFrame[6]->isHidden() && m->VolumeControl[6]->isHidden());
            QVERIFY(m->Picture11[6]->isHidden() && m->SBMLink[6]->isHidden() && m->BalanceControl[6]->isHidden());
        }
        if (c.toneMissing) {
            QCOMPARE(m->Text10->text(), QString("N/A"));
            QCOMPARE(m->T0[10]->text(), QString("N/A"));
            QCOMPARE(m->T0[11]->text(), QString("N/A"));
            QVERIFY(m->VolFrame[10]->isHidden() && m->VolFrame[11]->isHidden());
            QVERIFY(!m->BalanceControl[10]->isHidden() && !m->BalanceControl[11]->isHidden());
        } else {
            QVERIFY(!m->VolFrame[10]->isHidden());
        }
    }

    // A position outside a fader's range is an invalid property value.
    World outside;
    MixerSection *any = outside.open(QStringLiteral("Afm"));
    for (int position : {-1, 65536}) {
        try {
            any->VolumeControl[0]->setValue(position);
            QFAIL("no error for a position out of range");
        } catch (const basic::RuntimeError &e) {
            QCOMPARE(e.number(), int(basic::InvalidPropertyValue));
        }
    }

    // A failed read shows -1 / 6553 and skips the closing part.
    World w;
    w.sp.mixer.control(mixer::Speakers, mixer::Volume).failRead = true;
    MixerSection *m = w.open(QStringLiteral("Afm"));
    QCOMPARE(m->TXTVol->text(), QString("-1.52601861742713E-04"));
    QCOMPARE(raw(m, 0), QString("32768"));
    QCOMPARE(m->lineLevel, 32768); // the last line read, the treble, at the device's default
    // An unknown key leaves the level and shows it.
    m->GetTheDevice(m->Text4, QStringLiteral("nothing"));
    QCOMPARE(m->Text4->text(), QString("5.00045780558523"));
}

void tst_mixer_section::loadWithoutAMixer()
{
    World w;
    w.sp.mixer.openResult = mixer::BadDeviceId;
    MixerSection *tafm = w.open(QStringLiteral("Tafm"));
    w.open(QStringLiteral("Mp3"));
    QCOMPARE(w.sp.dialogs.shown.size(), 2); // once per panel opened
    for (const ShownBox &box : w.sp.dialogs.shown) {
        QCOMPARE(box.prompt, QString("Couldn't open the mixer please check if a audio mixer is installed then retry."));
        QCOMPARE(box.style, 0);
        QVERIFY(box.title.isEmpty());
    }
    QCOMPARE(tafm->Text11->text(), QString("32768"));
    QCOMPARE(tafm->T0[0]->text(), QString("50.0007629510948"));
    QVERIFY(!tafm->VolFrame[6]->isVisibleTo(tafm->f1) && tafm->VolFrame[7]->isVisibleTo(tafm->f1));
    // The panel works on: a fader still moves its fields, a mute still toggles.
    drag(tafm->VolumeControl[2], 65535);
    QCOMPARE(tafm->T0[2]->text(), QString("0"));
    tafm->MuteOff[0]->click();
    QVERIFY(tafm->MuteOff[0]->isChecked() && !tafm->MuteOn[0]->isChecked());
    QVERIFY(w.sp.mixer.writes.isEmpty());
}

void tst_mixer_section::levelAndBalanceArithmetic()
{
    World w;
    MixerSection *m = w.open(QStringLiteral("Malfm"));
    const std::uint32_t master = w.id(mixer::Speakers, mixer::Volume);
    // Balance moves leave the percent field as the last level move left it.
    const char *p1 = "50.0022888532845", *t1 = "5.00061040744697";
    struct Move {
        MixerFader *fader;
        int position;
        const char *rawText, *percent, *tenths;
        V channels;
    } moves[] = {
        {m->VolumeControl[0], 0, "65535", "100", "10.0007630093087", {65535, 65535}},
        {m->VolumeControl[0], 65535, "0", "0", "0", {0, 0}},
        {m->BalanceControl[0], 50, "0", "0", "0", {0, 0}},
        {m->VolumeControl[0], 65535 - 32769, "32769", p1, t1, {16384, 32769}}, // 16384.5 to even
        {m->BalanceControl[0], -50, "32769", p1, t1, {32769, 16384}},
        {m->BalanceControl[0], 100, "32769", p1, t1, {0, 32769}},
        {m->BalanceControl[0], -50, "32769", p1, t1, {32769, 16384}},
        {m->VolumeControl[0], 65535 - 3, "3", "4.57770656900893E-03", "4.5780558522814E-04", {3, 2}}, // 1.5 to even
    };
    for (const Move &mv : moves) {
        drag(mv.fader, mv.position);
        QCOMPARE(raw(m, 0), QString(mv.rawText));
        QCOMPARE(m->T0[0]->text(), QString(mv.percent));
        QCOMPARE(m->TXTVol->text(), QString(mv.tenths));
        QCOMPARE(w.lastWrite().controlId, master);
        QCOMPARE(w.lastWrite().values, mv.channels);
    }
    // A level move refreshes every percent field from its raw field, whatever moved.
    w.sp.mixer.writes.clear();
    drag(m->VolumeControl[7], 0);
    QCOMPARE(w.lastWrite().controlId, w.id(mixer::SynthesizerSource, mixer::Volume));
    QCOMPARE(w.lastWrite().values, (V{65535, 65535})); // MIDI is a stereo strip
    QCOMPARE(m->T0[7]->text(), QString("100"));
    QCOMPARE(m->Text7->text(), QString("10.0007630093087"));
}

void tst_mixer_section::staleLineLevel()
{
    World w;
    MixerSection *m = w.open(QStringLiteral("kanna"));
    drag(m->VolumeControl[5], 65535 - 40000);
    drag(m->VolumeControl[2], 65535 - 20000);
    // Balance on strip 5 writes strip 5's own raw level, but shows strip 2's.
    drag(m->BalanceControl[5], -50);
    QCOMPARE(w.lastWrite().controlId, w.id(mixer::WaveOutSource, mixer::Volume));
    QCOMPARE(w.lastWrite().values, (V{40000, 20000}));
    QCOMPARE(m->Text5->text(), QString("3.05203723485427"));
    // A mono strip writes the stale level of the strip moved last: here the treble.
    drag(m->BalanceControl[10], 10);
    QCOMPARE(w.lastWrite().controlId, w.id(mixer::Speakers, mixer::Treble));
    QCOMPARE(w.lastWrite().values, (V{20000}));
    QCOMPARE(m->Text10->text(), QString("3.05203723485427"));
    // The bass takes its own level when its own fader moves.
    drag(m->VolumeControl[11], 65535 - 123);
    QCOMPARE(w.lastWrite().controlId, w.id(mixer::Speakers, mixer::Bass));
    QCOMPARE(w.lastWrite().values, (V{123}));
    // The microphone's level record was never filled: its writes go nowhere.
    const int before = w.sp.mixer.writes.size();
    drag(m->VolumeControl[3], 0);
    QCOMPARE(w.sp.mixer.writes.size(), before);
    QCOMPARE(Nebular1::lastResult, mixer::InvalidControl);
}

void tst_mixer_section::groupFaderAndItsLinks()
{
    World w;
    MixerSection *m = w.open(QStringLiteral("Tafm"));
    drag(m->BalanceControl[0], 20); // left 26214, right 32768 from the load's raw 32768
    // Check11 ticks and unticks every link, those of hidden strips too;
    // its third state does nothing.
    m->Check11->click();
    for (QCheckBox *link : m->SBMLink)
        QVERIFY(link->isChecked());
    m->Check11->setCheckState(Qt::PartiallyChecked);
    m->Check11_Click();
    QVERIFY(m->SBMLink[9]->isChecked());
    m->Check11->setCheckState(Qt::Unchecked);
    m->Check11_Click();
    for (QCheckBox *link : m->SBMLink)
        QVERIFY(!link->isChecked());

    m->SBMLink[5]->setChecked(true);
    w.sp.mixer.writes.clear();
    drag(m->Slider6, 65535 - 1000);
    // First the master record with the working channels, whichever strip is
    // linked; then the strip's own move.
    QCOMPARE(w.sp.mixer.writes.size(), 2);
    QCOMPARE(w.sp.mixer.writes[0].controlId, w.id(mixer::Speakers, mixer::Volume));
    QCOMPARE(w.sp.mixer.writes[0].values, (V{26214, 32768}));
    QCOMPARE(w.sp.mixer.writes[1].controlId, w.id(mixer::WaveOutSource, mixer::Volume));
    QCOMPARE(w.sp.mixer.writes[1].values, (V{1000, 1000}));
    QCOMPARE(m->VolumeControl[5]->Value(), 65535 - 1000);

    // Command1 centres the balance faders and writes nothing.
    w.sp.mixer.writes.clear();
    m->Command1->click();
    QCOMPARE(m->BalanceControl[0]->Value(), 0);
    QVERIFY(w.sp.mixer.writes.isEmpty());
}

void tst_mixer_section::lineMutes()
{
    World w;
    w.sp.mixer.removeControl(mixer::CompactDiscSource, mixer::Mute);
    MixerSection *m = w.open(QStringLiteral("Tafm"));
    const std::uint32_t micMute = w.id(mixer::MicrophoneSource, mixer::Mute);
    const std::uint32_t masterMute = w.id(mixer::Speakers, mixer::Mute);
    QVERIFY(m->MuteOn[3]->isChecked());

    // Before any click, a line with no mute control writes to control 0: nothing.
    m->MuteOff[1]->click();
    QVERIFY(w.sp.mixer.writes.isEmpty());
    QCOMPARE(m->lineFound, std::int16_t(0));
    // The microphone has a mute of its own, though its level record is empty.
    m->MuteOff[3]->click();
    QCOMPARE(w.lastWrite().controlId, micMute);
    QCOMPARE(w.lastWrite().values, (V{1}));
    QCOMPARE(w.sp.mixer.control(mixer::MicrophoneSource, mixer::Mute).values[1], 1u);
    m->MuteOn[3]->click();
    QCOMPARE(w.lastWrite().values, (V{0}));
    QCOMPARE(m->lineFound, std::int16_t(-1));
    // CD has no mute: its click goes to the control the last click found.
    m->MuteOff[0]->click();
    m->MuteOff[1]->click();
    QCOMPARE(w.lastWrite().controlId, masterMute);
    QCOMPARE(w.lastWrite().values, (V{1}));
    m->MuteOn[1]->click();
    QCOMPARE(w.lastWrite().controlId, micMute); // muteOnControl last held the microphone's
    // The last strip with a pair, the PC speaker, finds its own.
    m->MuteOff[9]->click();
    QCOMPARE(w.lastWrite().controlId, w.id(mixer::PcSpeakerSource, mixer::Mute));
}

void tst_mixer_section::playerFaderThresholdsAndMuteGap()
{
    World w;
    MixerSection *m = w.open(QStringLiteral("Tafm"));
    ScriptedStationEngine *engine = w.sp.media.stations.first();
    QCOMPARE(m->Volumesl->Value(), 100); // Load's 2000, held at the top
    QCOMPARE(engine->vol, 50);           // and no handler ran
    // The pictures lie under the spot that takes the click.
    for (QLabel *image : m->Image3)
        QCOMPARE(image->geometry(), m->mutel->geometry());

    auto shown = [&] {
        int only = -1, count = 0;
        for (int i = 0; i < 4; ++i)
            if (!m->Image3[i]->isHidden())
                only = i, ++count;
        return count > 1 ? 9 : only;
    };
    struct Step {
        int v;
        bool muted;
        int image; // the one shown, -1 none
        std::uint32_t colour;
    } steps[] = {
        {30, false, 1, 0xC0C000},  {0, true, 3, 0xC0C000},   {10, true, 3, 0xC0C000},     {22, true, 3, 0x80000012},
        {25, false, 1, 0x80000012}, {45, false, 1, 130},      {70, false, 2, 128},         {85, false, 2, 0},
        {100, false, -1, 255},      {59, false, 1, 130},      {60, false, 2, 128},
    };
    for (const Step &s : steps) {
        drag(m->Volumesl, s.v);
        QCOMPARE(engine->vol, s.v);
        QCOMPARE(engine->muted, s.muted);
        QCOMPARE(shown(), s.image);
        QCOMPARE(m->vlForeColor(), s.colour);
        QCOMPARE(m->vl->text(), QString::number(s.v));
        QCOMPARE(m->levelText, QString::number(s.v));
    }
    // mutel twice at 50: silent with the muted picture, then sound with none.
    drag(m->Volumesl, 50);
    QTest::mouseClick(m->mutel, Qt::LeftButton);
    QVERIFY(engine->muted);
    QCOMPARE(shown(), 0);
    QTest::mouseClick(m->mutel, Qt::LeftButton);
    QVERIFY(!engine->muted);
    QCOMPARE(shown(), -1);

    // Mp3 reaches its engine through Volume, in hundredths of a decibel.
    MixerSection *mp3 = w.open(QStringLiteral("Mp3"));
    ScriptedLocalEngine *local = w.sp.media.locals.first();
    const std::tuple<int, long, bool> mp3Steps[] = {
        {100, 0, false}, {0, -2500, true}, {12, -2200, true}, {25, -1875, false}};
    for (auto [v, volume, muted] : mp3Steps) {
        drag(mp3->Volumesl, v);
        QCOMPARE(local->vol, volume);
        QCOMPARE(local->muted, muted);
    }
}

void tst_mixer_section::wrappersAndRequests()
{
    ScriptedMixerDevice d;
    std::uint32_t h = 0;
    QCOMPARE(d.mixerOpen(&h, 1), mixer::BadDeviceId);
    QCOMPARE(d.mixerOpen(&h, 0), mixer::NoError);
    mixer::Control rec{};
    rec.dwControlID = 77;
    // A missing line leaves the record untouched; a missing control leaves
    // the size mark the wrapper wrote before asking.
    d.removeLine(mixer::TelephoneSource);
    QCOMPARE(Nebular1::GetMixerControl(d, h, mixer::TelephoneSource, mixer::Volume, rec), std::int16_t(0));
    QCOMPARE(Nebular1::lastResult, mixer::InvalidLine);
    QCOMPARE(rec.cbStruct, 0u);
    QCOMPARE(Nebular1::GetMixerControl(d, h, mixer::LineSource, mixer::Bass, rec), std::int16_t(0));
    QCOMPARE(Nebular1::lastResult, mixer::InvalidControl);
    QCOMPARE(rec.cbStruct, 148u);
    QCOMPARE(rec.dwControlID, 77u);
    QCOMPARE(Nebular1::GetMixerControl(d, h, mixer::LineSource, mixer::Volume, rec), std::int16_t(-1));
    QCOMPARE(rec.dwControlID, d.control(mixer::LineSource, mixer::Volume).id);
    QCOMPARE(rec.dwMaximum, 65535u);

    QCOMPARE(Nebular1::SetStereoLevel(d, h, rec, 100, 200), std::int16_t(-1));
    QCOMPARE(Nebular1::GetControlValue(d, h, rec), 200);
    QCOMPARE(Nebular1::ClearControlValue(d, h, rec, 999), std::int16_t(-1));
    QCOMPARE(d.writes.last().values, (V{0}));
    // Failures are results: a bad handle, a mono line asked for two channels.
    QCOMPARE(Nebular1::SetControlValue(d, h + 1, rec, 5), std::int16_t(0));
    QCOMPARE(Nebular1::lastResult, mixer::InvalidHandle);
    d.addLine(mixer::PcSpeakerSource, 1, {mixer::Volume}, 7);
    QCOMPARE(Nebular1::GetMixerControl(d, h, mixer::PcSpeakerSource, mixer::Volume, rec), std::int16_t(-1));
    QCOMPARE(rec.fdwControl, mixer::UniformControl);
    QCOMPARE(Nebular1::SetStereoLevel(d, h, rec, 1, 2), std::int16_t(0));
    QCOMPARE(Nebular1::lastResult, mixer::InvalidParameter);
    d.control(mixer::PcSpeakerSource, mixer::Volume).failRead = true;
    QCOMPARE(Nebular1::GetControlValue(d, h, rec), -1);
}

void tst_mixer_section::alsaScaling()
{
    struct Case {
        long min, max, value;
        std::uint32_t level;
    } cases[] = {
        {0, 65536, 65536, 65535}, {0, 65536, 0, 0},      {0, 65536, 32768, 32768}, {0, 31, 31, 65535},
        {0, 31, 15, 31710},       {-20, 10, -20, 0},     {-20, 10, 10, 65535},     {-20, 10, -5, 32768},
        {5, 5, 5, 0},             {0, 100, 120, 65535},  {0, 100, -3, 0},
    };
    for (const Case &c : cases) {
        QCOMPARE(AlsaMixerDevice::toLevel(c.value, c.min, c.max), c.level);
        // Back to the same value where the element has no more steps than a level.
        if (c.value >= c.min && c.value <= c.max && c.max > c.min && c.max - c.min <= 65535)
            QCOMPARE(AlsaMixerDevice::fromLevel(c.level, c.min, c.max), c.value);
    }
    QCOMPARE(AlsaMixerDevice::fromLevel(32768, 0, 65536), 32769L); // 32768.5000076 to the nearest
    QCOMPARE(AlsaMixerDevice::fromLevel(70000, 0, 31), 31L);       // held at the top
}

QTEST_MAIN(tst_mixer_section)
#include "tst_mixer_section.moc"
