#include "widgets/Picture.h"

#include <QPainter>
#include <QSvgRenderer>

QPixmap loadPicture(const QString &path, const QSize &size)
{
    QSvgRenderer renderer(path);
    if (!renderer.isValid())
        return QPixmap();
    const QSize drawn = size.isEmpty() ? renderer.defaultSize() : size;
    if (drawn.isEmpty())
        return QPixmap();
    QPixmap pixmap(drawn);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    renderer.render(&p);
    return pixmap;
}
