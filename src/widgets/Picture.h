#pragma once

#include <QPixmap>
#include <QSize>
#include <QString>

// A form's background picture, drawn from one of our SVG files at the form's
// size. A missing or broken file gives an empty pixmap: the form then shows
// its background colour alone, as a picture that fails to load always did.
// An empty size draws the picture at its own size. The pixmap is drawn at
// the screen's density: its device-independent size is the size asked.
QPixmap loadPicture(const QString &path, const QSize &size = QSize());
