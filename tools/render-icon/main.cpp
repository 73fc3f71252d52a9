// Renders an SVG to a square PNG of the given size, for the application icon's sizes.
// Usage: varnholt-render-icon <input.svg> <size> <output.png>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char *argv[])
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    bool sizeOk = false;
    const int size = argc == 4 ? QByteArray(argv[2]).toInt(&sizeOk) : 0;
    if (!sizeOk || size <= 0) {
        std::fprintf(stderr, "usage: varnholt-render-icon <input.svg> <size> <output.png>\n");
        return 2;
    }
    QSvgRenderer renderer(QString::fromLocal8Bit(argv[1]));
    if (!renderer.isValid()) {
        std::fprintf(stderr, "varnholt-render-icon: cannot read %s\n", argv[1]);
        return 1;
    }
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    renderer.render(&painter);
    painter.end();
    if (!image.save(QString::fromLocal8Bit(argv[3]), "PNG")) {
        std::fprintf(stderr, "varnholt-render-icon: cannot write %s\n", argv[3]);
        return 1;
    }
    return 0;
}
