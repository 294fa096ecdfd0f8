#pragma once

#include <QString>

// The drive-letter paths the panel was drawn with, mapped to what they stand
// for here. This is the one place that knows them:
//   "C:\My Documents"  the user's documents folder
//   "c:\"              the file system's root
//   "D:\"              the first removable or optical volume
// Any other text is taken as a path of this system. Backslashes become the
// path separator; a separator doubled at a root is left alone, as it is
// harmless.
namespace drives {

QString documents();
QString root();
// Empty when no removable or optical volume is mounted.
QString removable();

// The local path for a path as the panel writes it. A "D:\" with nothing
// mounted maps to the empty string.
QString localPath(const QString &designPath);

} // namespace drives
