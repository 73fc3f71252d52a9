#include "iconprovider.h"

#include <QColor>
#include <QFile>
#include <QHash>
#include <QPainter>
#include <QSvgRenderer>
#include <QUrlQuery>

using namespace Qt::StringLiterals;

namespace {

const QHash<QString, QString> &iconTable()
{
    static const QHash<QString, QString> table{
#include "icontable.inc"
    };
    return table;
}

} // namespace

IconProvider::IconProvider()
    : QQuickImageProvider(QQuickImageProvider::Image)
{}

QString IconProvider::iconFile(const QString &symbol)
{
    const QString file = iconTable().value(symbol);
    return file.isEmpty() ? QString() : u":/icons/%1.svg"_s.arg(file);
}

QImage IconProvider::requestImage(const QString &id, QSize *size, const QSize &requestedSize)
{
    const qsizetype query = id.indexOf(u'?');
    const QString symbol = id.left(query);
    const QColor color(query < 0 ? QString() : QUrlQuery(id.mid(query + 1)).queryItemValue(u"color"_s));

    const QSize target = requestedSize.isValid() && !requestedSize.isEmpty() ? requestedSize : QSize(24, 24);
    if (size)
        *size = target;
    QImage image(target, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);

    QFile file(iconFile(symbol));
    if (!file.open(QIODevice::ReadOnly))
        return image; // an unknown name draws nothing rather than failing the view
    QByteArray svg = file.readAll();
    // The SVG renderer takes #RRGGBB only; a translucent colour becomes an opacity.
    const QColor fill = color.isValid() ? color : QColor(Qt::black);
    svg.replace("currentColor", fill.name(QColor::HexRgb).toLatin1());
    if (fill.alpha() < 255) {
        const QByteArray opacity = "<svg opacity=\"" + QByteArray::number(fill.alphaF()) + '"';
        svg.replace("<svg", opacity);
    }
    QSvgRenderer renderer(svg);
    QPainter painter(&image);
    renderer.render(&painter);
    return image;
}
