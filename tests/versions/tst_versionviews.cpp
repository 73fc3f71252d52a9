#include "quicktestsetup.h"

#include <QtQml/qqmlextensionplugin.h>
#include <QtQuickTest>

Q_IMPORT_QML_PLUGIN(VarnholtPlugin)

QUICK_TEST_MAIN_WITH_SETUP(versionviews, QuickTestSetup)
