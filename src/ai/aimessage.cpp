#include "aimessage.h"

#include "clock.h"
#include "jsonreader.h"
#include "storecodec.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// 2001-01-01 00:00:00 UTC, the epoch of the stored timestamps, in milliseconds since 1970.
constexpr qint64 referenceDateMSecs = 978307200000;

} // namespace

AIMessage AIMessage::create(AIMessageRole role, const QString &content)
{
    return AIMessage{QUuid::createUuid(), role, content, Clock::now()};
}

QJsonObject AIMessage::toJson() const
{
    const double seconds = double(timestamp.toMSecsSinceEpoch() - referenceDateMSecs) / 1000.0;
    return QJsonObject{{"id"_L1, id.toString(QUuid::WithoutBraces).toUpper()},
                       {"role"_L1, AIEnums::rawValue(role)},
                       {"content"_L1, content},
                       {"timestamp"_L1, seconds}};
}

std::optional<AIMessage> AIMessage::fromJson(const QJsonValue &value)
{
    if (!value.isObject())
        return std::nullopt;
    const QJsonObject object = value.toObject();
    const QJsonValue id = object.value("id"_L1);
    const QJsonValue role = object.value("role"_L1);
    const QJsonValue content = object.value("content"_L1);
    const QJsonValue timestamp = object.value("timestamp"_L1);
    if (!id.isString() || !role.isString() || !content.isString() || !timestamp.isDouble())
        return std::nullopt;
    const std::optional<QUuid> uuid = StoreCodec::parseUuid(id.toString());
    const std::optional<AIMessageRole> parsedRole = AIEnums::roleFromRawValue(role.toString());
    const double seconds = timestamp.toDouble();
    // Beyond a few hundred thousand years QDateTime cannot hold the date.
    if (!uuid || !parsedRole || !std::isfinite(seconds) || std::fabs(seconds) > 1e13)
        return std::nullopt;
    const qint64 msecs = referenceDateMSecs + std::llround(seconds * 1000.0);
    return AIMessage{*uuid, *parsedRole, content.toString(), QDateTime::fromMSecsSinceEpoch(msecs, Qt::UTC)};
}

QByteArray AIMessage::encodeList(const QList<AIMessage> &messages)
{
    QJsonArray array;
    for (const AIMessage &message : messages)
        array.append(message.toJson());
    return QJsonDocument(array).toJson(QJsonDocument::Compact);
}

std::optional<QJsonArray> AIMessage::parseList(const QByteArray &json)
{
    if (!JsonReader::validate(json))
        return std::nullopt;
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isArray())
        return std::nullopt;
    return document.array();
}

std::optional<QList<AIMessage>> AIMessage::decodeList(const QByteArray &json)
{
    const std::optional<QJsonArray> array = parseList(json);
    if (!array)
        return std::nullopt;
    QList<AIMessage> messages;
    messages.reserve(array->size());
    for (const QJsonValue &element : *array) {
        std::optional<AIMessage> message = fromJson(element);
        if (!message)
            return std::nullopt;
        messages.append(std::move(*message));
    }
    return messages;
}
