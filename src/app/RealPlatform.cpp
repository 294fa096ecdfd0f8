#include "app/RealPlatform.h"

RealPlatform::RealPlatform(QStringList mediaOptions)
    : app(AppInfo::forExecutable())
    , dialogs(app.Title)
    , media(std::move(mediaOptions))
    , platform{app, dialogs, connection, shell, process, clock, forms, tray, interfaces, media, mixer}
{
}
