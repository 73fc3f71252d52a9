// varnholt-fmt: the editor's SQL formatter on the command line, for scripts and pre-commit hooks.
#include "durablefile.h"
#include "sqlformatter.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QFile>
#include <QFileInfo>
#include <QStringDecoder>

#include <csignal>
#include <cstdio>
#include <new>
#include <optional>
#include <sys/stat.h>

using namespace Qt::StringLiterals;

namespace {

enum ExitStatus { Success = 0, WouldChange = 1, Failure = 2 };

constexpr QByteArrayView byteOrderMark("\xEF\xBB\xBF");

const QString standardInputName = u"<stdin>"_s;

void report(const QString &name, const QString &problem)
{
    std::fprintf(stderr, "varnholt-fmt: %s: %s\n", qUtf8Printable(name), qUtf8Printable(problem));
}

bool writeOut(QByteArrayView bytes)
{
    return bytes.isEmpty() ||
           (std::fwrite(bytes.data(), 1, size_t(bytes.size()), stdout) == size_t(bytes.size()) &&
            std::fflush(stdout) == 0);
}

// The file as it should read: the formatted text with one line feed after it, behind the byte
// order mark if the file had one. Empty optional when `bytes` is not UTF-8.
std::optional<QByteArray> formatted(QByteArrayView bytes)
{
    const bool hasMark = bytes.startsWith(byteOrderMark);
    if (hasMark)
        bytes = bytes.sliced(byteOrderMark.size());
    QStringDecoder decoder(QStringConverter::Utf8, QStringConverter::Flag::ConvertInitialBom);
    const QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    const QString result = formatSQL(text);
    QByteArray out = hasMark ? byteOrderMark.toByteArray() : QByteArray();
    if (!result.isEmpty()) {
        out.append(result.toUtf8());
        // The same line end as the formatter's own: a CR LF text keeps CR LF.
        const qsizetype firstFeed = text.indexOf(u'\n');
        out.append(firstFeed > 0 && text[firstFeed - 1] == u'\r' ? "\r\n" : "\n");
    }
    return out;
}

struct Input
{
    QString name;
    QByteArray bytes;
};

std::optional<Input> readInput(const QString &name)
{
    QFile file;
    if (name == u"-") {
        if (!file.open(stdin, QIODevice::ReadOnly)) {
            report(standardInputName, u"cannot read"_s);
            return std::nullopt;
        }
        return Input{standardInputName, file.readAll()};
    }
    const QFileInfo info(name);
    if (!info.exists()) {
        report(name, u"no such file"_s);
        return std::nullopt;
    }
    if (info.isDir()) {
        report(name, u"is a folder, not a file"_s);
        return std::nullopt;
    }
    file.setFileName(name);
    if (!file.open(QIODevice::ReadOnly)) {
        report(name, u"cannot read: "_s + file.errorString());
        return std::nullopt;
    }
    QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) {
        report(name, u"cannot read: "_s + file.errorString());
        return std::nullopt;
    }
    return Input{name, std::move(bytes)};
}

// Replaces the file (the target of a link, so that the link stays) with its new text through
// a synced temporary file renamed over it, keeping its permission bits.
bool rewrite(const QString &name, const QByteArray &bytes)
{
    const QFileInfo info(name);
    const QString path = info.isSymLink() ? info.canonicalFilePath() : name;
    struct stat status
    {};
    if (::stat(QFile::encodeName(path).constData(), &status) != 0) {
        report(name, u"cannot read its permissions"_s);
        return false;
    }
    QString error;
    if (!writeFileDurably(path, bytes, &error, int(status.st_mode & 07777))) {
        report(name, u"not rewritten, the file is unchanged: "_s + error);
        return false;
    }
    return true;
}

enum class Mode { Print, InPlace, Check };

ExitStatus run(const QStringList &names, Mode mode)
{
    ExitStatus status = Success;
    const auto fail = [&status] { status = Failure; };
    for (const QString &name : names) {
        try {
            const std::optional<Input> input = readInput(name);
            if (!input) {
                fail();
                continue;
            }
            const std::optional<QByteArray> output = formatted(input->bytes);
            if (!output) {
                report(input->name, u"not valid UTF-8"_s);
                fail();
                continue;
            }
            switch (mode) {
            case Mode::Print:
                if (!writeOut(*output)) {
                    report(u"<stdout>"_s, u"cannot write"_s);
                    return Failure;
                }
                break;
            case Mode::InPlace:
                if (*output != input->bytes && !rewrite(name, *output))
                    fail();
                break;
            case Mode::Check:
                if (*output != input->bytes) {
                    std::printf("%s\n", qUtf8Printable(input->name));
                    if (status == Success)
                        status = WouldChange;
                }
                break;
            }
        } catch (const std::bad_alloc &) {
            report(name, u"too large to format in memory"_s);
            fail();
        }
    }
    std::fflush(stdout);
    return status;
}

} // namespace

int main(int argc, char *argv[])
{
    // A write past the file size limit is an error to report (the original stays), not a crash.
    std::signal(SIGXFSZ, SIG_IGN);
    QCoreApplication app(argc, argv);
    QCoreApplication::setApplicationName(u"varnholt-fmt"_s);
    QCoreApplication::setApplicationVersion(QStringLiteral("0.1.0"));

    QCommandLineParser parser;
    parser.setApplicationDescription(
        u"Formats SQL the way the Varnholt editor's Format command does: one statement after the\n"
        "other with a blank line between them, keywords in capitals, clauses on lines of their own.\n"
        "Strings, quoted names and comments of PostgreSQL, MySQL, SQL Server, Oracle and SQLite\n"
        "are kept exactly as written, and client lines (GO, DELIMITER, psql commands and COPY\n"
        "data, SQL*Plus / and rem) stand as they are.\n"
        "\n"
        "Formats each FILE, or standard input when there is none (or for \"-\"), and writes the\n"
        "result to standard output. The result ends with one line end (CR LF when the text's first\n"
        "line ends so, as all the line ends it makes); a UTF-8 byte order mark\n"
        "at the start is kept.\n"
        "\n"
        "Exit status: 0 on success; 1 when --check finds a file that would change; 2 on an error\n"
        "(a missing file, a folder, input that is not UTF-8, a file that cannot be written), which\n"
        "is reported on standard error as one line naming the file. The other files are still\n"
        "processed."_s);
    const QCommandLineOption help = parser.addHelpOption();
    const QCommandLineOption version = parser.addVersionOption();
    const QCommandLineOption inPlace({u"i"_s, u"in-place"_s},
                                     u"Rewrite each FILE with its formatted text instead of printing it. "
                                     "The new text goes to a temporary file in the same folder, which is "
                                     "synced and renamed over the original; the permission bits are kept, "
                                     "a file that is already formatted is not touched, and on any failure "
                                     "the original stays as it was."_s);
    const QCommandLineOption check(u"check"_s,
                                   u"Print nothing but the names of the files whose formatting differs, "
                                   "one per line on standard output (\"<stdin>\" for standard input), "
                                   "and exit with status 1 if there is any."_s);
    parser.addOption(inPlace);
    parser.addOption(check);
    parser.addPositionalArgument(u"FILE"_s, u"SQL files to format."_s, u"[FILE...]"_s);

    if (!parser.parse(QCoreApplication::arguments())) {
        std::fprintf(stderr, "varnholt-fmt: %s (see --help)\n", qUtf8Printable(parser.errorText()));
        return Failure;
    }
    if (parser.isSet(help))
        parser.showHelp(Success);
    if (parser.isSet(version))
        parser.showVersion();

    QStringList names = parser.positionalArguments();
    if (parser.isSet(inPlace) && parser.isSet(check)) {
        std::fprintf(stderr, "varnholt-fmt: --in-place and --check exclude each other (see --help)\n");
        return Failure;
    }
    if (parser.isSet(inPlace) && (names.isEmpty() || names.contains(u"-"_s))) {
        std::fprintf(stderr, "varnholt-fmt: --in-place needs files, not standard input (see --help)\n");
        return Failure;
    }
    if (names.isEmpty())
        names.append(u"-"_s);
    const Mode mode = parser.isSet(inPlace) ? Mode::InPlace : parser.isSet(check) ? Mode::Check : Mode::Print;
    return run(names, mode);
}
