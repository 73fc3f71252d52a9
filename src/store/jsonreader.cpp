#include "jsonreader.h"

#include <cmath>

#include <QStringDecoder>

#include <cstring>

using namespace Qt::StringLiterals;

namespace {

constexpr int maximumDepth = 512;

// JSON texts may come in UTF-16 or UTF-32; the encoding shows in the first bytes, since the
// first character is ASCII (RFC 4627, section 3), or in a byte order mark.
QByteArray toUtf8(const QByteArray &json, bool *ok)
{
    *ok = true;
    const auto byte = [&json](qsizetype i) { return i < json.size() ? uchar(json[i]) : 0x100; };
    std::optional<QStringConverter::Encoding> encoding;
    if (byte(0) == 0xEF && byte(1) == 0xBB && byte(2) == 0xBF)
        return json.mid(3);
    if (byte(0) == 0 && byte(1) == 0 && byte(2) == 0xFE && byte(3) == 0xFF)
        encoding = QStringConverter::Utf32BE;
    else if (byte(0) == 0xFF && byte(1) == 0xFE && byte(2) == 0 && byte(3) == 0)
        encoding = QStringConverter::Utf32LE;
    else if (byte(0) == 0xFE && byte(1) == 0xFF)
        encoding = QStringConverter::Utf16BE;
    else if (byte(0) == 0xFF && byte(1) == 0xFE)
        encoding = QStringConverter::Utf16LE;
    else if (json.size() >= 4 && byte(0) == 0 && byte(1) == 0 && byte(2) == 0)
        encoding = QStringConverter::Utf32BE;
    else if (json.size() >= 4 && byte(1) == 0 && byte(2) == 0 && byte(3) == 0)
        encoding = QStringConverter::Utf32LE;
    else if (json.size() >= 2 && byte(0) == 0)
        encoding = QStringConverter::Utf16BE;
    else if (json.size() >= 2 && byte(1) == 0)
        encoding = QStringConverter::Utf16LE;
    if (!encoding)
        return json;
    QStringDecoder decoder(*encoding, QStringDecoder::Flag::Stateless);
    const QString text = decoder.decode(json);
    if (decoder.hasError()) {
        *ok = false;
        return {};
    }
    QString withoutMark = text;
    if (withoutMark.startsWith(QChar(0xFEFF)))
        withoutMark.remove(0, 1);
    return withoutMark.toUtf8();
}

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

} // namespace

JsonReader::JsonReader(const QByteArray &json)
{
    bool ok = true;
    m_json = toUtf8(json, &ok);
    m_begin = m_json.constData();
    m_pos = m_begin;
    m_end = m_begin + m_json.size();
    if (!ok)
        fail("text in UTF-16 or UTF-32 that does not decode");
    else if (!QByteArrayView(m_json).isValidUtf8())
        fail("text that is not valid UTF-8");
}

bool JsonReader::fail(const char *what)
{
    if (m_error.isEmpty())
        m_error = u"%1 at byte %2"_s.arg(QLatin1StringView(what)).arg(m_pos - m_begin);
    m_pos = m_end;
    return false;
}

void JsonReader::skipWhitespace()
{
    while (m_pos < m_end && (*m_pos == ' ' || *m_pos == '\n' || *m_pos == '\r' || *m_pos == '\t'))
        ++m_pos;
}

bool JsonReader::expect(char c, const char *what)
{
    if (failed())
        return false;
    skipWhitespace();
    if (m_pos >= m_end || *m_pos != c)
        return fail(what);
    ++m_pos;
    return true;
}

bool JsonReader::beginArray()
{
    if (!expect('[', "expected an array"))
        return false;
    m_first = true;
    return true;
}

bool JsonReader::beginObject()
{
    if (!expect('{', "expected an object"))
        return false;
    m_first = true;
    return true;
}

bool JsonReader::nextElement()
{
    if (failed())
        return false;
    skipWhitespace();
    if (m_pos < m_end && *m_pos == ']') {
        ++m_pos;
        m_first = false;
        return false;
    }
    if (m_openEnded && m_pos == m_end)
        return false;
    if (!m_first && !expect(',', "expected ',' or ']'"))
        return false;
    m_first = false;
    skipWhitespace();
    if (m_pos < m_end && *m_pos == ']')
        return fail("trailing comma");
    return true;
}

bool JsonReader::nextKey(QString &key)
{
    if (failed())
        return false;
    skipWhitespace();
    if (m_pos < m_end && *m_pos == '}') {
        ++m_pos;
        m_first = false;
        return false;
    }
    if (!m_first && !expect(',', "expected ',' or '}'"))
        return false;
    m_first = false;
    skipWhitespace();
    if (m_pos >= m_end || *m_pos != '"')
        return fail("expected a key");
    if (!readStringRaw(&key))
        return false;
    return expect(':', "expected ':'");
}

bool JsonReader::readString(QString &value)
{
    if (failed())
        return false;
    skipWhitespace();
    if (m_pos >= m_end || *m_pos != '"')
        return fail("expected a string");
    return readStringRaw(&value);
}

bool JsonReader::readStringRaw(QString *value)
{
    ++m_pos; // opening quote
    // Plain runs are copied and escapes decoded into one UTF-8 buffer, converted once at the
    // end: SQL text has an escaped line feed on every line.
    thread_local QByteArray buffer;
    buffer.resize(0);
    const char *runStart = m_pos;
    const auto appendUtf8 = [](char32_t u) {
        if (u < 0x80) {
            buffer.append(char(u));
        } else if (u < 0x800) {
            buffer.append(char(0xC0 | (u >> 6)));
            buffer.append(char(0x80 | (u & 0x3F)));
        } else if (u < 0x10000) {
            buffer.append(char(0xE0 | (u >> 12)));
            buffer.append(char(0x80 | ((u >> 6) & 0x3F)));
            buffer.append(char(0x80 | (u & 0x3F)));
        } else {
            buffer.append(char(0xF0 | (u >> 18)));
            buffer.append(char(0x80 | ((u >> 12) & 0x3F)));
            buffer.append(char(0x80 | ((u >> 6) & 0x3F)));
            buffer.append(char(0x80 | (u & 0x3F)));
        }
    };
    bool escaped = false;
    while (true) {
        const char *stop = m_pos;
        while (stop < m_end && *stop != '"' && *stop != '\\' && uchar(*stop) >= 0x20)
            ++stop;
        m_pos = stop;
        if (m_pos >= m_end)
            return fail("unterminated string");
        if (value && escaped)
            buffer.append(runStart, m_pos - runStart);
        const char c = *m_pos;
        if (c == '"') {
            if (value) {
                *value = escaped ? QString::fromUtf8(buffer) : QString::fromUtf8(runStart, m_pos - runStart);
            }
            ++m_pos;
            return true;
        }
        if (c != '\\')
            return fail("control character inside a string");
        if (value && !escaped) {
            buffer.append(runStart, m_pos - runStart);
            escaped = true;
        }
        if (m_end - m_pos < 2)
            return fail("unterminated escape");
        const char escape = m_pos[1];
        m_pos += 2;
        char32_t decoded = 0;
        switch (escape) {
        case '"':
        case '\\':
        case '/':
            decoded = char32_t(escape);
            break;
        case 'b':
            decoded = u'\b';
            break;
        case 'f':
            decoded = u'\f';
            break;
        case 'n':
            decoded = u'\n';
            break;
        case 'r':
            decoded = u'\r';
            break;
        case 't':
            decoded = u'\t';
            break;
        case 'u': {
            const auto readHex = [this](char16_t *unit) {
                if (m_end - m_pos < 4)
                    return false;
                int code = 0;
                for (int i = 0; i < 4; ++i) {
                    const int digit = hexValue(m_pos[i]);
                    if (digit < 0)
                        return false;
                    code = code * 16 + digit;
                }
                m_pos += 4;
                *unit = char16_t(code);
                return true;
            };
            char16_t unit = 0;
            if (!readHex(&unit))
                return fail("bad \\u escape");
            if (QChar::isLowSurrogate(unit))
                return fail("unpaired surrogate");
            decoded = unit;
            if (QChar::isHighSurrogate(unit)) {
                char16_t low = 0;
                if (m_end - m_pos < 2 || m_pos[0] != '\\' || m_pos[1] != 'u')
                    return fail("unpaired surrogate");
                m_pos += 2;
                if (!readHex(&low) || !QChar::isLowSurrogate(low))
                    return fail("unpaired surrogate");
                decoded = QChar::surrogateToUcs4(unit, low);
            }
            break;
        }
        default:
            return fail("unknown escape");
        }
        if (value)
            appendUtf8(decoded);
        runStart = m_pos;
    }
}

bool JsonReader::readBool(bool &value)
{
    if (failed())
        return false;
    skipWhitespace();
    if (m_end - m_pos >= 4 && std::memcmp(m_pos, "true", 4) == 0) {
        m_pos += 4;
        value = true;
        return true;
    }
    if (m_end - m_pos >= 5 && std::memcmp(m_pos, "false", 5) == 0) {
        m_pos += 5;
        value = false;
        return true;
    }
    return fail("expected true or false");
}

bool JsonReader::readNumber(QByteArrayView *text)
{
    skipWhitespace();
    const char *start = m_pos;
    if (m_pos < m_end && *m_pos == '-')
        ++m_pos;
    if (m_pos >= m_end || !isDigit(*m_pos))
        return fail("expected a number");
    if (*m_pos == '0') {
        ++m_pos;
        if (m_pos < m_end && isDigit(*m_pos))
            return fail("leading zero in a number");
    } else {
        while (m_pos < m_end && isDigit(*m_pos))
            ++m_pos;
    }
    if (m_pos < m_end && *m_pos == '.') {
        ++m_pos;
        if (m_pos >= m_end || !isDigit(*m_pos))
            return fail("digits expected after the decimal point");
        while (m_pos < m_end && isDigit(*m_pos))
            ++m_pos;
    }
    if (m_pos < m_end && (*m_pos == 'e' || *m_pos == 'E')) {
        ++m_pos;
        if (m_pos < m_end && (*m_pos == '+' || *m_pos == '-'))
            ++m_pos;
        if (m_pos >= m_end || !isDigit(*m_pos))
            return fail("digits expected in the exponent");
        while (m_pos < m_end && isDigit(*m_pos))
            ++m_pos;
    }
    *text = QByteArrayView(start, m_pos - start);
    return true;
}

bool JsonReader::readInt64(qint64 &value)
{
    if (failed())
        return false;
    QByteArrayView text;
    if (!readNumber(&text))
        return false;
    bool ok = false;
    value = text.toLongLong(&ok);
    if (!ok)
        return fail("expected a whole number that fits 64 bits");
    return true;
}

bool JsonReader::readWholeNumber(qint64 &value)
{
    if (failed())
        return false;
    QByteArrayView text;
    if (!readNumber(&text))
        return false;
    bool ok = false;
    value = text.toLongLong(&ok);
    if (ok)
        return true;
    const double number = text.toDouble(&ok);
    constexpr double exactLimit = 9007199254740992.0; // 2^53
    if (!ok || !std::isfinite(number) || std::trunc(number) != number || std::fabs(number) > exactLimit)
        return fail("expected a whole number");
    value = qint64(number);
    return true;
}

bool JsonReader::skipValue()
{
    return skipValueAtDepth(0);
}

bool JsonReader::skipValueAtDepth(int depth)
{
    if (failed())
        return false;
    if (depth > maximumDepth)
        return fail("nested too deeply");
    skipWhitespace();
    if (m_pos >= m_end)
        return fail("expected a value");
    switch (*m_pos) {
    case '"':
        return readStringRaw(nullptr);
    case '[':
        ++m_pos;
        m_first = true;
        while (nextElement()) {
            if (!skipValueAtDepth(depth + 1))
                return false;
        }
        return !failed();
    case '{': {
        ++m_pos;
        m_first = true;
        QString key;
        while (nextKey(key)) {
            if (!skipValueAtDepth(depth + 1))
                return false;
        }
        return !failed();
    }
    case 't':
    case 'f': {
        bool ignored = false;
        return readBool(ignored);
    }
    case 'n':
        if (m_end - m_pos >= 4 && std::memcmp(m_pos, "null", 4) == 0) {
            m_pos += 4;
            return true;
        }
        return fail("expected a value");
    default: {
        QByteArrayView ignored;
        return readNumber(&ignored);
    }
    }
}

bool JsonReader::atEnd()
{
    if (failed())
        return false;
    skipWhitespace();
    return m_pos == m_end;
}

bool JsonReader::validate(const QByteArray &json, QString *error)
{
    JsonReader reader(json);
    // A JSON text is an object or an array, as the original decoder insists.
    reader.skipWhitespace();
    const bool container = reader.m_pos < reader.m_end && (*reader.m_pos == '[' || *reader.m_pos == '{');
    const bool ok =
        (container || reader.fail("expected an object or an array")) && reader.skipValue() && reader.atEnd();
    if (!ok && error)
        *error = reader.failed() ? reader.error() : u"text after the value"_s;
    return ok;
}
