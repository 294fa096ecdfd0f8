#pragma once

#include <QString>

// What the forms ask of the application object: where the program lives,
// its help file, version and title.
struct AppInfo {
    QString Path;     // folder of the executable; pictures live under it
    QString HelpFile; // set by the splash at start
    int Major = 3;
    int Minor = 0;
    int Revision = 0;
    QString Title = QStringLiteral("Zarvent");

    // Path joined with a relative name written with backslashes, the way the
    // forms write them ("\img\play.gif").
    QString file(const QString &relative) const;

    static AppInfo forExecutable(); // Path = the running executable's folder
};
