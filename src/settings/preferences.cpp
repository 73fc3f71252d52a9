#include "preferences.h"

#include "appsettings.h"

#include <QSettings>

Preferences::Preferences(QSettings *settings, QObject *parent)
    : QObject(parent)
    , m_settings(settings)
{
    bool ok = false;
    const double stored = m_settings->value(editorFontSizeKey).toDouble(&ok);
    // A value that is no size, or none the editor could show, keeps the default.
    if (ok && stored >= 6 && stored <= 72)
        m_editorFontSize = stored;
}

Preferences *Preferences::shared()
{
    static Preferences instance(applicationSettings());
    return &instance;
}

void Preferences::setEditorFontSize(double size)
{
    if (qFuzzyCompare(m_editorFontSize, size))
        return;
    m_editorFontSize = size;
    m_settings->setValue(editorFontSizeKey, size);
    Q_EMIT editorFontSizeChanged();
}
