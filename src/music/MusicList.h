#pragma once

#include <QObject>
#include <QString>

#include <memory>

class CommonDialog;
class FileList;
class MusicHost;
class QFrame;
class QLabel;
class QPushButton;
class QWidget;
class zzSlider;
struct Platform;

// The controls of the panel's skin that local playback drives: the play
// and pause lights, the time line and the time readings.
struct PlaybackDisplay {
    QWidget *play;  // enabled while a click can start the track
    QWidget *pause; // the pause picture, lit while playing
    zzSlider *Slider1;
    QLabel *dur1;
    QLabel *dur2;
    QLabel *dur3;
};

// The list of a folder and its local playback: the four list buttons under
// the list area (drawn in every panel), and in Mp3 the list `file` itself,
// the start of a track, the transport, the time display and the seek.
class MusicList : public QObject {
    Q_OBJECT
public:
    MusicList(Platform &platform, QWidget *panel, MusicHost &host);
    ~MusicList() override;

    // Gives flder its work in a station panel that keeps it.
    void keepFolderButton();

    // Mp3: the list takes the place and the height of the frame `file`,
    // which it replaces; the hidden clk goes among the invisibles. The list
    // is returned to stand as the panel's `file`.
    FileList *makeList(QFrame *file, QWidget *invisibles, const PlaybackDisplay &display);

    // Just under the list area, wherever its height (in twips) stands.
    void placeButtons(double listHeight);

    FileList *fileList() const { return m_fileList; }
    CommonDialog *CMN() const { return m_cmn.get(); }
    QString SelectedPath; // written by ShowSelectedTag; nothing reads it
    QPushButton *files = nullptr;
    QPushButton *flder = nullptr;
    QPushButton *Command3 = nullptr; // keeps its state in its caption and the folder in "Tag"
    QPushButton *Command4 = nullptr;
    QPushButton *clk = nullptr; // Mp3 only, hidden

    void file_Click(); // the start of a track
    void clk_Click();
    void ShowSelectedTag();
    static QString FileTail(const QString &path);
    void files_Click();
    void flder_Click();
    void Command3_Click();
    void Command4_Click();

    // Mp3's transport; the station panels have their own.
    void localPlay_Click();
    void localPausel_Click();
    void localStop_Click();
    void localNext_Click();
    void localPrevious_Click();
    void Timer1_Timer();
    void localSlider1_Change();
    void Slider1_SliderScroll();

private:
    template <class Sender, class Signal, class Handler>
    void on(Sender *sender, Signal signal, Handler handler);

    Platform &m_platform;
    MusicHost &m_host;
    PlaybackDisplay m_display{};
    FileList *m_fileList = nullptr;
    std::shared_ptr<CommonDialog> m_cmn;
};
