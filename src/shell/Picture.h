#pragma once

#include <QPixmap>
#include <QSize>
#include <QString>

// A form's background picture, drawn from one of our SVG files at the form's
// size. A missing or broken file gives an empty pixmap: the form then shows
// its background colour alone, as a picture that fails to load always did.
QPixmap loadPicture(const QString &path, const QSize &size);
