#pragma once

#include "aiconnectionsettings.h"
#include "applanguage.h"
#include "knowledgeitem.h"
#include "preferences.h"

#include <QJSEngine>
#include <QObject>
#include <QQmlEngine>

// The settings' windowless types, as the views see them.

// The same instance that C++ reaches through Preferences::shared().
struct PreferencesForeign
{
    Q_GADGET
    QML_FOREIGN(Preferences)
    QML_NAMED_ELEMENT(Preferences)
    QML_SINGLETON

public:
    static Preferences *create(QQmlEngine *, QJSEngine *)
    {
        Preferences *preferences = Preferences::shared();
        QJSEngine::setObjectOwnership(preferences, QJSEngine::CppOwnership);
        return preferences;
    }
};

// For its enumerations (AIConnectionSettings.OpenAICompatible, …); the instance comes from
// AIConnectionController.settings.
struct AIConnectionSettingsForeign
{
    Q_GADGET
    QML_FOREIGN(AIConnectionSettings)
    QML_NAMED_ELEMENT(AIConnectionSettings)
    QML_UNCREATABLE("given by AIConnectionController")
};

// The name and icon of a knowledge category in a given language; the views pass the language
// in force, so that their bindings follow it.
class KnowledgeCategories : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON
    // The categories in their fixed order.
    Q_PROPERTY(QList<int> all READ all CONSTANT)

public:
    [[nodiscard]] static QList<int> all()
    {
        QList<int> categories;
        for (const KnowledgeCategory category : KnowledgeEnums::allCategories)
            categories.append(int(category));
        return categories;
    }
    Q_INVOKABLE [[nodiscard]] static QString displayName(KnowledgeEnums::KnowledgeCategory category,
                                                         AppLanguages::AppLanguage language)
    {
        return KnowledgeEnums::displayName(category, language);
    }
    Q_INVOKABLE [[nodiscard]] static QString iconName(KnowledgeEnums::KnowledgeCategory category)
    {
        return KnowledgeEnums::iconName(category);
    }
    // The category of a raw value ("databaseVersion"), as the list's group heads hold it.
    Q_INVOKABLE [[nodiscard]] static KnowledgeEnums::KnowledgeCategory fromKey(const QString &key)
    {
        return KnowledgeEnums::categoryFromRawValue(key).value_or(KnowledgeCategory::Other);
    }
};
