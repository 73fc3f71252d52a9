#include "jsonwriter.h"

#include <array>

namespace {

// For each ASCII byte, the escape it needs: 0 for none, 'u' for \u00xx, else the letter.
constexpr std::array<char, 128> asciiEscapes = [] {
    std::array<char, 128> table{};
    for (int c = 0; c < 0x20; ++c)
        table[c] = 'u';
    table['\b'] = 'b';
    table['\f'] = 'f';
    table['\n'] = 'n';
    table['\r'] = 'r';
    table['\t'] = 't';
    table['"'] = '"';
    table['\\'] = '\\';
    table['/'] = '/';
    return table;
}();

void appendTwoDigits(QByteArray &out, int value)
{
    out.append(char('0' + value / 10));
    out.append(char('0' + value % 10));
}

} // namespace

JsonWriter::JsonWriter(qsizetype expectedSize)
{
    m_out.reserve(expectedSize);
}

void JsonWriter::newline()
{
    m_out.append('\n');
    m_out.append(QByteArray(qsizetype(m_depth) * 2, ' '));
}

void JsonWriter::beginValue()
{
    if (m_afterKey) {
        m_afterKey = false;
        return;
    }
    if (m_depth == 0)
        return;
    if (!m_empty)
        m_out.append(',');
    m_empty = false;
    newline();
}

void JsonWriter::beginArray()
{
    beginValue();
    m_out.append('[');
    ++m_depth;
    m_empty = true;
}

void JsonWriter::beginObject()
{
    beginValue();
    m_out.append('{');
    ++m_depth;
    m_empty = true;
}

void JsonWriter::close(char bracket)
{
    --m_depth;
    if (m_empty)
        m_out.append('\n'); // an empty container keeps a blank line inside
    newline();
    m_out.append(bracket);
    m_empty = false;
}

void JsonWriter::endArray()
{
    close(']');
}

void JsonWriter::endObject()
{
    close('}');
}

void JsonWriter::key(QLatin1StringView name)
{
    beginValue();
    m_out.append('"');
    m_out.append(name.data(), name.size());
    m_out.append("\" : ");
    m_afterKey = true;
}

void JsonWriter::string(QStringView text)
{
    beginValue();
    m_out.append('"');
    const char16_t *p = text.utf16();
    const char16_t *const end = p + text.size();
    while (p < end) {
        // Copy a run of ASCII that needs no escape in one go.
        const char16_t *run = p;
        while (p < end && *p < 0x80 && asciiEscapes[*p] == 0)
            ++p;
        if (p > run) {
            const qsizetype length = p - run;
            const qsizetype at = m_out.size();
            m_out.resize(at + length);
            char *target = m_out.data() + at;
            for (qsizetype i = 0; i < length; ++i)
                target[i] = char(run[i]);
        }
        if (p == end)
            break;
        const char16_t c = *p++;
        if (c < 0x80) {
            const char escape = asciiEscapes[c];
            m_out.append('\\');
            if (escape == 'u') {
                static constexpr char hex[] = "0123456789abcdef";
                m_out.append("u00");
                m_out.append(hex[c >> 4]);
                m_out.append(hex[c & 0xf]);
            } else {
                m_out.append(escape);
            }
        } else if (c < 0x800) {
            m_out.append(char(0xC0 | (c >> 6)));
            m_out.append(char(0x80 | (c & 0x3F)));
        } else if (QChar::isHighSurrogate(c) && p < end && QChar::isLowSurrogate(*p)) {
            const char32_t u = QChar::surrogateToUcs4(c, *p++);
            m_out.append(char(0xF0 | (u >> 18)));
            m_out.append(char(0x80 | ((u >> 12) & 0x3F)));
            m_out.append(char(0x80 | ((u >> 6) & 0x3F)));
            m_out.append(char(0x80 | (u & 0x3F)));
        } else {
            // A lone surrogate has no UTF-8 form; write the replacement character.
            const char16_t unit = QChar::isSurrogate(c) ? char16_t(0xFFFD) : c;
            m_out.append(char(0xE0 | (unit >> 12)));
            m_out.append(char(0x80 | ((unit >> 6) & 0x3F)));
            m_out.append(char(0x80 | (unit & 0x3F)));
        }
    }
    m_out.append('"');
}

void JsonWriter::uuid(const QUuid &id)
{
    beginValue();
    m_out.append('"');
    m_out.append(id.toByteArray(QUuid::WithoutBraces).toUpper());
    m_out.append('"');
}

void JsonWriter::date(const QDateTime &date)
{
    beginValue();
    const QDateTime utc = date.toUTC();
    const QDate d = utc.date();
    const QTime t = utc.time();
    m_out.append('"');
    const int year = d.year();
    m_out.append(char('0' + year / 1000 % 10));
    m_out.append(char('0' + year / 100 % 10));
    appendTwoDigits(m_out, year % 100);
    m_out.append('-');
    appendTwoDigits(m_out, d.month());
    m_out.append('-');
    appendTwoDigits(m_out, d.day());
    m_out.append('T');
    appendTwoDigits(m_out, t.hour());
    m_out.append(':');
    appendTwoDigits(m_out, t.minute());
    m_out.append(':');
    appendTwoDigits(m_out, t.second());
    m_out.append("Z\"");
}

void JsonWriter::boolean(bool value)
{
    beginValue();
    m_out.append(value ? "true" : "false");
}

void JsonWriter::integer(qint64 value)
{
    beginValue();
    m_out.append(QByteArray::number(value));
}
