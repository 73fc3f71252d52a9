#pragma once

#include <QByteArray>
#include <QDateTime>
#include <QStringView>
#include <QUuid>

// Writes JSON in the pretty-printed form the store files have always had: two blanks of
// indent a level, `"key" : value`, every `/` escaped, other text as raw UTF-8, an empty
// array as "[", two line feeds and "]", and no line feed at the end.
class JsonWriter
{
public:
    explicit JsonWriter(qsizetype expectedSize = 0);

    void beginArray();
    void endArray();
    void beginObject();
    void endObject();
    // Starts the next member of the current object.
    void key(QLatin1StringView name);

    void string(QStringView text);
    void uuid(const QUuid &id);
    // RFC 3339 in UTC with whole seconds: "2026-03-01T08:15:30Z".
    void date(const QDateTime &date);
    void boolean(bool value);
    void integer(qint64 value);

    [[nodiscard]] QByteArray take() { return std::move(m_out); }

private:
    void beginValue();
    void newline();
    void close(char bracket);

    QByteArray m_out;
    int m_depth = 0;
    // Whether the innermost container has had a member yet.
    bool m_empty = true;
    bool m_afterKey = false;
};
