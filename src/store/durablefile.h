#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QString>

// Replaces the file at `path` with `data` so that a crash, a power cut or a full disk leaves
// either the old or the new content, never a mix: the data goes to a new file in the same
// folder, every write is checked, the file is synced, renamed over the target, and the
// folder is synced. On failure the temporary file is removed, the old file is untouched,
// and `error` (if given) says what went wrong. A symbolic link at `path` is followed: the file
// it points to is replaced, in that file's folder, and the link stays.
bool writeFileDurably(const QString &path, QByteArrayView data, QString *error = nullptr, int mode = 0600);

// The marker in the names of our temporary files; files with it are left-overs of a crash.
inline constexpr QLatin1StringView durableTempMarker{".varnholt-tmp-"};

// Removes the left-over temporary files of `fileName` in `folder`.
void removeStaleTemporaryFiles(const QString &folder);

// What reading a file gave.
struct FileRead
{
    enum class Status { Read, Missing, Failed };
    Status status = Status::Missing;
    QByteArray bytes;
    // Why it failed, for the user: the path and the reason.
    QString error;
};

// Reads the file at `path` whole. Only a regular file is read (a symbolic link is followed): a
// FIFO, a device or a folder fails at once without blocking, and so does a file larger than
// `maxBytes`. Nothing is mapped, so a file truncated meanwhile by another program reads short
// instead of faulting.
[[nodiscard]] FileRead readRegularFile(const QString &path, qint64 maxBytes);

// Makes `path` and any missing parent a folder only its owner can enter (0700, whatever the
// umask); folders that exist keep their mode. False, with `error` set, when it cannot.
bool makePrivateFolder(const QString &path, QString *error = nullptr);
