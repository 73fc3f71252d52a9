#include "versiontextlines.h"

#include "sqlhighlighter.h"
#include "sqlhighlightformats.h"

#include <algorithm>

using namespace Qt::StringLiterals;

VersionTextLines::VersionTextLines(QObject *parent)
    : QAbstractListModel(parent)
{}

int VersionTextLines::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant VersionTextLines::data(const QModelIndex &index, int role) const
{
    if (role != StyledTextRole ||
        !checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    return styledRow(index.row());
}

QHash<int, QByteArray> VersionTextLines::roleNames() const
{
    return {{StyledTextRole, "styledText"}};
}

void VersionTextLines::setText(const QString &text)
{
    if (text == m_text)
        return;
    beginResetModel();
    m_text = text;
    m_rows.clear();
    qsizetype start = 0;
    while (start <= m_text.size()) {
        qsizetype end = m_text.indexOf(u'\n', start);
        if (end < 0)
            end = m_text.size();
        const qsizetype next = end + 1;
        if (end > start && m_text[end - 1] == u'\r')
            --end; // a CR LF line end shows as nothing
        for (qsizetype piece = start; piece < end || piece == start; piece += pieceLength) {
            m_rows.append({piece, std::min(pieceLength, end - piece)});
            if (end - piece <= pieceLength)
                break;
        }
        start = next;
    }
    SQLHighlighter::highlightedContent(m_text, m_spans);
    endResetModel();
    Q_EMIT textChanged();
}

void VersionTextLines::setPlainColor(const QColor &color)
{
    if (color == m_plainColor)
        return;
    m_plainColor = color;
    Q_EMIT coloursChanged();
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1));
}

void VersionTextLines::setCommentColor(const QColor &color)
{
    if (color == m_commentColor)
        return;
    m_commentColor = color;
    Q_EMIT coloursChanged();
    if (!m_rows.isEmpty())
        Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1));
}

QString VersionTextLines::styledRow(int row) const
{
    if (row < 0 || row >= m_rows.size())
        return {};
    const Row line = m_rows.at(row);
    const qsizetype end = line.start + line.length;
    const SQLHighlightFormats formats(m_plainColor, m_commentColor, SQLHighlightFormats::defaultFontSize);
    QString styled;
    styled.reserve(line.length * 2);
    qsizetype at = line.start;
    // Styled text folds white space: blanks and tabs keep their width as no-break spaces.
    const auto escaped = [this](qsizetype from, qsizetype to) {
        QString piece = m_text.sliced(from, to - from).toHtmlEscaped();
        piece.replace(u'\t', u"\u00A0\u00A0\u00A0\u00A0"_s);
        piece.replace(u' ', QChar(0xA0));
        return piece;
    };
    const auto plain = [&](qsizetype to) {
        if (to > at)
            styled += escaped(at, to);
        at = std::max(at, to);
    };
    // The first span that ends inside or after the row.
    auto span =
        std::upper_bound(m_spans.cbegin(), m_spans.cend(), line.start,
                         [](qsizetype position, const SQLHighlightSpan &s) { return position < s.end(); });
    for (; span != m_spans.cend() && span->start < end; ++span) {
        const qsizetype from = std::max(span->start, line.start);
        const qsizetype to = std::min(span->end(), end);
        plain(from);
        const QString piece = escaped(from, to);
        const QString coloured =
            u"<font color=\"%1\">%2</font>"_s.arg(formats.colour(span->role).name(QColor::HexArgb), piece);
        styled += span->hasKeywordWeight ? u"<b>"_s + coloured + u"</b>"_s : coloured;
        at = to;
    }
    plain(end);
    return styled;
}
