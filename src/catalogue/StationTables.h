#pragma once

#include <QString>

#include <span>

// A row as the table writes it; Station adds the host.
struct StationRow {
    const char *button;
    const char *caption;
    const char *displayName;
    const char *lead;
    const char *scheme;
    const char *port;
    const char *path;
    int left;
    int top;
    int width;
};

std::span<const StationRow> stationRows(const QString &panel); // empty for Mp3 and unknown names
