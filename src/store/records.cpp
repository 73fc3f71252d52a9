#include "knowledgeitem.h"
#include "sqldocument.h"
#include "sqlversion.h"

#include "datetexts.h"
#include "localizedtext.h"

using namespace Qt::StringLiterals;

QString SQLDocument::relativeTimeText(AppLanguage language, const QDateTime &now) const
{
    return ::relativeTimeText(updatedAt, now, language);
}

QString SQLVersion::relativeTimeText(AppLanguage language, const QDateTime &now) const
{
    return ::relativeTimeText(createdAt, now, language);
}

QString SQLVersion::formattedDate(AppLanguage language) const
{
    return ::formattedDate(createdAt, language);
}

QString KnowledgeItem::relativeTimeText(AppLanguage language, const QDateTime &now) const
{
    return ::relativeTimeText(createdAt, now, language);
}

namespace KnowledgeEnums {

QString rawValue(KnowledgeCategory category)
{
    switch (category) {
    case KnowledgeCategory::DatabaseVersion:
        return u"databaseVersion"_s;
    case KnowledgeCategory::SyntaxConstraint:
        return u"syntaxConstraint"_s;
    case KnowledgeCategory::TableType:
        return u"tableType"_s;
    case KnowledgeCategory::Preference:
        return u"preference"_s;
    case KnowledgeCategory::Other:
        break;
    }
    return u"other"_s;
}

QString rawValue(KnowledgeSource source)
{
    return source == KnowledgeSource::AiDetected ? u"aiDetected"_s : u"userAdded"_s;
}

std::optional<KnowledgeCategory> categoryFromRawValue(QStringView raw)
{
    for (KnowledgeCategory category : allCategories) {
        if (rawValue(category) == raw)
            return category;
    }
    return std::nullopt;
}

std::optional<KnowledgeSource> sourceFromRawValue(QStringView raw)
{
    for (KnowledgeSource source : {KnowledgeSource::AiDetected, KnowledgeSource::UserAdded}) {
        if (rawValue(source) == raw)
            return source;
    }
    return std::nullopt;
}

QString displayName(KnowledgeCategory category, AppLanguage language)
{
    switch (category) {
    case KnowledgeCategory::DatabaseVersion:
        return pickText(language, u"Database Version", u"数据库版本", u"データベースバージョン");
    case KnowledgeCategory::SyntaxConstraint:
        return pickText(language, u"Syntax Constraints", u"语法限制", u"構文制約");
    case KnowledgeCategory::TableType:
        return pickText(language, u"Table Type", u"表类型", u"テーブルタイプ");
    case KnowledgeCategory::Preference:
        return pickText(language, u"Preferences", u"偏好设置", u"設定");
    case KnowledgeCategory::Other:
        break;
    }
    return pickText(language, u"Other", u"其他", u"その他");
}

QString iconName(KnowledgeCategory category)
{
    switch (category) {
    case KnowledgeCategory::DatabaseVersion:
        return u"server.rack"_s;
    case KnowledgeCategory::SyntaxConstraint:
        return u"exclamationmark.triangle"_s;
    case KnowledgeCategory::TableType:
        return u"tablecells"_s;
    case KnowledgeCategory::Preference:
        return u"slider.horizontal.3"_s;
    case KnowledgeCategory::Other:
        break;
    }
    return u"doc.text"_s;
}

} // namespace KnowledgeEnums
