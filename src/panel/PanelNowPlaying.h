#pragma once

#include "platform/NowPlaying.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

class Panel;
struct Platform;

// The panel last shown, as the desktop's media controls see it. It watches
// every window that shows and keeps the last panel among them, so the panels
// themselves know nothing of it. A press runs what that panel's own labels
// and Ctrl keys run, behind the error boundary as they do.
class PanelNowPlaying : public QObject, public NowPlaying {
    Q_OBJECT
public:
    explicit PanelNowPlaying(Platform &platform, QObject *parent = nullptr);
    ~PanelNowPlaying() override;

    Panel *panel() const; // null until a panel shows

    QString playerName() const override;
    Status status() const override;
    QString title() const override;
    QString url() const override;
    double position() const override;
    double length() const override;
    Abilities abilities() const override;

    void play() override;
    void pause() override;
    void playPause() override;
    void stop() override;
    void next() override;
    void previous() override;
    void seekTo(double seconds) override;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;

private:
    template <class Handler>
    void press(Handler &&handler);

    Platform &m_platform;
    QPointer<QWidget> m_shown; // a Panel; held by its base so the header needs no more of it
};
