#include "textdiffmodel.h"

#include "sqlhighlighter.h"
#include "sqlhighlightformats.h"

#include <QtConcurrent/QtConcurrentRun>

#include <algorithm>

using namespace Qt::StringLiterals;

TextDiffModel::TextDiffModel(QObject *parent)
    : QAbstractListModel(parent)
{
    connect(&m_watcher, &QFutureWatcher<QList<TextDiffRow>>::finished, this, [this] {
        beginResetModel();
        m_rows = m_watcher.result();
        m_changedLines = int(std::count_if(m_rows.cbegin(), m_rows.cend(), [](const TextDiffRow &row) {
            return row.kind == TextDiffRow::Kind::Added || row.kind == TextDiffRow::Kind::Removed;
        }));
        endResetModel();
        Q_EMIT rowsReady();
        if (std::exchange(m_pending, false))
            recompute();
        else
            Q_EMIT isComputingChanged();
    });
    connect(this, &TextDiffModel::coloursChanged, this, [this] {
        if (!m_rows.isEmpty())
            Q_EMIT dataChanged(index(0), index(int(m_rows.size()) - 1), {StyledTextRole});
    });
}

TextDiffModel::~TextDiffModel()
{
    m_watcher.waitForFinished();
}

int TextDiffModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant TextDiffModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const TextDiffRow &row = m_rows.at(index.row());
    switch (role) {
    case KindRole:
        return int(row.kind);
    case OldNumberRole:
        return row.oldNumber;
    case NewNumberRole:
        return row.newNumber;
    case StyledTextRole:
        return styledRow(index.row());
    case FoldedLinesRole:
        return row.foldedLines;
    default:
        return {};
    }
}

QHash<int, QByteArray> TextDiffModel::roleNames() const
{
    return {{KindRole, "kind"},
            {OldNumberRole, "oldNumber"},
            {NewNumberRole, "newNumber"},
            {StyledTextRole, "styledText"},
            {FoldedLinesRole, "foldedLines"}};
}

void TextDiffModel::setOldText(const QString &text)
{
    if (text == m_oldText)
        return;
    m_oldText = text;
    Q_EMIT oldTextChanged();
    recompute();
}

void TextDiffModel::setNewText(const QString &text)
{
    if (text == m_newText)
        return;
    m_newText = text;
    Q_EMIT newTextChanged();
    recompute();
}

void TextDiffModel::recompute()
{
    // One comparison at a time; a change meanwhile asks for one more with the newest texts.
    if (m_watcher.isRunning()) {
        m_pending = true;
        return;
    }
    m_watcher.setFuture(QtConcurrent::run(
        [oldText = m_oldText, newText = m_newText] { return TextDiff::compare(oldText, newText); }));
    Q_EMIT isComputingChanged();
}

QString TextDiffModel::styledRow(int rowIndex) const
{
    if (rowIndex < 0 || rowIndex >= m_rows.size())
        return {};
    const TextDiffRow &row = m_rows.at(rowIndex);
    const QString &text = row.text;
    const QList<SQLHighlightSpan> spans = SQLHighlighter::highlightedContent(text);
    const SQLHighlightFormats formats(m_plainColor, m_commentColor, SQLHighlightFormats::defaultFontSize);
    const QColor mark = row.kind == TextDiffRow::Kind::Added ? m_addedMark : m_removedMark;

    // Cut the line where a colour or a mark begins or ends.
    QList<qsizetype> cuts{0, text.size()};
    for (const SQLHighlightSpan &span : spans)
        cuts << span.start << span.end();
    for (const TextDiffRow::Range &range : row.changedWords)
        cuts << range.start << range.start + range.length;
    std::sort(cuts.begin(), cuts.end());
    cuts.erase(std::unique(cuts.begin(), cuts.end()), cuts.end());

    QString styled;
    for (qsizetype k = 0; k + 1 < cuts.size(); ++k) {
        const qsizetype from = cuts.at(k);
        const qsizetype to = cuts.at(k + 1);
        if (from >= to)
            continue;
        QString piece = text.sliced(from, to - from).toHtmlEscaped();
        piece.replace(u'\t', u"\u00A0\u00A0\u00A0\u00A0"_s);
        piece.replace(u' ', QChar(0xA0));
        const auto span = std::find_if(spans.cbegin(), spans.cend(), [from](const SQLHighlightSpan &s) {
            return s.start <= from && from < s.end();
        });
        const bool marked = std::any_of(
            row.changedWords.cbegin(), row.changedWords.cend(),
            [from](const TextDiffRow::Range &r) { return r.start <= from && from < r.start + r.length; });
        QString style = u"color:%1;"_s.arg(
            (span != spans.cend() ? formats.colour(span->role) : m_plainColor).name(QColor::HexArgb));
        if (span != spans.cend() && span->hasKeywordWeight)
            style += u"font-weight:600;"_s;
        if (marked)
            style += u"background-color:%1;"_s.arg(mark.name(QColor::HexArgb));
        styled += u"<span style=\"%1\">%2</span>"_s.arg(style, piece);
    }
    return styled;
}
