#pragma once

#include <QByteArray>
#include <QString>

// A strict, pull-style reader of JSON text (RFC 8259) for the store files.
//
// It accepts only what the standard allows: no raw control characters or unknown escapes in
// strings, no unpaired surrogates, no "3." or leading zeros, no trailing commas, valid UTF-8
// only. Text in UTF-16 or UTF-32 (with or without a byte order mark) is converted first.
// Every method returns false on the first fault, after which `error()` says what and where.
class JsonReader
{
public:
    explicit JsonReader(const QByteArray &json);

    bool beginArray();
    // For a piece of a larger array cut after a separating comma: reads on as if just after
    // the opening bracket.
    void continueArray() { m_first = true; }
    // For a piece cut before a separating comma: the end of the text ends the array.
    void setOpenEnded(bool openEnded) { m_openEnded = openEnded; }
    // True when another element follows, false at the closing bracket or on a fault.
    bool nextElement();
    bool beginObject();
    // Reads the next key of the current object; false at the closing brace or on a fault.
    bool nextKey(QString &key);

    bool readString(QString &value);
    bool readBool(bool &value);
    // An integer without fraction or exponent that fits 64 bits.
    bool readInt64(qint64 &value);
    // A number whose value is whole, also when it is written "2.0" or "2e0", up to 2^53 where
    // it is not written as a plain integer (beyond that a double cannot say it exactly).
    bool readWholeNumber(qint64 &value);
    bool skipValue();
    // True when only white space is left.
    bool atEnd();

    [[nodiscard]] bool failed() const { return !m_error.isEmpty(); }
    [[nodiscard]] QString error() const { return m_error; }

    // Checks that `json` is one valid JSON text, an object or an array.
    [[nodiscard]] static bool validate(const QByteArray &json, QString *error = nullptr);

private:
    enum class Container : char { Array, Object };

    bool fail(const char *what);
    void skipWhitespace();
    bool expect(char c, const char *what);
    bool readStringRaw(QString *value);
    bool readNumber(QByteArrayView *text);
    bool skipValueAtDepth(int depth);

    QByteArray m_json;
    const char *m_begin = nullptr;
    const char *m_pos = nullptr;
    const char *m_end = nullptr;
    // Whether the next element or key of the innermost open container is its first.
    bool m_first = true;
    bool m_openEnded = false;
    QString m_error;
};
