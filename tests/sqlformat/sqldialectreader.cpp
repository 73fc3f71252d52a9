#include "sqldialectreader.h"

#include <QRegularExpression>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

using Dialect = SqlDialectReader::Dialect;

// Databases take every character beyond ASCII into names; the formatter's rules take Unicode
// white space ("　", NBSP) as white space all the same, and so does this reader.
bool isWordChar(QChar c)
{
    return !c.isSpace() &&
           (c.isLetterOrNumber() || c == u'_' || c == u'$' || c.isMark() || c.unicode() >= 0x80);
}

class Reader
{
public:
    Reader(Dialect dialect, const QString &text)
        : m_dialect(dialect)
        , m_text(text)
    {}

    QList<QStringList> run()
    {
        while (m_at < m_text.size()) {
            if (m_at == 0 || m_text[m_at - 1] == u'\n') {
                if (clientLine())
                    continue;
            }
            const QChar c = m_text[m_at];
            if (m_delimiter != u";" && QStringView(m_text).sliced(m_at).startsWith(m_delimiter)) {
                // The client looks for its delimiter first.
                m_current.append(u"<send>"_s);
                m_at += m_delimiter.size();
                endStatement();
            } else if (c.isSpace()) {
                ++m_at;
            } else if (quoted() || comment()) {
                // taken
            } else if (isWordChar(c)) {
                // MySQL's client finds its delimiter anywhere, also inside a word.
                qsizetype end = m_at;
                while (end < m_text.size() && isWordChar(m_text[end]) &&
                       (end == m_at || m_delimiter == u";" ||
                        !QStringView(m_text).sliced(end).startsWith(m_delimiter)))
                    ++end;
                // A word right before a quote may be its prefix; the quote reads it along.
                if (end < m_text.size() && (m_text[end] == u'\'' || m_text[end] == u'"')) {
                    m_prefixStart = m_at;
                    m_at = end;
                    if (quoted())
                        continue;
                    m_at = m_prefixStart;
                }
                m_current.append(m_text.sliced(m_at, end - m_at).toUpper());
                m_at = end;
            } else if (c == u';' && m_delimiter == u";" && !m_inBlock) {
                m_current.append(u";"_s);
                ++m_at;
                const auto isComment = [](const QString &token) {
                    return token.startsWith(u"--") || token.startsWith(u"/*") || token.startsWith(u'#');
                };
                const auto first = std::find_if_not(m_current.cbegin(), m_current.cend(), isComment);
                const bool copy =
                    first != m_current.cend() && *first == u"COPY" && m_current.contains(u"STDIN"_s);
                endStatement();
                // COPY data without its "\." line runs to the end: a broken script, read as SQL.
                if (copy && m_dialect == Dialect::Postgres && hasDataEnd())
                    copyData();
            } else {
                m_current.append(QString(c));
                ++m_at;
            }
            if (m_current.size() == 1 && m_dialect == Dialect::Oracle)
                m_inBlock = m_current.first() == u"BEGIN" || m_current.first() == u"DECLARE";
            if (m_current.size() >= 2 && m_current.size() <= 5 && m_dialect == Dialect::Oracle &&
                m_current.first() == u"CREATE") {
                static const QStringList kinds = {u"FUNCTION"_s, u"PROCEDURE"_s, u"PACKAGE"_s,
                                                  u"TRIGGER"_s,  u"TYPE"_s,      u"LIBRARY"_s};
                m_inBlock = m_inBlock || kinds.contains(m_current.last());
            }
        }
        if (!m_current.isEmpty())
            m_statements.append(m_current);
        return m_statements;
    }

private:
    void endStatement()
    {
        m_statements.append(m_current);
        m_current.clear();
        m_inBlock = false;
    }

    // The line's text without the blanks and tabs around it (and CRs at its end), as clients
    // read their lines.
    QString lineText(qsizetype &next) const
    {
        qsizetype end = m_text.indexOf(u'\n', m_at);
        next = end < 0 ? m_text.size() : end + 1;
        if (end < 0)
            end = m_text.size();
        qsizetype start = m_at;
        while (start < end && (m_text[start] == u' ' || m_text[start] == u'\t'))
            ++start;
        while (end > start &&
               (m_text[end - 1] == u' ' || m_text[end - 1] == u'\t' || m_text[end - 1] == u'\r'))
            --end;
        return m_text.sliced(start, end - start);
    }

    bool clientLine()
    {
        qsizetype next = 0;
        const QString line = lineText(next);
        QString marker;
        const QString upper = line.toUpper();
        switch (m_dialect) {
        case Dialect::SqlServer:
            if (upper == u"GO" || (upper.startsWith(u"GO ") && upper.sliced(3).trimmed().toInt() > 0))
                marker = u"<GO "_s + upper + u'>';
            break;
        case Dialect::MySql:
            if (upper.startsWith(u"DELIMITER ") || upper.startsWith(u"DELIMITER\t")) {
                // The delimiter runs to the next blank or tab.
                qsizetype start = 10;
                while (start < line.size() && (line[start] == u' ' || line[start] == u'\t'))
                    ++start;
                qsizetype end = start;
                while (end < line.size() && line[end] != u' ' && line[end] != u'\t')
                    ++end;
                if (end > start) {
                    m_delimiter = line.sliced(start, end - start);
                    marker = u"<DELIMITER "_s + m_delimiter + u'>';
                }
            }
            break;
        case Dialect::Postgres:
            if (line.startsWith(u'\\'))
                marker = u"<psql "_s + line + u'>';
            break;
        case Dialect::Oracle:
            if (line == u"/") {
                marker = u"<run>"_s;
                m_inBlock = false;
            } else if (upper == u"REM" || upper.startsWith(u"REM ") || upper == u"REMARK" ||
                       upper.startsWith(u"REMARK ")) {
                marker = u"<rem "_s + line + u'>';
            }
            break;
        case Dialect::Sqlite:
            break;
        }
        if (marker.isEmpty())
            return false;
        if (!m_current.isEmpty())
            endStatement();
        m_statements.append({marker});
        m_at = next;
        return true;
    }

    bool hasDataEnd() const
    {
        static const QRegularExpression line(u"^\\\\\\.\r?$"_s, QRegularExpression::MultilineOption);
        return line.match(m_text).hasMatch();
    }

    // The data follows on the lines after the COPY line, when that line ends with the COPY.
    void copyData()
    {
        qsizetype start = m_text.indexOf(u'\n', m_at);
        if (start < 0 || !m_text.sliced(m_at, start - m_at).trimmed().isEmpty())
            return;
        ++start;
        qsizetype at = start;
        while (at < m_text.size()) {
            qsizetype end = m_text.indexOf(u'\n', at);
            const qsizetype next = end < 0 ? m_text.size() : end + 1;
            if (end < 0)
                end = m_text.size();
            QStringView line = QStringView(m_text).sliced(at, end - at);
            if (line.endsWith(u'\r'))
                line.chop(1);
            if (line == u"\\.") {
                m_statements.append({u"<data "_s + m_text.sliced(start, at + line.size() - start) + u'>'});
                m_at = next;
                return;
            }
            at = next;
        }
        m_statements.append({u"<data "_s + m_text.sliced(start) + u'>'});
        m_at = m_text.size();
    }

    // A prefix stands against its quote ("N'x'" is not "N 'x'"), in any case.
    void takeWithPrefix(const QString &prefix, qsizetype end)
    {
        m_current.append(prefix + m_text.sliced(m_at, end - m_at));
        m_at = end;
    }

    void take(qsizetype start, qsizetype end)
    {
        m_current.append(m_text.sliced(start, end - start));
        m_at = end;
    }

    // A quoted string or name at m_at (with the prefix in front of it, if one was seen).
    bool quoted()
    {
        const qsizetype start = m_prefixStart >= 0 ? m_prefixStart : m_at;
        const QString prefix = m_text.sliced(start, m_at - start).toUpper();
        m_prefixStart = -1;
        const QChar c = m_text[m_at];
        const qsizetype size = m_text.size();
        const auto until = [&](QChar close, bool doubled, bool backslash) {
            qsizetype k = m_at + 1;
            while (k < size) {
                if (backslash && m_text[k] == u'\\') {
                    k += 2;
                } else if (m_text[k] == close) {
                    if (doubled && k + 1 < size && m_text[k + 1] == close)
                        k += 2;
                    else
                        return k + 1;
                } else {
                    ++k;
                }
            }
            return size;
        };
        if (c == u'\'') {
            if (m_dialect == Dialect::Oracle && (prefix == u"Q" || prefix == u"NQ") && m_at + 1 < size) {
                const QChar open = m_text[m_at + 1];
                const qsizetype bracket = u"([{<"_s.indexOf(open);
                const QChar close = bracket >= 0 ? u")]}>"_s[bracket] : open;
                const qsizetype end = m_text.indexOf(QString(close) + u'\'', m_at + 2);
                take(start, end < 0 ? size : end + 2);
                return true;
            }
            const bool backslash =
                m_dialect == Dialect::MySql || (m_dialect == Dialect::Postgres && prefix == u"E");
            takeWithPrefix(prefix, until(c, true, backslash));
            return true;
        }
        if (c == u'"') {
            takeWithPrefix(prefix, until(c, true, m_dialect == Dialect::MySql));
            return true;
        }
        if (!prefix.isEmpty())
            return false;
        if (c == u'`' && (m_dialect == Dialect::MySql || m_dialect == Dialect::Sqlite)) {
            take(m_at, until(c, true, false));
            return true;
        }
        if (c == u'[' && m_dialect == Dialect::SqlServer) {
            take(m_at, until(u']', true, false));
            return true;
        }
        if (c == u'[' && m_dialect == Dialect::Sqlite) {
            const qsizetype end = m_text.indexOf(u']', m_at);
            take(m_at, end < 0 ? size : end + 1);
            return true;
        }
        if (c == u'$' && m_dialect == Dialect::Postgres && (m_at == 0 || !isWordChar(m_text[m_at - 1]))) {
            qsizetype k = m_at + 1;
            if (k < size && m_text[k].isDigit())
                return false;
            while (k < size && m_text[k] != u'$' && isWordChar(m_text[k]))
                ++k;
            if (k >= size || m_text[k] != u'$')
                return false;
            const QString tag = m_text.sliced(m_at, k + 1 - m_at);
            const qsizetype end = m_text.indexOf(tag, k + 1);
            take(m_at, end < 0 ? size : end + tag.size());
            return true;
        }
        return false;
    }

    bool comment()
    {
        const qsizetype size = m_text.size();
        const QChar c = m_text[m_at];
        const QChar next = m_at + 1 < size ? m_text[m_at + 1] : QChar();
        const auto lineComment = [&](qsizetype from) {
            qsizetype end = m_text.indexOf(u'\n', from);
            if (end < 0)
                end = size;
            while (end > from && m_text[end - 1] == u'\r')
                --end;
            take(m_at, end);
            return true;
        };
        if (c == u'-' && next == u'-') {
            if (m_dialect == Dialect::MySql && m_at + 2 < size && m_text[m_at + 2].unicode() > u' ')
                return false;
            return lineComment(m_at + 2);
        }
        if (c == u'#' && m_dialect == Dialect::MySql)
            return lineComment(m_at + 1);
        if (c == u'/' && next == u'*') {
            const bool nested = m_dialect == Dialect::Postgres || m_dialect == Dialect::SqlServer;
            int depth = 0;
            qsizetype k = m_at;
            while (k + 1 < size) {
                if (m_text[k] == u'/' && m_text[k + 1] == u'*' && (nested || depth == 0)) {
                    ++depth;
                    k += 2;
                } else if (m_text[k] == u'*' && m_text[k + 1] == u'/') {
                    k += 2;
                    if (--depth == 0)
                        break;
                } else {
                    ++k;
                }
            }
            take(m_at, depth == 0 ? k : size);
            return true;
        }
        return false;
    }

    Dialect m_dialect;
    const QString &m_text;
    qsizetype m_at = 0;
    qsizetype m_prefixStart = -1;
    QString m_delimiter = u";"_s;
    bool m_inBlock = false;
    QStringList m_current;
    QList<QStringList> m_statements;
};

} // namespace

QString SqlDialectReader::name(Dialect dialect)
{
    switch (dialect) {
    case Dialect::Postgres:
        return u"PostgreSQL"_s;
    case Dialect::MySql:
        return u"MySQL"_s;
    case Dialect::SqlServer:
        return u"SQL Server"_s;
    case Dialect::Oracle:
        return u"Oracle"_s;
    case Dialect::Sqlite:
        return u"SQLite"_s;
    }
    return {};
}

QList<QStringList> SqlDialectReader::statements(Dialect dialect, const QString &text)
{
    return Reader(dialect, text).run();
}
