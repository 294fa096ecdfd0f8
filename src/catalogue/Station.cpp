#include "catalogue/Station.h"

#include "catalogue/StationHosts.h"
#include "catalogue/StationTables.h"

#include <map>

QString Station::URL() const
{
    QString url = lead + scheme + QLatin1String("://") + host;
    if (!port.isEmpty())
        url += QLatin1Char(':') + port;
    return url + path;
}

const QList<Station> &stationsOf(const QString &panel)
{
    // Built once per panel on first use; the tables never change, and a
    // map keeps every list where it is for the references handed out.
    static std::map<QString, QList<Station>> built;
    auto it = built.find(panel);
    if (it != built.end())
        return it->second;
    QList<Station> list;
    for (const StationRow &r : stationRows(panel)) {
        Station s;
        s.panel = panel;
        s.button = QString::fromLatin1(r.button);
        s.caption = QString::fromLatin1(r.caption);
        s.displayName = QString::fromLatin1(r.displayName);
        s.lead = QString::fromLatin1(r.lead);
        s.scheme = QString::fromLatin1(r.scheme);
        s.host = catalogue::stationHost(panel, s.button);
        s.port = QString::fromLatin1(r.port);
        s.path = QString::fromLatin1(r.path);
        s.left = r.left;
        s.top = r.top;
        s.width = r.width;
        list.append(s);
    }
    return built.emplace(panel, list).first->second;
}
