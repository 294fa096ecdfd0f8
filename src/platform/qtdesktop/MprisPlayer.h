#pragma once

#include <QDBusAbstractAdaptor>
#include <QDBusObjectPath>
#include <QVariantMap>

class MprisService;

// org.mpris.MediaPlayer2.Player: the state and title of the panel last
// shown, and its transport. Rate and volume stay the program's own: the bus
// reads them and cannot write them.
class MprisPlayer : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ PlaybackStatus)
    Q_PROPERTY(QVariantMap Metadata READ Metadata)
    Q_PROPERTY(double Rate READ Rate)
    Q_PROPERTY(double MinimumRate READ Rate)
    Q_PROPERTY(double MaximumRate READ Rate)
    Q_PROPERTY(double Volume READ Volume)
    Q_PROPERTY(qlonglong Position READ Position)
    Q_PROPERTY(bool CanPlay READ CanPlay)
    Q_PROPERTY(bool CanPause READ CanPause)
    Q_PROPERTY(bool CanGoNext READ CanGoNext)
    Q_PROPERTY(bool CanGoPrevious READ CanGoPrevious)
    Q_PROPERTY(bool CanSeek READ CanSeek)
    Q_PROPERTY(bool CanControl READ CanControl)
public:
    explicit MprisPlayer(MprisService *service);

    QString PlaybackStatus() const;
    QVariantMap Metadata() const;
    double Rate() const { return 1.0; }
    double Volume() const { return 1.0; }
    qlonglong Position() const;
    bool CanPlay() const;
    bool CanPause() const;
    bool CanGoNext() const;
    bool CanGoPrevious() const;
    bool CanSeek() const;
    bool CanControl() const { return true; }

public slots:
    void Play();
    void Pause();
    void PlayPause();
    void Stop();
    void Next();
    void Previous();
    void Seek(qlonglong Offset);
    void SetPosition(const QDBusObjectPath &TrackId, qlonglong Position);
    void OpenUri(const QString &Uri);

signals:
    void Seeked(qlonglong Position);

private:
    MprisService &m_service;
};
