#include "knowledgemarkers.h"

#include "datastore.h"

#include <QRegularExpression>

using namespace Qt::StringLiterals;

namespace {

// Only blanks and tabs: a line break at the edge of a group stays part of it.
QString trimBlanks(QStringView text)
{
    const auto isBlank = [](QChar c) { return c == u'\t' || c.category() == QChar::Separator_Space; };
    qsizetype begin = 0;
    qsizetype end = text.size();
    while (begin < end && isBlank(text[begin]))
        ++begin;
    while (end > begin && isBlank(text[end - 1]))
        --end;
    return text.sliced(begin, end - begin).toString();
}

} // namespace

KnowledgeCategory KnowledgeMarkers::categoryForWord(QStringView word)
{
    if (word == u"数据库版本")
        return KnowledgeCategory::DatabaseVersion;
    if (word == u"语法限制")
        return KnowledgeCategory::SyntaxConstraint;
    if (word == u"表类型")
        return KnowledgeCategory::TableType;
    if (word == u"偏好设置")
        return KnowledgeCategory::Preference;
    return KnowledgeCategory::Other;
}

KnowledgeMarkers::Result KnowledgeMarkers::extract(const QString &text, DataStore *store)
{
    // Group 2 may hold ':' but not ']'; both groups may span lines.
    static const QRegularExpression marker(u"\\[KNOWLEDGE:([^:]+):([^\\]]+)\\]"_s);
    if (!marker.isValid())
        return {text, {}};

    Result result;
    qsizetype copied = 0;
    QRegularExpressionMatchIterator matches = marker.globalMatch(text);
    while (matches.hasNext()) {
        const QRegularExpressionMatch match = matches.next();
        result.text += QStringView(text).sliced(copied, match.capturedStart() - copied);
        copied = match.capturedEnd();
        if (match.lastCapturedIndex() < 2 || match.capturedStart(1) < 0 || match.capturedStart(2) < 0)
            continue;
        if (!store || !store->knowledgeAutoRecordingEnabled())
            continue;
        const KnowledgeCategory category = categoryForWord(trimBlanks(match.capturedView(1)));
        const QString content = trimBlanks(match.capturedView(2));
        const std::optional<KnowledgeItem> conflicting =
            store->findConflictingKnowledgeItem(category, DataStore::extractKnowledgeKeywords(content));
        if (conflicting) {
            store->updateKnowledgeItem(conflicting->id, std::nullopt, content);
            result.changes.append(
                {conflicting->id, false, conflicting->category, content, conflicting->content});
        } else {
            const KnowledgeItem added =
                store->addKnowledgeItem(category, content, KnowledgeSource::AiDetected);
            result.changes.append({added.id, true, category, content, {}});
        }
    }
    result.text += QStringView(text).sliced(copied);
    result.text = std::move(result.text).trimmed();
    return result;
}
