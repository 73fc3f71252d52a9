#include "durablefile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <cerrno>
#include <cstdlib>
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
    // A symbolic link stays a link: the file it points to is what is replaced, in its own folder.
    QString resolved = path;
    struct stat link
    {};
    if (::lstat(QFile::encodeName(path).constData(), &link) == 0 && S_ISLNK(link.st_mode)) {
        char *real = ::realpath(QFile::encodeName(path).constData(), nullptr);
        if (!real)
            return failWith(u"%1 is a symbolic link to a file that cannot be reached: %2"_s.arg(
                path, QString::fromLocal8Bit(std::strerror(errno))));
        resolved = QFile::decodeName(real);
        std::free(real);
    }
    const QFileInfo target(resolved);
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
    if (::rename(temporaryName.constData(), QFile::encodeName(resolved).constData()) != 0) {
        const QString why = systemError("cannot replace", resolved);
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

FileRead readRegularFile(const QString &path, qint64 maxBytes)
{
    FileRead result;
    const QByteArray name = QFile::encodeName(path);
    // Non-blocking, so that a FIFO does not wait for a writer; regular files ignore the flag.
    const int fd = ::open(name.constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (fd < 0) {
        result.status = errno == ENOENT ? FileRead::Status::Missing : FileRead::Status::Failed;
        result.error = systemError("cannot open", path);
        return result;
    }
    const auto fail = [&](const QString &why) {
        ::close(fd);
        result.status = FileRead::Status::Failed;
        result.error = why;
        return result;
    };
    struct stat status
    {};
    if (::fstat(fd, &status) != 0)
        return fail(systemError("cannot read", path));
    if (!S_ISREG(status.st_mode))
        return fail(u"%1 is not a regular file"_s.arg(path));
    if (status.st_size > maxBytes)
        return fail(u"%1 is larger than %2 bytes"_s.arg(path).arg(maxBytes));

    // One byte more than the size, to notice a file that grows while it is read.
    result.bytes.resize(qsizetype(status.st_size) + 1);
    qsizetype filled = 0;
    while (filled < result.bytes.size()) {
        const ssize_t got = ::read(fd, result.bytes.data() + filled, size_t(result.bytes.size() - filled));
        if (got < 0) {
            if (errno == EINTR)
                continue;
            return fail(systemError("cannot read", path));
        }
        if (got == 0)
            break;
        filled += got;
    }
    ::close(fd);
    if (filled > status.st_size) {
        result.status = FileRead::Status::Failed;
        result.error = u"%1 changed while it was read"_s.arg(path);
        result.bytes.clear();
        return result;
    }
    result.bytes.truncate(filled);
    result.status = FileRead::Status::Read;
    return result;
}

bool makePrivateFolder(const QString &path, QString *error)
{
    const QString clean = QDir::cleanPath(QDir(path).absolutePath());
    QStringList missing;
    for (QString folder = clean; !QFileInfo(folder).isDir(); folder = QFileInfo(folder).path()) {
        if (folder == QFileInfo(folder).path())
            break; // the root
        missing.prepend(folder);
    }
    for (const QString &folder : std::as_const(missing)) {
        // The umask can only take bits away from 0700.
        if (::mkdir(QFile::encodeName(folder).constData(), 0700) != 0 && errno != EEXIST) {
            if (error)
                *error = systemError("cannot create the folder", folder);
            return false;
        }
    }
    return true;
}
