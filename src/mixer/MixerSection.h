#pragma once

#include "platform/MixerRecords.h"

#include <QObject>
#include <QString>

#include <array>
#include <cstdint>
#include <memory>

class ClickLabel;
class MixerFader;
class PlayerFader;
class PlayerSound;
class QCheckBox;
class QFrame;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;
struct Platform;

// The mixer of one panel: twelve channel strips over the machine's mixer
// lines in the frame f1 (strips 0, 2, 3, 5, 7, 10 and 11 show, the others
// are laid out hidden), the hidden group fader with its links, the line
// mutes, and the player chain (the fader Volumesl over the skin's groove,
// its percent label, the speaker pictures and the player mute). The panel
// owns one, places f1 and calls OpenMixerLines and RefreshPercents from its
// Load; the section reaches the panel's engine only through PlayerSound.
// The mixer chain and the player chain share no value.
class MixerSection : public QObject {
    Q_OBJECT
public:
    static constexpr int Strips = 12;
    static constexpr int MuteStrips = 10; // strips 10 and 11 have no mute pair

    MixerSection(Platform &platform, QWidget *panel, std::unique_ptr<PlayerSound> sound);
    ~MixerSection() override;

    // Puts f1 at a place of the panel, in twips.
    void place(double left, double top);

    // State of the mixer access and the working levels.
    std::uint32_t hMixer = 0;
    std::uint32_t mixerResult = 0;
    std::int16_t lineFound = 0;
    std::int32_t lineLevel = 0;
    std::int32_t leftLevel = 0;
    std::int32_t rightLevel = 0;
    QString levelText;
    std::array<mixer::Control, Strips> lineRecord{}; // by strip; the microphone's is never filled
    mixer::Control muteOnControl{};
    mixer::Control muteOffControl{};

    // The strips.
    QFrame *f1;
    std::array<QGroupBox *, Strips> VolFrame{};
    std::array<MixerFader *, Strips> VolumeControl{};
    std::array<MixerFader *, Strips> BalanceControl{};
    std::array<QLineEdit *, Strips> txtvolumecontrol{}; // hidden: the raw level
    std::array<QLineEdit *, Strips> T0{};
    QLineEdit *TXTVol = nullptr;
    QLineEdit *Text1 = nullptr, *Text2 = nullptr, *Text3 = nullptr, *Text4 = nullptr, *Text5 = nullptr;
    QLineEdit *Text6 = nullptr, *Text7 = nullptr, *Text8 = nullptr, *Text9 = nullptr, *Text10 = nullptr;
    QLineEdit *Text11 = nullptr;
    QLineEdit *levelField(int strip) const; // TXTVol for strip 0, TextN for strip N
    std::array<QFrame *, MuteStrips> Picture11{};
    std::array<QPushButton *, MuteStrips> MuteOn{};  // caption "Unmute": takes the mute off
    std::array<QPushButton *, MuteStrips> MuteOff{}; // caption "Mute": puts it on
    std::array<QCheckBox *, MuteStrips> SBMLink{};

    // The group fader, laid out hidden.
    QGroupBox *Frame13 = nullptr;
    MixerFader *Slider6 = nullptr;
    QCheckBox *Check11 = nullptr;
    QPushButton *Command1 = nullptr;
    QLabel *Label11 = nullptr;

    // The player chain.
    PlayerFader *Volumesl = nullptr;
    QLabel *vl = nullptr;
    std::array<QLabel *, 4> Image3{}; // 0 muted, 1 low, 2 high, 3 silent
    ClickLabel *mutel = nullptr;
    std::uint32_t vlForeColor() const { return m_vlForeColor; }

    // Procedures and handlers, callable as the design calls them.
    void OpenMixerLines();
    void GetTheDevice(QLineEdit *field, const QString &key);
    void NoDevice(QLineEdit *field, QGroupBox *frame, MixerFader *fader);
    void RefreshPercents(); // the percent fields, as Load and every level move fill them
    void VolumeControl_Change(int Index);
    void BalanceControl_Change(int Index);
    void Slider6_Change();
    void Command1_Click();
    void Volumesl_Change();
    void vl_Change();
    void MuteOn_Click(int Index);
    void MuteOff_Click(int Index);
    void mutel_Click();
    void Check11_Click();

    static const QString NoMixerMessage;

private:
    void buildStrips();
    void buildStrip(int strip, int slot);
    void buildGroupFader();
    void buildPlayerChain(QWidget *panel);
    void connectHandlers();
    template <class Sender, class Signal, class Handler>
    void on(Sender *sender, Signal signal, Handler handler);

    void setvlCaption(const QString &text);
    void setvlForeColor(std::uint32_t colour);
    void showOnlyImage(int index); // -1 hides all four

    Platform &m_platform;
    std::unique_ptr<PlayerSound> m_sound;
    std::uint32_t m_vlForeColor = 0xFFFFFF;
};
