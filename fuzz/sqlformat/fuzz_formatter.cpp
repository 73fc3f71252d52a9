// libFuzzer target for the SQL formatter. Any text must format without a crash, a hang or
// sanitizer report; the two routes to a statement's tokens must agree; and the result must
// equal that of the reference formatter, a slow and literal reading of the same rules (for
// inputs of up to 512 code units).
//
// The first byte picks the decoding of the rest: UTF-8 (invalid bytes become U+FFFD), or raw
// UTF-16 so that lone surrogates and any code unit can occur.
#include "referenceformatter.h"
#include "sqlformatter.h"
#include "sqlformatterstatement.h"
#include "sqltokenchars.h"

#include <unicode/uchar.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

QString decoded(const uint8_t *data, size_t size)
{
    if (size == 0)
        return {};
    if ((data[0] & 1) == 0)
        return QString::fromUtf8(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    QString text((size - 1) / 2, Qt::Uninitialized);
    std::memcpy(text.data(), data + 1, size_t(text.size()) * 2);
    return text;
}

// The reference reads character properties from ICU, the formatter from Qt; they differ for a
// few dozen code points (Unicode versions), where the two may rightly part ways.
bool propertiesAgree(const QString &text)
{
    for (const char32_t c : text.toUcs4()) {
        const auto breakClass = u_getIntPropertyValue(UChar32(c), UCHAR_GRAPHEME_CLUSTER_BREAK);
        const bool joiner =
            breakClass == U_GCB_EXTEND || breakClass == U_GCB_ZWJ || breakClass == U_GCB_SPACING_MARK;
        if (joiner != SqlTokenChars::isJoiner(c) ||
            (breakClass == U_GCB_PREPEND) != SqlTokenChars::isPrepend(c))
            return false;
    }
    return true;
}

[[noreturn]] void fail(const char *what, const QString &text, const QString &ours, const QString &theirs)
{
    std::fprintf(stderr, "%s\ninput:     %s\nformatter: %s\nreference: %s\n", what,
                 qUtf8Printable(text.toHtmlEscaped()), qUtf8Printable(ours), qUtf8Printable(theirs));
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = decoded(data, size);
    const QString formatted = formatSQL(text);
    if (formatSQL(text) != formatted)
        fail("not deterministic", text, formatted, formatSQL(text));

    const QStringList statements = splitStatements(text);
    for (const QString &statement : statements) {
        QString automatic;
        QString literal;
        appendFormattedStatement(statement, automatic, SqlFlattening::Automatic);
        appendFormattedStatement(statement, literal, SqlFlattening::Literal);
        if (automatic != literal)
            fail("the routes to the tokens disagree", statement, automatic, literal);
    }

    // The reference is slow; long inputs are there for the formatter's own checks and speed.
    if (text.size() > 512 || !propertiesAgree(text))
        return 0;
    if (statements != reference::splitStatements(text))
        fail("statements differ", text, statements.join(u'|'), reference::splitStatements(text).join(u'|'));
    if (tokenizeSQL(text) != reference::tokenizeSQL(text))
        fail("tokens differ", text, tokenizeSQL(text).join(u'|'), reference::tokenizeSQL(text).join(u'|'));
    const QString expected = reference::formatSQL(text);
    if (formatted != expected)
        fail("layout differs", text, formatted, expected);
    return 0;
}
