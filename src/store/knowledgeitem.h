#pragma once

#include "applanguage.h"

#include <QDateTime>
#include <QObject>
#include <QUuid>

#include <array>
#include <optional>

namespace KnowledgeEnums {
Q_NAMESPACE

// Kinds of facts, in the order every list of categories follows.
enum class KnowledgeCategory {
    DatabaseVersion,
    SyntaxConstraint,
    TableType,
    Preference,
    Other,
};
Q_ENUM_NS(KnowledgeCategory)

// Who recorded a fact.
enum class KnowledgeSource {
    AiDetected,
    UserAdded,
};
Q_ENUM_NS(KnowledgeSource)

inline constexpr std::array<KnowledgeCategory, 5> allCategories{
    KnowledgeCategory::DatabaseVersion, KnowledgeCategory::SyntaxConstraint, KnowledgeCategory::TableType,
    KnowledgeCategory::Preference, KnowledgeCategory::Other};

// Values as written in the store files ("databaseVersion", "aiDetected", ...).
[[nodiscard]] QString rawValue(KnowledgeCategory category);
[[nodiscard]] QString rawValue(KnowledgeSource source);
[[nodiscard]] std::optional<KnowledgeCategory> categoryFromRawValue(QStringView raw);
[[nodiscard]] std::optional<KnowledgeSource> sourceFromRawValue(QStringView raw);

[[nodiscard]] QString displayName(KnowledgeCategory category, AppLanguage language);
// Symbol name of the category's icon ("server.rack", ...); the views map it to an image.
[[nodiscard]] QString iconName(KnowledgeCategory category);

} // namespace KnowledgeEnums

using KnowledgeEnums::KnowledgeCategory;
using KnowledgeEnums::KnowledgeSource;

// A short fact about the user's database environment that rides along with every prompt.
struct KnowledgeItem
{
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id CONSTANT)
    Q_PROPERTY(KnowledgeEnums::KnowledgeCategory category MEMBER category)
    Q_PROPERTY(QString content MEMBER content)
    Q_PROPERTY(KnowledgeEnums::KnowledgeSource source MEMBER source)
    Q_PROPERTY(QDateTime createdAt MEMBER createdAt)
    Q_PROPERTY(QDateTime updatedAt MEMBER updatedAt)

public:
    QUuid id;
    KnowledgeCategory category = KnowledgeCategory::Other;
    QString content;
    KnowledgeSource source = KnowledgeSource::UserAdded;
    QDateTime createdAt;
    QDateTime updatedAt;

    // "5 min. ago" for `createdAt`, in `language`.
    [[nodiscard]] QString relativeTimeText(AppLanguage language, const QDateTime &now) const;

    friend bool operator==(const KnowledgeItem &, const KnowledgeItem &) = default;
};
