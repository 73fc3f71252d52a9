#pragma once

#include "aimessage.h"
#include "knowledgechange.h"

#include <QByteArray>
#include <QList>

#include <optional>

// A fact that an assistant reply taught the knowledge store, kept with the reply so that the
// panel can name it under the reply and undo it, also after a restart.
struct LearnedFact
{
    KnowledgeChange change;
    // The user took it back.
    bool isUndone = false;

    friend bool operator==(const LearnedFact &, const LearnedFact &) = default;
};

// One line of a stored conversation: the message itself and, for a reply, what it taught.
//
// The file form of a conversation is a JSON array of the messages' own JSON (see AIMessage),
// each reply with what it taught under the extra key "learned": [{"itemId", "isNew",
// "category", "content", "previousContent", "undone"}]. Readers of the bare message form ignore
// that key. A message that lacks any key of its own fails the whole array; a damaged "learned"
// entry is dropped alone, since the conversation matters more than the note under it.
struct ConversationMessage
{
    AIMessage message;
    QList<LearnedFact> learned;

    [[nodiscard]] static ConversationMessage fromMessage(AIMessage message) { return {std::move(message), {}}; }

    [[nodiscard]] static QByteArray encodeList(const QList<ConversationMessage> &messages);
    [[nodiscard]] static std::optional<QList<ConversationMessage>> decodeList(const QByteArray &json);

    friend bool operator==(const ConversationMessage &, const ConversationMessage &) = default;
};
