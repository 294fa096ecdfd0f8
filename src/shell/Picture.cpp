#include "shell/Picture.h"

#include <QPainter>
#include <QSvgRenderer>

QPixmap loadPicture(const QString &path, const QSize &size)
{
    QSvgRenderer renderer(path);
    if (!renderer.isValid() || size.isEmpty())
        return QPixmap();
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    renderer.render(&p);
    return pixmap;
}
