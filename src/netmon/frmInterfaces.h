#pragma once

#include "basic/Checked.h"
#include "netmon/CIpHelper.h"
#include "platform/Clock.h"
#include "platform/Form.h"
#include "platform/Tray.h"

#include <QIcon>
#include <QList>
#include <QPixmap>

#include <memory>

class QAction;
class QComboBox;
class QGroupBox;
class QLabel;
class QMenu;
class QPushButton;
class QTreeWidget;

// "Network Interfaces Information": the counters of one chosen interface,
// the byte totals of all of them, and a picture that lights up with traffic,
// mirrored by an icon in the notification area that lives on while the
// window is hidden.
class frmInterfaces : public Form {
    Q_OBJECT
public:
    explicit frmInterfaces(Platform &platform);
    ~frmInterfaces() override;

    void Load() override;
    // Takes the icon away and puts the window back to not loaded; the next
    // show loads it afresh.
    void Unload();
    bool isLoaded() const { return m_loaded; }

    // position is 1-based: the selected entry of Combo1 plus one.
    void RefreshInterfaceInfo(basic::Long position);

    QGroupBox *Frame1;
    QComboBox *Combo1;
    QGroupBox *Frame2;
    QTreeWidget *lvInterfaceInfo;
    QGroupBox *Frame3;
    QLabel *Image1;
    QLabel *Label1;
    QLabel *lblRecv;
    QLabel *Label2;
    QLabel *lblSent;
    QPushButton *cmdHide;
    QPushButton *cmdExit;
    Timer *Timer1;
    QMenu *mPopupSys;
    QAction *mPopRestore;
    QAction *mPopExit;

    // The activity pictures, 1-based like the lists they stand for: 32 by 32
    // for Image1, 16 by 16 for the tray.
    const QPixmap &ImageList2(int index) const { return m_large.at(index - 1); }
    const QIcon &ImageList1(int index) const { return m_small.at(index - 1); }

    const NotifyIconData &trayIcon() const { return mTrayIcon; }

    static constexpr int ScaleMode = 1;      // twips
    static constexpr int TwipsPerPixelX = 15;

protected:
    void changeEvent(QEvent *event) override;
    void closeEvent(QCloseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void showEvent(QShowEvent *event) override;

private:
    void Combo1_Click();
    void Timer1_Timer();
    void cmdHide_Click();
    void cmdExit_Click();
    void mPopRestore_Click();
    void mPopExit_Click();
    void Form_MouseMove(int button, int shift, double x, double y);
    void Form_Unload();
    void setListIndex(int index);
    void restore();
    void SetForegroundWindow();
    void clearLoadedState();
    static QString tip(basic::Long received, basic::Long sent);

    std::unique_ptr<CIpHelper> mIpHelper;
    NotifyIconData mTrayIcon;
    std::shared_ptr<CInterface> mLastInterface;
    basic::Long mLastBytesReceived = 0;
    basic::Long mLastBytesSent = 0;

    QList<QPixmap> m_large;
    QList<QIcon> m_small;
    bool m_loaded = false;
    int m_shownPicture = 0; // the index Image1 holds, 0 for none
};
