#pragma once

#include <QList>
#include <QString>

#include <optional>

// The JSON records exchanged with the chat proxy, in the shape of the OpenAI chat-completion
// protocol. They are plain values; ChatWire reads and writes them. In the responses every field
// is optional, and a key that is missing or null reads as absent.

// One element of a request, and the `message` of a reply's choice.
struct OpenAIChatMessage
{
    QString role;
    QString content;

    friend bool operator==(const OpenAIChatMessage &, const OpenAIChatMessage &) = default;
};

// The request body. It carries no model, key or user: the proxy decides those.
struct ProxyChatRequest
{
    QList<OpenAIChatMessage> messages;
    bool stream = false;
};

// The request body for an OpenAI-compatible server of the user's own: the same records, and the
// model that is to answer.
struct OpenAIChatRequest
{
    QString model;
    QList<OpenAIChatMessage> messages;
    bool stream = false;
};

// The piece of text a streamed chunk adds.
struct OpenAIChatDelta
{
    std::optional<QString> role;
    std::optional<QString> content;
};

struct OpenAIChatChoice
{
    std::optional<qint64> index;
    std::optional<OpenAIChatMessage> message;
    std::optional<OpenAIChatDelta> delta;
    std::optional<QString> finishReason;
};

struct OpenAIUsage
{
    std::optional<qint64> promptTokens;
    std::optional<qint64> completionTokens;
    std::optional<qint64> totalTokens;
};

struct OpenAIError
{
    std::optional<QString> message;
    std::optional<QString> type;
    // Text only: a numeric code makes the whole body undecodable.
    std::optional<QString> code;
};

// The body of a one-shot reply, and of an error reply.
struct OpenAIChatResponse
{
    std::optional<QString> id;
    std::optional<QString> object;
    std::optional<qint64> created;
    std::optional<QString> model;
    std::optional<QList<OpenAIChatChoice>> choices;
    std::optional<OpenAIUsage> usage;
    std::optional<OpenAIError> error;
};

// The JSON of one "data: " line of a streamed reply.
struct OpenAIStreamResponse
{
    std::optional<QString> id;
    std::optional<QString> object;
    std::optional<qint64> created;
    std::optional<QString> model;
    std::optional<QList<OpenAIChatChoice>> choices;
};
