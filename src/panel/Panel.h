#pragma once

#include "music/MusicHost.h"
#include "panel/PanelTraits.h"
#include "platform/Form.h"

#include <QHash>
#include <QIcon>
#include <QVariant>

#include <cstdint>
#include <memory>

class AnimationSurface;
class ClickLabel;
class LocalEngine;
class MixerSection;
class QFrame;
class QLabel;
class QLineEdit;
class QPushButton;
class StationEngine;
class Timer;
class zzSlider;

// The player panel: one design, five instances told apart by their traits.
// Geometry is kept in twips, exactly as the timers step it, and turned into
// pixels only when it is applied.
class Panel : public Form, private MusicHost {
    Q_OBJECT
public:
    Panel(Platform &platform, const PanelTraits &traits);
    ~Panel() override;

    const PanelTraits &traits() const { return m_traits; }
    bool isStation() const { return m_traits.isStation; }

    void Load() override;

    // The panel's outer size in twips, as the movements step it.
    double Width() const { return m_width; }
    void setWidth(double twips);
    double Height() const { return m_height; }
    void setHeight(double twips);

    // The moving title's left edge and its width, in twips.
    double fNameLeft() const { return m_fNameLeft; }
    void setfNameLeft(double twips);
    double fNameWidth() const;
    double fileHeight() const { return m_fileHeight; }

    // Fields of the panel.
    QString StationName;
    bool PlayHot = false;
    bool PreviousHot = false;
    bool PauseHot = false;
    bool NextHot = false;
    bool StopHot = false;

    // Engines: `player` in a station panel, `Player` in Mp3 (one of the two is null).
    StationEngine *player() const { return m_player.get(); }
    LocalEngine *Player() const { return m_localPlayer.get(); }
    AnimationSurface *pstate() const { return m_pstate.get(); }

    // The mixer: strips in the lower deck, the player's fader on the skin.
    MixerSection *mixer() const { return m_mixer.get(); }
    // The level bars on the strips and the "VU Meter" frame.
    class VuDisplay *display() const { return m_display; }

    // Controls by role, named as on the form.
    ClickLabel *Main;
    QLabel *pls;
    QFrame *file;
    QFrame *Frame3; // "Invisibles": never shown
    QLabel *cptn;
    QLabel *fName;
    QLabel *time;
    QLineEdit *wdth1;
    QLineEdit *wdth2;
    QLineEdit *t3;
    zzSlider *Slider1;
    QLabel *dur1;
    QLabel *dur2;
    QLabel *dur3;
    QPushButton *stss;
    ClickLabel *play;
    ClickLabel *pausel;
    ClickLabel *stop;
    ClickLabel *next;
    ClickLabel *previous;
    QLabel *ply, *plyp, *pause, *pausep, *stp, *stpp, *nxt, *nxtp, *pre, *prep;
    ClickLabel *fm;
    ClickLabel *ma;
    ClickLabel *Label9;
    ClickLabel *killme;
    ClickLabel *Label1;
    ClickLabel *Label2;
    ClickLabel *Label6;
    ClickLabel *Label7;
    ClickLabel *Label8;
    ClickLabel *Label10;
    ClickLabel *Label12;
    ClickLabel *Donate;

    Timer *sts;
    Timer *sts2;
    Timer *Timer1;
    Timer *Timer2;
    Timer *Timer3;
    Timer *hei1;
    Timer *hei2;
    Timer *scr1;
    Timer *scr2;

    // Procedures other parts call directly, as the design does.
    void stss_Click();
    void play_Click();
    void next_Click();
    void previous_Click();
    void stop_Click();
    void Label1_Click();
    void Label2_Click();

    // ---- Station selection (PanelStations.cpp) ----
    // The station buttons in table order, children of `file`; empty in Mp3.
    // (Elaborated names: this block keeps its own declarations.)
    QList<class GlowButton *> stationButtons;
    class GlowButton *stationButton(const QString &name) const; // null when the panel has none of that name
    void SelectStation(const struct Station &station);
    void stationTimer1_Timer(); // Timer1's handler in a station panel (Mp3 has its own)
    // ---- end of station selection ----

    // ---- Parts owned by other subsystems ----
    // The list buttons in every panel, and Mp3's list with its local playback.
    class MusicList *music() const { return m_music; }
    // The tag editor, in all five panels; it works in Mp3 only.
    class TagEditor *tagEditor() const { return m_tagEditor; }
    void fName_Change();

private:
    void buildMusic();
    void placeListButtons(); // under the list area, wherever its height stands
    // What the music part asks of its panel.
    LocalEngine &localEngine() override { return *m_localPlayer; }
    AnimationSurface &playLight() override { return *m_pstate; }
    double panelWidth() const override { return m_width; }
    void openList() override { Label1_Click(); }
    void resetTitle() override;
    void showTitle(const QString &text) override;
    void showTag() override;
    MusicList *m_music = nullptr;
    TagEditor *m_tagEditor = nullptr;

public:

    // ---- Chrome: the spots, the tray, the swinging icon, the shell toolkit (PanelChrome.cpp) ----
    // (Elaborated names: this block keeps its own declarations.)
    Timer *icntimer = nullptr;
    QLabel *Picture1 = nullptr; // the icon's drawing board, never shown
    QLabel *Picture2 = nullptr; // Tafm only: the fixed mast picture
    class QMenu *mnusystray = nullptr; // "Systray", where the panel has a tray
    class QAction *mnuRestore = nullptr;
    QAction *Space1 = nullptr;
    QAction *mnuexit = nullptr;

    // The icon frame, a position on the 1000-twip board, and whether it rises.
    std::int32_t iconFrame() const { return m_iconFrame; }
    bool iconFlag() const { return m_iconFlag; }
    static constexpr int BoardTwips = 1000;

    void Label8_Click();
    void Label10_Click();
    void Donate_Click();
    void mnuRestore_Click();
    void mnuexit_Click();
    void icntimer_Timer();
    void AnimateIcon();
    void Form_Resize();
    void Form_MouseMove(int button, int shift, double x, double y);
    QVariant Errora();
    QString Run(QString &File, QString &Parameters, QString &Directory);
    static QString DonationAddress();
    static struct NotifyIconData TrayIcon; // the one tray record, shared by every panel

protected:
    void changeEvent(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;

private:
    void buildChrome();
    void prepareIcon(); // Load's step 4
    const QIcon &boardIcon(std::int32_t frame);
    void showIcon(const QIcon &icon);
    std::int32_t m_iconFrame = 0;
    bool m_iconFlag = true;
    QHash<std::int32_t, QIcon> m_boards; // each frame drawn once
    QIcon m_board;                       // the board as AnimateIcon left it
    QIcon m_picture2;
    QIcon m_iconWanted;                  // what the window shows once it is on screen

public:
    // ---- end of chrome ----

    static constexpr double ScrollOrigin = 10320;
    static constexpr double LeftTurn = 1920;
    static constexpr double NarrowLimit = 12885;
    static constexpr double FoldLimit = 4800;
    static constexpr double UnfoldLimit = 8100;
    static constexpr double FoldedListHeight = 4380;
    static constexpr double LoadedWidth = 12841;
    static constexpr double LoadedHeight = 4800;

protected:
    bool keyPreview(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    void buildSkin();
    void buildTransport();
    void buildNavigation();
    void buildLayoutControls();
    void buildTimers();
    void connectHandlers();
    void buildStations();   // PanelStations.cpp

    // Status and transport (station panels).
    void sts_Timer();
    void sts2_Timer();
    void Slider1_Change();
    void Main_MouseMove();
    void hover(ClickLabel *label, QLabel *lit, QLabel *pressed, bool *hot, bool *testedHot);

    // Title scroller and layout animation.
    void scr1_Timer();
    void scr2_Timer();
    void hei1_Timer();
    void hei2_Timer();
    void Timer2_Timer();
    void Timer3_Timer();
    void setfileHeight(double twips);
    void setTitle(const QString &text);
    void storeTurningPoint();

    // Navigation and ending.
    void fm_Click();
    void Label9_Click();
    void killme_Click();
    void Form_Unload();

    const PanelTraits &m_traits;
    std::unique_ptr<StationEngine> m_player;
    std::unique_ptr<LocalEngine> m_localPlayer;
    std::unique_ptr<AnimationSurface> m_pstate;
    double m_width = 0;
    double m_height = 0;
    double m_fNameLeft = ScrollOrigin;
    double m_fileHeight = 7815;
    std::unique_ptr<MixerSection> m_mixer; // after the engines, which it reaches
    VuDisplay *m_display = nullptr;        // a child: its bars live in the mixer's strips
};
