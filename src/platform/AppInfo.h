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

    // Path = the install path of the running executable: its own folder
    // when img/ lies beside it (the build tree), else ../share/zarvent when
    // the pictures are there (an installed tree).
    static AppInfo forExecutable();
    static QString installPath(const QString &executableFolder);
};
