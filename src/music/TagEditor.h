#pragma once

#include <QList>
#include <QObject>

#include <memory>

class GlowButton;
class LocalEngine;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QWidget;
class cIDV3;
struct Platform;

// The tag editor in the lower part of every panel: the "File Info" fields,
// the "MPEG Info" box and the three buttons. It works only where the panel
// has a local engine; without one its buttons are disabled for good and
// nothing fills it.
class TagEditor : public QObject {
    Q_OBJECT
public:
    // `engine` is the panel's local engine, null in the station panels.
    TagEditor(Platform &platform, QWidget *panel, QWidget *invisibles, LocalEngine *engine);
    ~TagEditor() override;

    // The editor's share of a lower deck it has to leave room in: the left
    // part, its fields still wide enough for 30 characters.
    void fitLeftOfDeck();

    QGroupBox *Frame2 = nullptr;
    QGroupBox *mpeginfo = nullptr;
    QLabel *lblInfo = nullptr;
    QLabel *Label3 = nullptr;
    QList<QLabel *> lblFields;
    QLineEdit *txtFilename = nullptr;
    QLineEdit *txtTitle = nullptr;
    QLineEdit *txtArtist = nullptr;
    QLineEdit *txtAlbum = nullptr;
    QLineEdit *txtYear = nullptr;
    QLineEdit *txtComment = nullptr;
    QComboBox *cboGenre = nullptr;
    GlowButton *cmdsave = nullptr;
    GlowButton *cmdcancel = nullptr;
    GlowButton *cmdremove = nullptr;
    QPushButton *Command5 = nullptr; // hidden; its caption takes Save's status word
    cIDV3 *mTag() const { return m_mTag.get(); }

    void Command5_Click();
    void cmdsave_Click();
    void cmdremove_Click();
    void cmdcancel_Click();

private:
    template <class Sender, class Signal, class Handler>
    void on(Sender *sender, Signal signal, Handler handler);
    cIDV3 &madeTag();

    Platform &m_platform;
    LocalEngine *m_engine;
    std::shared_ptr<cIDV3> m_mTag; // made at first use, kept for the form's life
};
