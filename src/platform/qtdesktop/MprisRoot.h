#pragma once

#include <QDBusAbstractAdaptor>
#include <QStringList>

class MprisService;

// org.mpris.MediaPlayer2: who the player is. The program has no way out but
// its own (Kill Me, the map's exit, a panel's Unload) and no window that the
// desktop may raise on its own account, so it offers neither.
class MprisRoot : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(bool CanQuit READ CanQuit)
    Q_PROPERTY(bool CanRaise READ CanRaise)
    Q_PROPERTY(bool HasTrackList READ HasTrackList)
    Q_PROPERTY(QString Identity READ Identity)
    Q_PROPERTY(QString DesktopEntry READ DesktopEntry)
    Q_PROPERTY(QStringList SupportedUriSchemes READ SupportedUriSchemes)
    Q_PROPERTY(QStringList SupportedMimeTypes READ SupportedMimeTypes)
public:
    explicit MprisRoot(MprisService *service);

    bool CanQuit() const { return false; }
    bool CanRaise() const { return false; }
    bool HasTrackList() const { return false; }
    QString Identity() const { return QStringLiteral("Zarvent"); }
    QString DesktopEntry() const { return QStringLiteral("zarvent"); }
    QStringList SupportedUriSchemes() const { return {}; }
    QStringList SupportedMimeTypes() const { return {}; }

public slots:
    void Raise() {}
    void Quit() {}
};
