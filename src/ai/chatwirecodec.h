#pragma once

#include "chatwirerecords.h"

#include <QByteArray>
#include <QStringList>

#include <optional>

// Reading and writing the records of the chat proxy.
//
// Decoding is all or nothing: a value of the wrong type anywhere, a `message` without `role` or
// `content`, or text that is not strict JSON fails the whole body, and `error` (when given) then
// names the first fault. Unknown keys are ignored.
namespace ChatWire {

[[nodiscard]] QByteArray encode(const ProxyChatRequest &request);
[[nodiscard]] QByteArray encode(const OpenAIChatRequest &request);
// The response records are written with their wire keys, leaving out absent fields.
[[nodiscard]] QByteArray encode(const OpenAIChatResponse &response);
[[nodiscard]] QByteArray encode(const OpenAIStreamResponse &response);

[[nodiscard]] std::optional<OpenAIChatResponse> decodeChatResponse(const QByteArray &json,
                                                                   QString *error = nullptr);
[[nodiscard]] std::optional<OpenAIStreamResponse> decodeStreamResponse(const QByteArray &json,
                                                                       QString *error = nullptr);

// The message of an error body in any of the shapes OpenAI-compatible servers send:
// {"error":{"message":…}} whatever the type of its other fields, {"error":"…"}, {"message":…},
// {"detail":"…"} and {"detail":[{"msg":…},…]}. Nothing when the body has none of them.
[[nodiscard]] std::optional<QString> errorMessage(const QByteArray &json);

// The model ids of a `GET <base>/models` answer, {"data":[{"id":…},…]}, in the server's order.
// Nothing when the body is not such a list; `fault` then says whether it was JSON at all.
enum class ModelListFault { NotJson, NotAList };
[[nodiscard]] std::optional<QStringList> decodeModelList(const QByteArray &json,
                                                         ModelListFault *fault = nullptr);

} // namespace ChatWire
