// The mixer's procedures: the lines opened at Load, the level, balance and
// group faders, the line mutes and the player chain. The controls are built
// in MixerStrips.cpp.

#include "mixer/MixerSection.h"

#include "basic/Checked.h"
#include "basic/NumberText.h"
#include "mixer/MixerFader.h"
#include "mixer/Nebular1.h"
#include "mixer/PlayerFader.h"
#include "mixer/PlayerSound.h"
#include "platform/Dialogs.h"
#include "platform/MixerDevice.h"
#include "platform/Platform.h"

#include <QCheckBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

#include <optional>
#include <utility>

using basic::Long;

const QString MixerSection::NoMixerMessage =
    QStringLiteral("Couldn't open the mixer please check if a audio mixer is installed then retry.");

namespace {

// One pass of the load loop: the line looked up and the strip it fills.
struct Row {
    int strip;
    std::uint32_t component;
    std::uint32_t control;
    const char *key;
};

// By pass. Pass 2 would be the microphone, which has no lookup at all.
constexpr std::optional<Row> Passes[MixerSection::Strips] = {
    Row{0, mixer::Speakers, mixer::Volume, "VolCtrl"},
    Row{5, mixer::WaveOutSource, mixer::Volume, "WavCtrl"},
    std::nullopt,
    Row{1, mixer::CompactDiscSource, mixer::Volume, "CDVol"},
    Row{4, mixer::UndefinedSource, mixer::Volume, "AUXVol"},
    Row{6, mixer::TelephoneSource, mixer::Volume, "TELEPHONE"},
    Row{7, mixer::SynthesizerSource, mixer::Volume, "MIDIVol"},
    Row{9, mixer::PcSpeakerSource, mixer::Volume, "PCSPEAKER"},
    Row{8, mixer::DigitalSource, mixer::Volume, "I25InVol"},
    Row{2, mixer::LineSource, mixer::Volume, "LineVol"},
    Row{11, mixer::Speakers, mixer::Bass, "Bass"},
    Row{10, mixer::Speakers, mixer::Treble, "Treble"},
};

// GetTheDevice compares in this order; each key names the record of a strip.
constexpr std::pair<const char *, int> Keys[] = {
    {"VolCtrl", 0}, {"WavCtrl", 5},   {"MICROPHONE", 3}, {"CDVol", 1},  {"AUXVol", 4}, {"TELEPHONE", 6},
    {"MIDIVol", 7}, {"PCSPEAKER", 9}, {"I25InVol", 8},   {"LineVol", 2}, {"Bass", 11}, {"Treble", 10},
};

// The line of a strip when its mute is asked for; here the microphone has one.
constexpr std::uint32_t MuteComponent[MixerSection::MuteStrips] = {
    mixer::Speakers,        mixer::CompactDiscSource, mixer::LineSource,      mixer::MicrophoneSource,
    mixer::UndefinedSource, mixer::WaveOutSource,     mixer::TelephoneSource, mixer::SynthesizerSource,
    mixer::DigitalSource,   mixer::PcSpeakerSource,
};

bool isStereo(int strip)
{
    return strip == 0 || strip == 1 || strip == 2 || strip == 4 || strip == 5 || strip == 7 || strip == 8;
}

// A text box read as a number, as the runtime converts one: anything but a
// number is a type mismatch.
double number(const QLineEdit *box)
{
    bool ok = false;
    const double v = box->text().trimmed().toDouble(&ok);
    if (!ok)
        basic::raise(basic::TypeMismatch);
    return v;
}

// A box shows the start of its text, as the classic text box did.
void setText(QLineEdit *box, const QString &text)
{
    box->setText(text);
    box->setCursorPosition(0);
}

QString onScaleOfTen(Long level)
{
    return basic::generalText(basic::fdiv(level, 6553.0));
}

QString inPercent(const QLineEdit *raw)
{
    return basic::generalText(basic::fdiv(number(raw), 655.35));
}

} // namespace

void MixerSection::OpenMixerLines()
{
    MixerDevice &device = m_platform.mixer;
    mixerResult = device.mixerOpen(&hMixer, 0);
    if (mixerResult != mixer::NoError) {
        m_platform.dialogs.MsgBox(NoMixerMessage, MsgBox::OkOnly);
        return;
    }
    for (int step = 0; step < Strips; ++step) {
        if (const std::optional<Row> &row = Passes[step]) {
            lineFound = Nebular1::GetMixerControl(device, hMixer, row->component, row->control, lineRecord[row->strip]);
            if (lineFound)
                GetTheDevice(levelField(row->strip), QLatin1String(row->key));
            else
                NoDevice(levelField(row->strip), VolFrame[row->strip], VolumeControl[row->strip]);
        }
        // By the pass and not by the strip: from the second pass on, the raw
        // level and the fader land on the strip numbered like the pass. Only
        // a user's first move brings a strip and its line together.
        if (lineLevel != -1) {
            setText(txtvolumecontrol[step], QString::number(lineLevel));
            VolumeControl[step]->setValue(basic::sub<Long>(65535, lineLevel));
        }
    }
}

void MixerSection::GetTheDevice(QLineEdit *field, const QString &key)
{
    for (const auto &[name, strip] : Keys) {
        if (key == QLatin1String(name)) {
            lineLevel = Nebular1::GetControlValue(m_platform.mixer, hMixer, lineRecord[strip]);
            break;
        }
    }
    setText(field, onScaleOfTen(lineLevel));
}

void MixerSection::NoDevice(QLineEdit *field, QGroupBox *frame, MixerFader *fader)
{
    setText(field, QStringLiteral("N/A"));
    frame->hide();
    fader->setValue(0);
    fader->hide();
    const int index = fader->Index();
    if (index <= 9) {
        Picture11[index]->hide();
        SBMLink[index]->hide();
        BalanceControl[index]->hide();
    }
}

void MixerSection::RefreshPercents()
{
    setText(T0[0], inPercent(txtvolumecontrol[0]));
    for (int i : {11, 10, 5, 2, 3, 7}) {
        if (levelField(i)->text() == QLatin1String("N/A")) {
            // Strip 3 copies Text10, not its own box: kept as it stands
            // (Text3 never reads "N/A").
            setText(T0[i], (i == 3 ? Text10 : levelField(i))->text());
        } else {
            setText(T0[i], inPercent(txtvolumecontrol[i]));
        }
    }
}

void MixerSection::VolumeControl_Change(int Index)
{
    basic::checkIndex(Index, 0, Strips - 1);
    lineLevel = basic::sub<Long>(65535, VolumeControl[Index]->Value());
    setText(txtvolumecontrol[Index], QString::number(lineLevel));
    BalanceControl_Change(Index);
    RefreshPercents();
}

void MixerSection::BalanceControl_Change(int Index)
{
    basic::checkIndex(Index, 0, Strips - 1);
    const int b = BalanceControl[Index]->Value();
    const double r = number(txtvolumecontrol[Index]);
    rightLevel = basic::CLng(r * (b >= 0 ? 1.0 : basic::fdiv(b + 100, 100)));
    leftLevel = basic::CLng(r * (b <= 0 ? 1.0 : basic::fdiv(100 - b, 100)));
    // The mono strips write lineLevel: the level of whichever strip moved
    // last, not their own. The text shows it too. Both kept as they stand.
    if (isStereo(Index))
        Nebular1::SetStereoLevel(m_platform.mixer, hMixer, lineRecord[Index], leftLevel, rightLevel);
    else
        Nebular1::SetControlValue(m_platform.mixer, hMixer, lineRecord[Index], lineLevel);
    setText(levelField(Index), onScaleOfTen(lineLevel));
}

void MixerSection::Slider6_Change()
{
    for (int i = 0; i < MuteStrips; ++i) {
        if (!SBMLink[i]->isChecked())
            continue;
        if (VolumeControl[i]->isEnabled()) {
            // Always the master record, whichever strip is linked.
            Nebular1::SetStereoLevel(m_platform.mixer, hMixer, lineRecord[0], leftLevel, rightLevel);
            VolumeControl[i]->setValue(Slider6->Value());
        }
        VolumeControl_Change(i);
    }
}

void MixerSection::Command1_Click()
{
    // Nothing reaches the mixer until the strip's faders move again.
    for (int i = 0; i < MuteStrips; ++i)
        BalanceControl[i]->setValue(0);
}

void MixerSection::Check11_Click()
{
    const Qt::CheckState state = Check11->checkState();
    if (state == Qt::PartiallyChecked)
        return;
    for (int i = 0; i < MuteStrips; ++i)
        if (VolumeControl[i]->isEnabled())
            SBMLink[i]->setChecked(state == Qt::Checked);
}

void MixerSection::MuteOn_Click(int Index)
{
    // Found or not, the clear goes to whatever the record now holds.
    if (Index >= 0 && Index <= 9)
        lineFound = Nebular1::GetMixerControl(m_platform.mixer, hMixer, MuteComponent[Index], mixer::Mute,
                                              muteOnControl);
    Nebular1::ClearControlValue(m_platform.mixer, hMixer, muteOnControl, 0);
}

void MixerSection::MuteOff_Click(int Index)
{
    if (Index >= 0 && Index <= 9)
        lineFound = Nebular1::GetMixerControl(m_platform.mixer, hMixer, MuteComponent[Index], mixer::Mute,
                                              muteOffControl);
    Nebular1::SetControlValue(m_platform.mixer, hMixer, muteOffControl, 1);
}

void MixerSection::setvlCaption(const QString &text)
{
    // A caption written unchanged raises no Change.
    if (vl->text() == text)
        return;
    vl->setText(text);
    vl_Change();
}

void MixerSection::Volumesl_Change()
{
    const int v = Volumesl->Value();
    m_sound->setVolume(v);
    levelText = QString::number(v);
    setvlCaption(levelText);
    if (v == 100) {
        setvlForeColor(255);
        showOnlyImage(-1);
    } else if (v >= 80) {
        setvlForeColor(Volumesl->ForeColor());
    } else if (v >= 60) {
        setvlForeColor(128);
        showOnlyImage(2);
    } else if (v >= 40) {
        setvlForeColor(130);
    } else if (v >= 25) {
        showOnlyImage(1);
    } else if (v >= 20) {
        setvlForeColor(0x80000012);
    } else if (v == 0) {
        showOnlyImage(3);
        m_sound->setMute(true);
        m_sound->setMute(true);
    }
}

void MixerSection::vl_Change()
{
    const int v = Volumesl->Value();
    levelText = QString::number(v);
    setvlCaption(levelText);
    // Only here does the fader take the mute off: from 1 to 24 a player
    // silenced at 0 stays mute, and sound returns at 25.
    if (v == 100) {
        showOnlyImage(-1);
        m_sound->setMute(false);
    } else if (v >= 60) {
        showOnlyImage(2);
        m_sound->setMute(false);
    } else if (v >= 25) {
        showOnlyImage(1);
        m_sound->setMute(false);
    } else if (v == 0) {
        showOnlyImage(3);
        m_sound->setMute(true);
    }
}

void MixerSection::mutel_Click()
{
    // The level picture comes back only with the fader's next move.
    if (m_sound->mute()) {
        m_sound->setMute(false);
        Image3[0]->hide();
    } else {
        m_sound->setMute(true);
        Image3[0]->show();
        Image3[1]->hide();
        Image3[2]->hide();
        Image3[3]->hide();
    }
}
