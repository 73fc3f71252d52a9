#pragma once

#include "applanguage.h"
#include "datastore.h"
#include "knowledgeitem.h"
#include "languagemanager.h"

#include <QJSEngine>
#include <QQmlEngine>

// The core's shared objects and enumerations, as QML sees them. The QML singletons are the
// same instances that C++ reaches through shared().

struct DataStoreForeign
{
    Q_GADGET
    QML_FOREIGN(DataStore)
    QML_NAMED_ELEMENT(DataStore)
    QML_SINGLETON

public:
    static DataStore *create(QQmlEngine *, QJSEngine *)
    {
        DataStore *store = DataStore::shared();
        QJSEngine::setObjectOwnership(store, QJSEngine::CppOwnership);
        return store;
    }
};

struct LanguageManagerForeign
{
    Q_GADGET
    QML_FOREIGN(LanguageManager)
    QML_NAMED_ELEMENT(LanguageManager)
    QML_SINGLETON

public:
    static LanguageManager *create(QQmlEngine *, QJSEngine *)
    {
        LanguageManager *manager = LanguageManager::shared();
        QJSEngine::setObjectOwnership(manager, QJSEngine::CppOwnership);
        return manager;
    }
};

// The enumerations of the core's namespaces (AppLanguage, Knowledge) are registered by
// configureEngine(): this Qt's type registrar cannot take foreign namespaces.

struct SQLDocumentForeign
{
    Q_GADGET
    QML_FOREIGN(SQLDocument)
    QML_VALUE_TYPE(sqlDocument)
};

struct SQLVersionForeign
{
    Q_GADGET
    QML_FOREIGN(SQLVersion)
    QML_VALUE_TYPE(sqlVersion)
};
