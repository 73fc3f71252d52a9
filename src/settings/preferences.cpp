#include "preferences.h"

#include "appsettings.h"

#include <QSettings>

#include <algorithm>
#include <cmath>

Preferences::Preferences(QSettings *settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
{
    bool ok = false;
    const double stored = m_settings->value(editorFontSizeKey).toDouble(&ok);
    // A value that is no size the slider offers keeps the default: the value label needs a whole
    // number and the editor a usable size.
    if (ok && std::isfinite(stored) && stored >= lowestEditorFontSize && stored <= highestEditorFontSize)
        m_editorFontSize = stored;
}

Preferences *Preferences::shared()
{
    static Preferences instance(applicationSettings());
    return &instance;
}

void Preferences::setEditorFontSize(double size)
{
    if (!std::isfinite(size))
        return;
    size = std::clamp(size, lowestEditorFontSize, highestEditorFontSize);
    if (qFuzzyCompare(m_editorFontSize, size))
        return;
    m_editorFontSize = size;
    m_settings->setValue(editorFontSizeKey, size);
    Q_EMIT editorFontSizeChanged();
}
