#pragma once

#include <QQuickImageProvider>

// Serves the bundled Lucide icons by the symbol names the views use, in any colour:
// "image://icons/doc.text?color=#0af". The SVGs draw in `currentColor`, which is replaced.
class IconProvider : public QQuickImageProvider
{
public:
    IconProvider();

    QImage requestImage(const QString &id, QSize *size, const QSize &requestedSize) override;

    // The icon file for a symbol name, empty if there is none.
    [[nodiscard]] static QString iconFile(const QString &symbol);
};
