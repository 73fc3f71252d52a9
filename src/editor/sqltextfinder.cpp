#include "sqltextfinder.h"

#include <QTextCursor>
#include <QTextDocument>

#include <algorithm>
#include <limits>

using namespace Qt::StringLiterals;

SQLTextFinder::SQLTextFinder(QObject *parent)
    : QObject(parent)
{
    m_sliceTimer.setSingleShot(true);
    m_sliceTimer.setInterval(0);
    connect(&m_sliceTimer, &QTimer::timeout, this, [this] { runSlice(sliceBudgetNs); });
    m_researchTimer.setSingleShot(true);
    m_researchTimer.setInterval(researchDelayMs);
    connect(&m_researchTimer, &QTimer::timeout, this, &SQLTextFinder::restart);
}

SQLTextFinder::~SQLTextFinder() = default;

void SQLTextFinder::setDocument(QTextDocument *document)
{
    if (document == m_document)
        return;
    disconnect(m_changeConnection);
    m_document = document;
    m_textIsCurrent = false;
    if (document) {
        // A document without a layout reports no contentsChange.
        document->documentLayout();
        m_changeConnection =
            connect(document, &QTextDocument::contentsChange, this, &SQLTextFinder::contentsChange);
    }
    restart();
    Q_EMIT documentChanged();
}

void SQLTextFinder::setActive(bool active)
{
    if (active == m_active)
        return;
    m_active = active;
    restart();
    Q_EMIT activeChanged();
}

void SQLTextFinder::setPattern(const QString &pattern)
{
    if (pattern == m_pattern)
        return;
    m_pattern = pattern;
    restart();
    Q_EMIT patternChanged();
}

void SQLTextFinder::setCaseSensitive(bool caseSensitive)
{
    if (caseSensitive == m_caseSensitive)
        return;
    m_caseSensitive = caseSensitive;
    restart();
    Q_EMIT optionsChanged();
}

void SQLTextFinder::setWholeWords(bool wholeWords)
{
    if (wholeWords == m_wholeWords)
        return;
    m_wholeWords = wholeWords;
    restart();
    Q_EMIT optionsChanged();
}

void SQLTextFinder::setRegularExpression(bool regularExpression)
{
    if (regularExpression == m_regularExpression)
        return;
    m_regularExpression = regularExpression;
    restart();
    Q_EMIT optionsChanged();
}

std::span<const SQLTextFinder::Match> SQLTextFinder::matchesIn(int from, int to) const
{
    // Matches do not overlap, so their ends are in order as well as their starts.
    const auto first =
        std::partition_point(m_matches.begin(), m_matches.end(), [from](const Match &m) { return m.end() <= from; });
    const auto last = std::partition_point(first, m_matches.end(), [to](const Match &m) { return m.start < to; });
    return {first, last};
}

int SQLTextFinder::currentStart() const
{
    return m_current >= 0 ? m_matches[std::size_t(m_current)].start : -1;
}

int SQLTextFinder::currentEnd() const
{
    return m_current >= 0 ? m_matches[std::size_t(m_current)].end() : -1;
}

const QString &SQLTextFinder::text()
{
    if (!m_textIsCurrent) {
        m_text = m_document ? m_document->toRawText() : QString();
        // Block and line separators become line feeds, so that "^" and "$" work by lines and
        // positions stay the document's own.
        for (QChar &c : m_text) {
            if (c == QChar::ParagraphSeparator || c == QChar::LineSeparator)
                c = u'\n';
        }
        m_textIsCurrent = true;
    }
    return m_text;
}

void SQLTextFinder::restart()
{
    m_sliceTimer.stop();
    m_researchTimer.stop();
    if (m_current >= 0)
        m_wantedStart = currentStart();
    else if (m_wantedStart < 0)
        m_wantedStart = 0;
    m_iterator = {};
    const bool hadMatches = !m_matches.empty();
    m_matches.clear();
    setCurrent(-1);
    if (hadMatches)
        Q_EMIT matchesChanged();
    if (!m_active) {
        // A closed bar keeps no copy of the text.
        m_text.clear();
        m_textIsCurrent = false;
    }
    if (!m_active || !m_document || m_pattern.isEmpty()) {
        setErrorString({});
        setSearching(false);
        return;
    }
    QString source = m_regularExpression ? m_pattern : QRegularExpression::escape(m_pattern);
    // A word is letters, digits and underscores in any script; a match must not continue one.
    if (m_wholeWords)
        source = u"(?<!\\w)(?:"_s + source + u")(?!\\w)"_s;
    QRegularExpression::PatternOptions options =
        QRegularExpression::UseUnicodePropertiesOption | QRegularExpression::MultilineOption;
    if (!m_caseSensitive)
        options |= QRegularExpression::CaseInsensitiveOption;
    m_expression = QRegularExpression(source, options);
    if (!m_expression.isValid()) {
        setErrorString(m_expression.errorString());
        setSearching(false);
        return;
    }
    setErrorString({});
    m_iterator = m_expression.globalMatch(text());
    setSearching(true);
    // A text of a few megabytes is done within this slice, before the next frame.
    runSlice(sliceBudgetNs);
}

void SQLTextFinder::runSlice(qint64 budgetNs)
{
    if (!m_searching)
        return;
    QElapsedTimer timer;
    timer.start();
    const std::size_t before = m_matches.size();
    while (m_iterator.hasNext() && timer.nsecsElapsed() < budgetNs) {
        const QRegularExpressionMatch match = m_iterator.next();
        // An empty match ("^", "a*") marks a place, not text: nothing to show or replace.
        if (match.capturedLength() > 0)
            m_matches.push_back({int(match.capturedStart()), int(match.capturedLength())});
    }
    const bool done = !m_iterator.hasNext();
    if (m_current < 0 && m_wantedStart >= 0) {
        const auto found = std::find_if(m_matches.begin() + std::ptrdiff_t(before), m_matches.end(),
                                        [this](const Match &m) { return m.start >= m_wantedStart; });
        if (found != m_matches.end())
            setCurrent(int(found - m_matches.begin()));
        else if (done && !m_matches.empty())
            setCurrent(0);
    }
    if (m_matches.size() != before)
        Q_EMIT matchesChanged();
    if (done) {
        m_iterator = {};
        setSearching(false);
    } else {
        m_sliceTimer.start();
    }
}

void SQLTextFinder::finishSearch()
{
    m_sliceTimer.stop();
    if (m_researchTimer.isActive())
        restart();
    runSlice(std::numeric_limits<qint64>::max());
}

void SQLTextFinder::contentsChange(int position, int removed, int added)
{
    m_textIsCurrent = false;
    if (!m_active)
        return;
    // A search under way walks the text as it was; it starts again on the new text shortly.
    m_sliceTimer.stop();
    m_iterator = {};
    if (!m_pattern.isEmpty() && m_errorString.isEmpty()) {
        setSearching(true);
        m_researchTimer.start();
    }
    if (m_matches.empty())
        return;
    // Until the text is searched again the matches move with it; those the edit touched go.
    const int shift = added - removed;
    const int currentStart = this->currentStart();
    std::vector<Match> kept;
    kept.reserve(m_matches.size());
    int current = -1;
    for (const Match &match : m_matches) {
        if (match.end() < position)
            kept.push_back(match);
        else if (match.start > position + removed)
            kept.push_back({match.start + shift, match.length});
        else
            continue;
        if (match.start == currentStart)
            current = int(kept.size()) - 1;
    }
    m_matches = std::move(kept);
    m_current = current;
    m_wantedStart = current >= 0 ? m_matches[std::size_t(current)].start : position;
    Q_EMIT matchesChanged();
    Q_EMIT currentChanged();
}

void SQLTextFinder::setOrigin(int position)
{
    m_wantedStart = std::max(0, position);
}

bool SQLTextFinder::findNext(int position)
{
    if (m_matches.empty())
        return false;
    const auto found = std::partition_point(m_matches.begin(), m_matches.end(),
                                            [position](const Match &m) { return m.start < position; });
    if (found != m_matches.end())
        setCurrent(int(found - m_matches.begin()));
    else if (!m_searching)
        setCurrent(0);
    else
        return false;
    return true;
}

bool SQLTextFinder::findPrevious(int position)
{
    if (m_matches.empty())
        return false;
    const auto found = std::partition_point(m_matches.begin(), m_matches.end(),
                                            [position](const Match &m) { return m.start < position; });
    if (found != m_matches.begin())
        setCurrent(int(found - m_matches.begin()) - 1);
    else if (!m_searching)
        setCurrent(int(m_matches.size()) - 1);
    else
        return false;
    return true;
}

QString SQLTextFinder::replacementFor(const Match &match, const QString &replacement)
{
    if (!m_regularExpression)
        return replacement;
    const QRegularExpressionMatch found =
        m_expression.match(text(), match.start, QRegularExpression::NormalMatch,
                           QRegularExpression::AnchorAtOffsetMatchOption);
    QString expanded;
    expanded.reserve(replacement.size());
    for (qsizetype i = 0; i < replacement.size(); ++i) {
        const QChar c = replacement.at(i);
        if (c != u'\\' || i + 1 == replacement.size()) {
            expanded += c;
            continue;
        }
        const QChar next = replacement.at(++i);
        if (next.isDigit())
            expanded += found.captured(next.digitValue());
        else if (next == u'n')
            expanded += u'\n';
        else if (next == u't')
            expanded += u'\t';
        else
            expanded += next; // "\\" and any other escaped character stand for themselves
    }
    return expanded;
}

bool SQLTextFinder::replaceCurrent(const QString &replacement)
{
    if (!m_document || m_current < 0)
        return false;
    finishSearch();
    if (m_current < 0)
        return false;
    const Match match = m_matches[std::size_t(m_current)];
    const QString after = replacementFor(match, replacement);
    QTextCursor cursor(m_document);
    cursor.setPosition(match.start);
    cursor.setPosition(match.end(), QTextCursor::KeepAnchor);
    cursor.insertText(after);
    m_current = -1;
    m_wantedStart = -1;
    restart();
    finishSearch();
    findNext(match.start + int(after.size()));
    return true;
}

int SQLTextFinder::replaceAll(const QString &replacement)
{
    if (!m_document)
        return 0;
    finishSearch();
    if (m_matches.empty())
        return 0;
    const std::vector<Match> matches = m_matches;
    QStringList replacements;
    replacements.reserve(qsizetype(matches.size()));
    for (const Match &match : matches)
        replacements.append(replacementFor(match, replacement));
    // One edit block: one step of undo. From the end, so that the places before stay put.
    QTextCursor cursor(m_document);
    cursor.beginEditBlock();
    for (std::size_t i = matches.size(); i-- > 0;) {
        cursor.setPosition(matches[i].start);
        cursor.setPosition(matches[i].end(), QTextCursor::KeepAnchor);
        cursor.insertText(replacements.at(qsizetype(i)));
    }
    cursor.endEditBlock();
    m_current = -1;
    m_wantedStart = -1;
    restart();
    return int(matches.size());
}

void SQLTextFinder::setCurrent(int index)
{
    if (index == m_current)
        return;
    m_current = index;
    if (index >= 0)
        m_wantedStart = -1;
    Q_EMIT currentChanged();
}

void SQLTextFinder::setSearching(bool searching)
{
    if (searching == m_searching)
        return;
    m_searching = searching;
    Q_EMIT searchingChanged();
}

void SQLTextFinder::setErrorString(const QString &errorString)
{
    if (errorString == m_errorString)
        return;
    m_errorString = errorString;
    Q_EMIT errorStringChanged();
}
