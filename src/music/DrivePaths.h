#pragma once

#include <QString>

// The drive-letter paths the panel was drawn with, mapped to what they stand
// for here. This is the one place that knows them:
//   "C:\My Documents"  the user's documents folder
//   "c:\"              the file system's root
//   "D:\"              the first removable or optical volume
// In the rest of those, backslashes become the path separator. Any other
// text is a path of this system and is taken as it stands, backslashes and
// all. A separator doubled at a root is left alone, as it is harmless.
namespace drives {

QString documents();
QString root();
// Empty when no removable or optical volume is mounted.
QString removable();

// The local path for a path as the panel writes it. A "D:\" with nothing
// mounted maps to the empty string.
QString localPath(const QString &designPath);

} // namespace drives
