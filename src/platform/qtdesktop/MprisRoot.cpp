#include "platform/qtdesktop/MprisRoot.h"

#include "platform/qtdesktop/MprisService.h"

MprisRoot::MprisRoot(MprisService *service)
    : QDBusAbstractAdaptor(service)
{
}
