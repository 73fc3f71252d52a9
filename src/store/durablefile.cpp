#include "durablefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace Qt::StringLiterals;

namespace {

QString systemError(const char *what, const QString &path)
{
    return u"%1 %2: %3"_s.arg(QLatin1StringView(what), path, QString::fromLocal8Bit(std::strerror(errno)));
}

bool syncFolder(const QByteArray &folder)
{
    const int fd = ::open(folder.constData(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd < 0)
        return false;
    const bool ok = ::fsync(fd) == 0;
    ::close(fd);
    return ok;
}

} // namespace

bool writeFileDurably(const QString &path, QByteArrayView data, QString *error, int mode)
{
    const auto failWith = [error](const QString &why) {
        if (error)
            *error = why;
        return false;
    };
    const QFileInfo target(path);
    const QString folder = target.absolutePath();
    const QString temporary =
        u"%1/.%2%3%4"_s.arg(folder, target.fileName(), durableTempMarker,
                            QString::number(QRandomGenerator::global()->generate64(), 36));
    const QByteArray temporaryName = QFile::encodeName(temporary);

    const int fd = ::open(temporaryName.constData(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode);
    if (fd < 0)
        return failWith(systemError("cannot create", temporary));
    const auto abandon = [&](const QString &why) {
        ::close(fd);
        ::unlink(temporaryName.constData());
        return failWith(why);
    };
    // The mode given to open() is narrowed by the umask; set it exactly.
    if (::fchmod(fd, mode) != 0)
        return abandon(systemError("cannot set the permissions of", temporary));

    const char *p = data.data();
    qsizetype left = data.size();
    while (left > 0) {
        const ssize_t written = ::write(fd, p, size_t(std::min<qsizetype>(left, 1 << 24)));
        if (written < 0) {
            if (errno == EINTR)
                continue;
            return abandon(systemError("cannot write", temporary));
        }
        if (written == 0) {
            errno = ENOSPC;
            return abandon(systemError("cannot write", temporary));
        }
        p += written;
        left -= written;
    }
    if (::fsync(fd) != 0)
        return abandon(systemError("cannot sync", temporary));
    struct stat status
    {};
    if (::fstat(fd, &status) != 0 || status.st_size != data.size()) {
        errno = EIO;
        return abandon(systemError("short file", temporary));
    }
    if (::close(fd) != 0) {
        ::unlink(temporaryName.constData());
        return failWith(systemError("cannot close", temporary));
    }
    if (::rename(temporaryName.constData(), QFile::encodeName(path).constData()) != 0) {
        const QString why = systemError("cannot replace", path);
        ::unlink(temporaryName.constData());
        return failWith(why);
    }
    // The rename itself is durable only once the folder is synced.
    if (!syncFolder(QFile::encodeName(folder)))
        return failWith(systemError("cannot sync the folder", folder));
    return true;
}

void removeStaleTemporaryFiles(const QString &folder)
{
    const QDir dir(folder);
    const QStringList stale =
        dir.entryList({u".*"_s + durableTempMarker + u"*"_s}, QDir::Files | QDir::Hidden | QDir::System);
    for (const QString &name : stale)
        QFile::remove(dir.filePath(name));
}
