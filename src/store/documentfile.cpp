#include "documentfile.h"

#include "durablefile.h"

#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace DocumentFile {

std::optional<QString> decodeText(const QByteArray &bytes)
{
    QStringDecoder decoder;
    QByteArrayView body = bytes;
    if (bytes.startsWith("\xEF\xBB\xBF")) {
        decoder = QStringDecoder(QStringDecoder::Utf8);
        body = body.sliced(3);
    } else if (bytes.startsWith("\xFF\xFE")) {
        decoder = QStringDecoder(QStringDecoder::Utf16LE);
        body = body.sliced(2);
    } else if (bytes.startsWith("\xFE\xFF")) {
        decoder = QStringDecoder(QStringDecoder::Utf16BE);
        body = body.sliced(2);
    } else {
        decoder = QStringDecoder(QStringDecoder::Utf8);
    }
    QString text = decoder.decode(body);
    // A NUL is no part of SQL text: such a file is binary, or UTF-16 without its mark.
    if (decoder.hasError() || text.contains(QChar(0)))
        return std::nullopt;
    return text;
}

Imported read(const QString &path)
{
    const QFileInfo info(path);
    QString name = info.fileName();
    if (name.endsWith(u".sql"_s, Qt::CaseInsensitive))
        name.chop(4);
    const FileRead file = readRegularFile(path, maxImportBytes);
    if (file.status != FileRead::Status::Read)
        return {name, {}, file.error};
    std::optional<QString> text = decodeText(file.bytes);
    if (!text)
        return {name, {}, u"%1 is not UTF-8 or UTF-16 text"_s.arg(info.fileName())};
    return {name.isEmpty() ? info.fileName() : name, std::move(*text), {}};
}

QString fileNameFor(const QString &documentName)
{
    QString name;
    name.reserve(documentName.size());
    for (const QChar c : documentName) {
        if (c == u'/' || c == u'\\' || c.category() == QChar::Other_Control || c.category() == QChar::Other_Format)
            name.append(u'_');
        else
            name.append(c);
    }
    name = name.trimmed();
    while (name.startsWith(u'.'))
        name.remove(0, 1);
    // 255 bytes is the common limit; leave room for the ending.
    while (name.toUtf8().size() > 240)
        name.chop(name.size() > 1 && name.back().isLowSurrogate() ? 2 : 1);
    if (name.isEmpty())
        name = u"SQL"_s;
    return name + u".sql"_s;
}

QString write(const QString &path, const QString &content)
{
    // A file written over keeps its permissions; a new one is readable by others, as files
    // the user shares usually are.
    struct stat status
    {};
    const int mode = ::stat(QFile::encodeName(path).constData(), &status) == 0 ? int(status.st_mode & 07777) : 0644;
    QString error;
    return writeFileDurably(path, content.toUtf8(), &error, mode) ? QString() : error;
}

} // namespace DocumentFile
