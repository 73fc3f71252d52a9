#include "appengine.h"

#include "iconprovider.h"
#include "networkguard.h"
#include "slicedincubationcontroller.h"

#include "aienums.h"
#include "applanguage.h"
#include "knowledgeitem.h"

#include <QQmlEngine>

using namespace Qt::StringLiterals;

void configureEngine(QQmlEngine *engine)
{
    static const bool registered = [] {
        qmlRegisterUncreatableMetaObject(AppLanguages::staticMetaObject, "Varnholt", 1, 0, "AppLanguage",
                                         u"AppLanguage holds values only"_s);
        qmlRegisterUncreatableMetaObject(KnowledgeEnums::staticMetaObject, "Varnholt", 1, 0, "Knowledge",
                                         u"Knowledge holds values only"_s);
        qmlRegisterUncreatableMetaObject(AIEnums::staticMetaObject, "Varnholt", 1, 0, "AI",
                                         u"AI holds values only"_s);
        return true;
    }();
    Q_UNUSED(registered)
    static NetworkGuardFactory networkGuard;
    engine->setNetworkAccessManagerFactory(&networkGuard);
    engine->addImageProvider(u"icons"_s, new IconProvider);
    // Deleted with the engine; it detaches itself from the engine as it goes.
    engine->setIncubationController(new SlicedIncubationController(engine));
}
