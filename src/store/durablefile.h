#pragma once

#include <QByteArrayView>
#include <QString>

// Replaces the file at `path` with `data` so that a crash, a power cut or a full disk leaves
// either the old or the new content, never a mix: the data goes to a new file in the same
// folder, every write is checked, the file is synced, renamed over the target, and the
// folder is synced. On failure the temporary file is removed, the old file is untouched,
// and `error` (if given) says what went wrong.
bool writeFileDurably(const QString &path, QByteArrayView data, QString *error = nullptr, int mode = 0600);

// The marker in the names of our temporary files; files with it are left-overs of a crash.
inline constexpr QLatin1StringView durableTempMarker{".varnholt-tmp-"};

// Removes the left-over temporary files of `fileName` in `folder`.
void removeStaleTemporaryFiles(const QString &folder);
