#pragma once

#include "aienums.h"

#include <QByteArray>
#include <QDateTime>
#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QObject>
#include <QUuid>

#include <optional>

// One line of a conversation as the panel stores it.
//
// Its JSON form is its own, not the store files': {"id": upper-case UUID text, "role": "user" |
// "assistant" | "system", "content": text, "timestamp": seconds since 2001-01-01 00:00:00 UTC as
// a number}. Every key is required when reading.
struct AIMessage
{
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id CONSTANT)
    Q_PROPERTY(AIEnums::AIMessageRole role MEMBER role)
    Q_PROPERTY(QString content MEMBER content)
    Q_PROPERTY(QDateTime timestamp MEMBER timestamp)

public:
    QUuid id;
    AIMessageRole role = AIMessageRole::User;
    QString content;
    QDateTime timestamp;

    // A new line with a new random id, stamped now.
    [[nodiscard]] static AIMessage create(AIMessageRole role, const QString &content);

    [[nodiscard]] QJsonObject toJson() const;
    [[nodiscard]] static std::optional<AIMessage> fromJson(const QJsonValue &value);

    // A whole conversation; reading fails as a whole when any element is faulty.
    [[nodiscard]] static QByteArray encodeList(const QList<AIMessage> &messages);
    [[nodiscard]] static std::optional<QList<AIMessage>> decodeList(const QByteArray &json);
    // The array of a conversation's strict JSON text, before its elements are read.
    [[nodiscard]] static std::optional<QJsonArray> parseList(const QByteArray &json);

    friend bool operator==(const AIMessage &, const AIMessage &) = default;
};
