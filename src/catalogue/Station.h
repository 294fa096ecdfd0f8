#pragma once

#include <QList>
#include <QString>

// One row of a station panel's catalogue. The URL is put together from its
// parts exactly as they are written, blanks and odd schemes included: the
// engine gets it as it stands.
struct Station {
    QString panel;       // Tafm, Afm, Malfm, kanna
    QString button;      // s1.., some written S13..
    QString caption;     // what the button shows
    QString displayName; // what the status line shows, trailing blanks included
    QString lead;        // text before the scheme (one Telugu row starts with a blank)
    QString scheme;
    QString host;        // from the hosts table, never from the row
    QString port;        // as written, empty for none (one row names it twice)
    QString path;        // empty when the URL ends behind the authority
    int left = 0;        // twips inside the frame `file`
    int top = 0;
    int width = 0;

    static constexpr int Height = 615;

    QString URL() const;
};

// The catalogue of a panel, in button order; empty for Mp3 and unknown names.
const QList<Station> &stationsOf(const QString &panel);
