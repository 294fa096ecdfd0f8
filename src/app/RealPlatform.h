#pragma once

#include "platform/AppInfo.h"
#include "platform/Forms.h"
#include "platform/Platform.h"
#include "platform/qtdesktop/RealClock.h"
#include "platform/posix/RealConnection.h"
#include "platform/qtdesktop/RealDialogs.h"
#include "platform/rtnetlink/RealInterfaceTable.h"
#include "platform/vlc/RealMedia.h"
#include "platform/qtdesktop/RealProcess.h"
#include "platform/qtdesktop/RealShell.h"
#include "platform/qtdesktop/RealTray.h"
#include "platform/alsa/AlsaMixerDevice.h"

#include <QStringList>

// Every real seam of this machine, put together once, with the bundle the
// forms take. Needs a QApplication.
struct RealPlatform {
    explicit RealPlatform(QStringList mediaOptions = {});

    AppInfo app;
    RealDialogs dialogs;
    RealConnection connection;
    RealShell shell;
    RealProcess process;
    RealClock clock;
    RealTray tray;
    RealInterfaceTable interfaces;
    RealMedia media;
    AlsaMixerDevice mixer;
    Forms forms; // after every seam: its forms go first
    Platform platform;
};
