#pragma once

#include "platform/AppInfo.h"
#include "platform/Forms.h"
#include "platform/Platform.h"
#include "platform/RealClock.h"
#include "platform/RealConnection.h"
#include "platform/RealDialogs.h"
#include "platform/RealInterfaceTable.h"
#include "platform/RealMedia.h"
#include "platform/RealProcess.h"
#include "platform/RealShell.h"
#include "platform/RealTray.h"
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
