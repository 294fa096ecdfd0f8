#pragma once

#include <QObject>

#include <array>

class LedProgress;
class MixerSection;
class QGroupBox;
class QLineEdit;
class QProgressBar;
class QWidget;
class Timer;
struct Platform;

// What makes a panel look as if it metered its sound: a level bar on each
// strip a user sees, repainted from the strip's raw field, and the "VU
// Meter" frame, which stands still. Nothing here reads audio.
class VuDisplay : public QObject {
    Q_OBJECT
public:
    static constexpr int Strips = 12;

    VuDisplay(Platform &platform, QWidget *panel, MixerSection &mixer);

    // Puts Frame1 at a place of the panel, in twips.
    void place(double left, double top);

    // By strip; null for 1, 4, 6, 8 and 9, which have no bar.
    std::array<LedProgress *, Strips> Led{};
    QGroupBox *Frame1;
    QProgressBar *ProgressBar1;
    QProgressBar *ProgressBar2;
    QLineEdit *VuLeftLevel;
    QLineEdit *VuRightLevel;

    Timer *ctrlled;
    Timer *ctrlled2;
    Timer *sbm;
    Timer *vctrl;

    void ctrlled_Timer();
    void ctrlled2_Timer();
    void sbm_Timer();

private:
    void on(Timer *timer, void (VuDisplay::*handler)()); // behind the error boundary

    Platform &m_platform;
    MixerSection &m_mixer;
};
