#pragma once

#include "aienums.h"
#include "aimessage.h"
#include "chatwirerecords.h"
#include "knowledgeitem.h"

#include <QList>
#include <QString>

#include <optional>

// The texts sent ahead of the user's words, and the message list of a chat request. Pure
// functions of the language, the mode, the knowledge items and the conversation.
namespace AIPrompts {

// How many records of the conversation go along with a request.
inline constexpr qsizetype historyLimit = 10;

[[nodiscard]] QString basePrompt(AIAssistantMode mode, AppLanguage language);
// Asks the model to mark facts about the user's environment; begins with a line break.
[[nodiscard]] QString markerInstruction(AppLanguage language);
// Begins with two line breaks and ends with one.
[[nodiscard]] QString knowledgeHeader(AppLanguage language);

// The stored facts by category, in the fixed order of the categories and within one category in
// stored order; empty when there are none.
[[nodiscard]] QString knowledgeBlock(const QList<KnowledgeItem> &items, AppLanguage language);

// Base prompt, knowledge block and marker instruction, joined with nothing between them.
[[nodiscard]] QString systemPrompt(AIAssistantMode mode, AppLanguage language,
                                   const QList<KnowledgeItem> &items);

// The user's text, wrapped together with the current SQL when there is some.
[[nodiscard]] QString userContent(const QString &message, const std::optional<QString> &currentSQL);

// The system prompt, the last `historyLimit` records of `history` as they stand, then the user's
// text.
[[nodiscard]] QList<OpenAIChatMessage>
assembleMessages(const QString &message, const std::optional<QString> &currentSQL, AIAssistantMode mode,
                 const QList<AIMessage> &history, AppLanguage language, const QList<KnowledgeItem> &items);

} // namespace AIPrompts
