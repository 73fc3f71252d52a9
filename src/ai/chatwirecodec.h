#pragma once

#include "chatwirerecords.h"

#include <QByteArray>

// Reading and writing the records of the chat proxy.
//
// Decoding is all or nothing: a value of the wrong type anywhere, a `message` without `role` or
// `content`, or text that is not strict JSON fails the whole body, and `error` (when given) then
// names the first fault. Unknown keys are ignored.
namespace ChatWire {

[[nodiscard]] QByteArray encode(const ProxyChatRequest &request);
// The response records are written with their wire keys, leaving out absent fields.
[[nodiscard]] QByteArray encode(const OpenAIChatResponse &response);
[[nodiscard]] QByteArray encode(const OpenAIStreamResponse &response);

[[nodiscard]] std::optional<OpenAIChatResponse> decodeChatResponse(const QByteArray &json,
                                                                   QString *error = nullptr);
[[nodiscard]] std::optional<OpenAIStreamResponse> decodeStreamResponse(const QByteArray &json,
                                                                       QString *error = nullptr);

} // namespace ChatWire
