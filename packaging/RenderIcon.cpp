// Draws the program's icon at one size for the icon theme's PNG folders:
//   zarvent_render_icon IN.svg OUT.png SIZE
// Qt's own SVG renderer, the one the program draws its skins with, so no
// other tool is needed at build time.

#include <QImage>
#include <QPainter>
#include <QString>
#include <QSvgRenderer>

#include <cstdlib>

int main(int argc, char **argv)
{
    if (argc != 4)
        return 2;
    const int size = std::atoi(argv[3]);
    QSvgRenderer renderer(QString::fromLocal8Bit(argv[1]));
    if (!renderer.isValid() || size <= 0)
        return 1;
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    painter.end();
    return image.save(QString::fromLocal8Bit(argv[2]), "PNG") ? 0 : 1;
}
