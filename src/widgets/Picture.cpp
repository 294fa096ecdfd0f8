#include "widgets/Picture.h"

#include <QGuiApplication>
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
    // Drawn at the screen's own density, so that a scaled desktop gets
    // sharp skins at the same place and size instead of stretched pixels.
    const qreal ratio = qGuiApp ? qGuiApp->devicePixelRatio() : 1.0;
    QPixmap pixmap(drawn * ratio);
    pixmap.setDevicePixelRatio(ratio);
    pixmap.fill(Qt::transparent);
    QPainter p(&pixmap);
    renderer.render(&p, QRectF(QPointF(0, 0), QSizeF(drawn)));
    return pixmap;
}
