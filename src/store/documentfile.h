#pragma once

#include <QByteArray>
#include <QString>

#include <optional>

// SQL documents as files of their own, for File ▸ Open… and File ▸ Export….
namespace DocumentFile {

// Larger files are not imported: nothing in a SQL editor is helped by them.
inline constexpr qint64 maxImportBytes = qint64(256) << 20;

struct Imported
{
    // The file's name without its folder and its ".sql" ending.
    QString name;
    QString content;
    // Empty on success; otherwise why the file was not imported, for the user.
    QString error;
};

// The text of a file in UTF-8 (with or without a byte order mark) or UTF-16 with a byte order
// mark; anything else is no text we can take without guessing.
[[nodiscard]] std::optional<QString> decodeText(const QByteArray &bytes);

// Reads and decodes the file at `path`.
[[nodiscard]] Imported read(const QString &path);

// A file name for a document of this name: no folder separators, control characters or
// leading dots, not longer than a file system takes, ending in ".sql".
[[nodiscard]] QString fileNameFor(const QString &documentName);

// Writes `content` as UTF-8 to `path`, replacing the file durably; the reason on failure.
[[nodiscard]] QString write(const QString &path, const QString &content);

} // namespace DocumentFile
