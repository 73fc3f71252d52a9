#pragma once

#include "applanguage.h"

#include <QString>
#include <QUrl>

// The base address of an OpenAI-compatible server as the user types it
// ("http://localhost:11434/v1", "https://api.example.com/v1"), and the addresses made from it.
namespace ServerAddress {

enum class Problem {
    None,
    Empty,
    // No scheme, or one that is not http or https ("localhost:11434/v1", "ftp://…").
    NeedsHttp,
    // Does not parse, has no host, or carries a query or a fragment.
    NotAnAddress,
    // A user name or password in the address: it would be stored as plain text.
    HasCredentials,
};

struct Parsed
{
    // Valid only without a problem; the path has no trailing slash.
    QUrl base;
    Problem problem = Problem::None;
};

// Reads the typed text, trimmed, with the trailing slashes of the path dropped.
[[nodiscard]] Parsed parse(const QString &text);
// What is wrong with `text`, in a sentence for the settings window.
[[nodiscard]] QString problemText(Problem problem, const QString &text, AppLanguage language);

// The base with `path` ("chat/completions", "models") appended.
[[nodiscard]] QUrl endpoint(const QUrl &base, QStringView path);
// "scheme://host:port", the server a key belongs to.
[[nodiscard]] QString origin(const QUrl &base);
// Plain http to a host other than this machine: what is sent can be read on the way.
[[nodiscard]] bool isUnencryptedRemote(const QUrl &base);

} // namespace ServerAddress
