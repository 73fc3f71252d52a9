#include "chatwirecodec.h"

#include "jsonreader.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>

using namespace Qt::StringLiterals;

namespace {

// Takes the fields of a parsed body one by one and remembers the first fault.
class FieldReader
{
public:
    [[nodiscard]] bool ok() const { return m_error.isEmpty(); }
    [[nodiscard]] QString error() const { return m_error; }

    bool fail(QLatin1StringView key, QLatin1StringView problem)
    {
        if (m_error.isEmpty())
            m_error = u"\""_s + key + u"\" "_s + problem;
        return false;
    }

    static bool isAbsent(const QJsonValue &value) { return value.isUndefined() || value.isNull(); }

    bool text(const QJsonObject &object, QLatin1StringView key, std::optional<QString> &out)
    {
        const QJsonValue value = object.value(key);
        if (isAbsent(value))
            return true;
        if (!value.isString())
            return fail(key, "is not text"_L1);
        out = value.toString();
        return true;
    }

    bool integer(const QJsonObject &object, QLatin1StringView key, std::optional<qint64> &out)
    {
        const QJsonValue value = object.value(key);
        if (isAbsent(value))
            return true;
        const QVariant number = value.toVariant();
        if (number.typeId() == QMetaType::LongLong) {
            out = number.toLongLong();
            return true;
        }
        // The parser keeps integers that overflow 64 bits, and fractions, as doubles.
        const double d = value.isDouble() ? value.toDouble() : std::nan("");
        if (!std::isfinite(d) || d != std::trunc(d) || std::fabs(d) >= 9.2e18)
            return fail(key, "is not an integer"_L1);
        out = static_cast<qint64>(d);
        return true;
    }

    bool object(const QJsonObject &parent, QLatin1StringView key, std::optional<QJsonObject> &out)
    {
        const QJsonValue value = parent.value(key);
        if (isAbsent(value))
            return true;
        if (!value.isObject())
            return fail(key, "is not an object"_L1);
        out = value.toObject();
        return true;
    }

    bool message(const QJsonObject &choice, std::optional<OpenAIChatMessage> &out)
    {
        std::optional<QJsonObject> object;
        if (!this->object(choice, "message"_L1, object) || !object)
            return ok();
        std::optional<QString> role;
        std::optional<QString> content;
        if (!text(*object, "role"_L1, role) || !text(*object, "content"_L1, content))
            return false;
        if (!role)
            return fail("role"_L1, "is missing in a message"_L1);
        if (!content)
            return fail("content"_L1, "is missing in a message"_L1);
        out = OpenAIChatMessage{*role, *content};
        return true;
    }

    bool choices(const QJsonObject &body, std::optional<QList<OpenAIChatChoice>> &out)
    {
        const QJsonValue value = body.value("choices"_L1);
        if (isAbsent(value))
            return true;
        if (!value.isArray())
            return fail("choices"_L1, "is not an array"_L1);
        const QJsonArray array = value.toArray();
        QList<OpenAIChatChoice> choices;
        choices.reserve(array.size());
        for (const QJsonValue &element : array) {
            if (!element.isObject())
                return fail("choices"_L1, "holds a value that is not an object"_L1);
            const QJsonObject object = element.toObject();
            OpenAIChatChoice choice;
            std::optional<QJsonObject> delta;
            if (!integer(object, "index"_L1, choice.index) || !message(object, choice.message) ||
                !this->object(object, "delta"_L1, delta) ||
                !text(object, "finish_reason"_L1, choice.finishReason))
                return false;
            if (delta) {
                OpenAIChatDelta &d = choice.delta.emplace();
                if (!text(*delta, "role"_L1, d.role) || !text(*delta, "content"_L1, d.content))
                    return false;
            }
            choices.append(std::move(choice));
        }
        out = std::move(choices);
        return true;
    }

    bool usage(const QJsonObject &body, std::optional<OpenAIUsage> &out)
    {
        std::optional<QJsonObject> object;
        if (!this->object(body, "usage"_L1, object) || !object)
            return ok();
        OpenAIUsage &usage = out.emplace();
        return integer(*object, "prompt_tokens"_L1, usage.promptTokens) &&
               integer(*object, "completion_tokens"_L1, usage.completionTokens) &&
               integer(*object, "total_tokens"_L1, usage.totalTokens);
    }

    bool error(const QJsonObject &body, std::optional<OpenAIError> &out)
    {
        std::optional<QJsonObject> object;
        if (!this->object(body, "error"_L1, object) || !object)
            return ok();
        OpenAIError &error = out.emplace();
        return text(*object, "message"_L1, error.message) && text(*object, "type"_L1, error.type) &&
               text(*object, "code"_L1, error.code);
    }

    // The fields both kinds of reply share.
    template<typename Response>
    bool common(const QJsonObject &body, Response &response)
    {
        return text(body, "id"_L1, response.id) && text(body, "object"_L1, response.object) &&
               integer(body, "created"_L1, response.created) && text(body, "model"_L1, response.model) &&
               choices(body, response.choices);
    }

private:
    QString m_error;
};

// Strict JSON first, since Qt's parser lets some malformed text through; then the object.
std::optional<QJsonObject> parseBody(const QByteArray &json, QString *error)
{
    QString fault;
    if (!JsonReader::validate(json, &fault)) {
        if (error)
            *error = fault;
        return std::nullopt;
    }
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError || !document.isObject()) {
        if (error)
            *error = document.isArray() ? u"the body is not an object"_s : parseError.errorString();
        return std::nullopt;
    }
    return document.object();
}

template<typename Response>
std::optional<Response> finish(bool ok, const FieldReader &reader, Response response, QString *error)
{
    if (ok)
        return response;
    if (error)
        *error = reader.error();
    return std::nullopt;
}

void insertText(QJsonObject &object, QLatin1StringView key, const std::optional<QString> &value)
{
    if (value)
        object.insert(key, *value);
}

void insertInteger(QJsonObject &object, QLatin1StringView key, const std::optional<qint64> &value)
{
    if (value)
        object.insert(key, *value);
}

QJsonObject messageObject(const OpenAIChatMessage &message)
{
    return QJsonObject{{"role"_L1, message.role}, {"content"_L1, message.content}};
}

template<typename Response>
QJsonObject commonObject(const Response &response)
{
    QJsonObject object;
    insertText(object, "id"_L1, response.id);
    insertText(object, "object"_L1, response.object);
    insertInteger(object, "created"_L1, response.created);
    insertText(object, "model"_L1, response.model);
    if (response.choices) {
        QJsonArray choices;
        for (const OpenAIChatChoice &choice : *response.choices) {
            QJsonObject c;
            insertInteger(c, "index"_L1, choice.index);
            if (choice.message)
                c.insert("message"_L1, messageObject(*choice.message));
            if (choice.delta) {
                QJsonObject delta;
                insertText(delta, "role"_L1, choice.delta->role);
                insertText(delta, "content"_L1, choice.delta->content);
                c.insert("delta"_L1, delta);
            }
            insertText(c, "finish_reason"_L1, choice.finishReason);
            choices.append(c);
        }
        object.insert("choices"_L1, choices);
    }
    return object;
}

} // namespace

namespace ChatWire {

QByteArray encode(const ProxyChatRequest &request)
{
    QJsonArray messages;
    for (const OpenAIChatMessage &message : request.messages)
        messages.append(messageObject(message));
    const QJsonObject body{{"messages"_L1, messages}, {"stream"_L1, request.stream}};
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

QByteArray encode(const OpenAIChatRequest &request)
{
    QJsonArray messages;
    for (const OpenAIChatMessage &message : request.messages)
        messages.append(messageObject(message));
    const QJsonObject body{
        {"model"_L1, request.model}, {"messages"_L1, messages}, {"stream"_L1, request.stream}};
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

QByteArray encode(const OpenAIChatResponse &response)
{
    QJsonObject object = commonObject(response);
    if (response.usage) {
        QJsonObject usage;
        insertInteger(usage, "prompt_tokens"_L1, response.usage->promptTokens);
        insertInteger(usage, "completion_tokens"_L1, response.usage->completionTokens);
        insertInteger(usage, "total_tokens"_L1, response.usage->totalTokens);
        object.insert("usage"_L1, usage);
    }
    if (response.error) {
        QJsonObject error;
        insertText(error, "message"_L1, response.error->message);
        insertText(error, "type"_L1, response.error->type);
        insertText(error, "code"_L1, response.error->code);
        object.insert("error"_L1, error);
    }
    return QJsonDocument(object).toJson(QJsonDocument::Compact);
}

QByteArray encode(const OpenAIStreamResponse &response)
{
    return QJsonDocument(commonObject(response)).toJson(QJsonDocument::Compact);
}

std::optional<OpenAIChatResponse> decodeChatResponse(const QByteArray &json, QString *error)
{
    const std::optional<QJsonObject> body = parseBody(json, error);
    if (!body)
        return std::nullopt;
    FieldReader reader;
    OpenAIChatResponse response;
    const bool ok = reader.common(*body, response) && reader.usage(*body, response.usage) &&
                    reader.error(*body, response.error);
    return finish(ok, reader, std::move(response), error);
}

std::optional<OpenAIStreamResponse> decodeStreamResponse(const QByteArray &json, QString *error)
{
    const std::optional<QJsonObject> body = parseBody(json, error);
    if (!body)
        return std::nullopt;
    FieldReader reader;
    OpenAIStreamResponse response;
    const bool ok = reader.common(*body, response);
    return finish(ok, reader, std::move(response), error);
}

std::optional<QString> errorMessage(const QByteArray &json)
{
    const QJsonObject body = QJsonDocument::fromJson(json).object();
    const QJsonValue error = body.value("error"_L1);
    if (const QJsonValue message = error.toObject().value("message"_L1); message.isString())
        return message.toString();
    if (error.isString())
        return error.toString();
    if (const QJsonValue message = body.value("message"_L1); message.isString())
        return message.toString();
    const QJsonValue detail = body.value("detail"_L1);
    if (detail.isString())
        return detail.toString();
    QStringList messages;
    for (const QJsonValue &entry : detail.toArray()) {
        if (const QJsonValue message = entry.toObject().value("msg"_L1); message.isString())
            messages.append(message.toString());
    }
    if (!messages.isEmpty())
        return messages.join("; "_L1);
    return std::nullopt;
}

std::optional<QStringList> decodeModelList(const QByteArray &json, ModelListFault *fault)
{
    QJsonParseError parseError;
    const QJsonDocument document = QJsonDocument::fromJson(json, &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        if (fault)
            *fault = ModelListFault::NotJson;
        return std::nullopt;
    }
    const QJsonValue data = document.object().value("data"_L1);
    if (!data.isArray()) {
        if (fault)
            *fault = ModelListFault::NotAList;
        return std::nullopt;
    }
    QStringList ids;
    const QJsonArray entries = data.toArray();
    ids.reserve(entries.size());
    for (const QJsonValue &entry : entries) {
        if (const QJsonValue id = entry.toObject().value("id"_L1); id.isString() && !id.toString().isEmpty())
            ids.append(id.toString());
    }
    return ids;
}

} // namespace ChatWire
