#include "appsettings.h"

#include <QSettings>

using namespace Qt::StringLiterals;

QSettings *applicationSettings()
{
    static QSettings settings(QSettings::NativeFormat, QSettings::UserScope, u"Varnholt"_s, u"Varnholt"_s);
    return &settings;
}
