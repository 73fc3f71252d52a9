#include "conversationmessage.h"

#include "storecodec.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

using namespace Qt::StringLiterals;

namespace {

constexpr QLatin1StringView learnedKey{"learned"};

QJsonObject factToJson(const LearnedFact &fact)
{
    const KnowledgeChange &change = fact.change;
    return QJsonObject{{"itemId"_L1, change.itemId.toString(QUuid::WithoutBraces).toUpper()},
                       {"isNew"_L1, change.isNew},
                       {"category"_L1, KnowledgeEnums::rawValue(change.category)},
                       {"content"_L1, change.content},
                       {"previousContent"_L1, change.previousContent},
                       {"undone"_L1, fact.isUndone}};
}

std::optional<LearnedFact> factFromJson(const QJsonValue &value)
{
    const QJsonObject object = value.toObject();
    const std::optional<QUuid> id = StoreCodec::parseUuid(object.value("itemId"_L1).toString());
    const std::optional<KnowledgeCategory> category =
        KnowledgeEnums::categoryFromRawValue(object.value("category"_L1).toString());
    const QJsonValue isNew = object.value("isNew"_L1);
    const QJsonValue content = object.value("content"_L1);
    const QJsonValue previous = object.value("previousContent"_L1);
    const QJsonValue undone = object.value("undone"_L1);
    if (!id || !category || !isNew.isBool() || !content.isString() || !previous.isString() || !undone.isBool())
        return std::nullopt;
    return LearnedFact{{*id, isNew.toBool(), *category, content.toString(), previous.toString()}, undone.toBool()};
}

} // namespace

QByteArray ConversationMessage::encodeList(const QList<ConversationMessage> &messages)
{
    QJsonArray array;
    for (const ConversationMessage &entry : messages) {
        QJsonObject object = entry.message.toJson();
        if (!entry.learned.isEmpty()) {
            QJsonArray learned;
            for (const LearnedFact &fact : entry.learned)
                learned.append(factToJson(fact));
            object.insert(learnedKey, learned);
        }
        array.append(object);
    }
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

std::optional<QList<ConversationMessage>> ConversationMessage::decodeList(const QByteArray &json)
{
    const std::optional<QJsonArray> array = AIMessage::parseList(json);
    if (!array)
        return std::nullopt;
    QList<ConversationMessage> messages;
    messages.reserve(array->size());
    for (const QJsonValue &element : *array) {
        std::optional<AIMessage> message = AIMessage::fromJson(element);
        if (!message)
            return std::nullopt;
        ConversationMessage entry{std::move(*message), {}};
        for (const QJsonValue &fact : element.toObject().value(learnedKey).toArray()) {
            if (std::optional<LearnedFact> decoded = factFromJson(fact))
                entry.learned.append(*decoded);
        }
        messages.append(std::move(entry));
    }
    return messages;
}
