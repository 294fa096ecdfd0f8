#pragma once

#include <QString>

// The one table that gives every catalogue row its host. It is generated at
// build time from the hosts file named by ZARVENT_STATION_HOSTS; the program
// reads no file at run time. A row the file doesn't name takes the file's
// "*" host, and without one, a host under the reserved .invalid domain.
namespace catalogue {
QString stationHost(const QString &panel, const QString &button);
}
