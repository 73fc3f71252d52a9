#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPointer>
#include <QRegularExpression>
#include <QTextDocument>
#include <QTimer>

#include <span>
#include <vector>

// Find and replace over a text document: every match of a pattern (plain text or a regular
// expression, optionally case sensitive and whole words only), a current match, and
// replacing it or all of them as one undoable edit.
//
// The search runs while the finder is active (the find bar is open). It takes the document's
// text once per change of the text and walks it in slices of bounded time, so a long text is
// searched without freezing the window: matches appear as they are found, `searching` stays
// true until the end. Edits move the matches with the text at once and search again after a
// short pause.
class SQLTextFinder : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QTextDocument *document READ document WRITE setDocument NOTIFY documentChanged)
    Q_PROPERTY(bool active READ isActive WRITE setActive NOTIFY activeChanged)
    Q_PROPERTY(QString pattern READ pattern WRITE setPattern NOTIFY patternChanged)
    Q_PROPERTY(bool caseSensitive READ caseSensitive WRITE setCaseSensitive NOTIFY optionsChanged)
    Q_PROPERTY(bool wholeWords READ wholeWords WRITE setWholeWords NOTIFY optionsChanged)
    Q_PROPERTY(bool regularExpression READ regularExpression WRITE setRegularExpression NOTIFY optionsChanged)
    Q_PROPERTY(int matchCount READ matchCount NOTIFY matchesChanged)
    // The current match's place among all, from 0; -1 when there is none.
    Q_PROPERTY(int currentIndex READ currentIndex NOTIFY currentChanged)
    Q_PROPERTY(int currentStart READ currentStart NOTIFY currentChanged)
    Q_PROPERTY(int currentEnd READ currentEnd NOTIFY currentChanged)
    Q_PROPERTY(bool searching READ isSearching NOTIFY searchingChanged)
    // Why the pattern cannot be searched for (an invalid expression); empty when it can.
    Q_PROPERTY(QString errorString READ errorString NOTIFY errorStringChanged)

public:
    struct Match
    {
        int start = 0;
        int length = 0;
        [[nodiscard]] int end() const { return start + length; }
        bool operator==(const Match &) const = default;
    };

    // Search work per slice; a long text takes several, with the event loop between them.
    static constexpr qint64 sliceBudgetNs = 6'000'000;
    // How long after an edit the text is searched again.
    static constexpr int researchDelayMs = 150;

    explicit SQLTextFinder(QObject *parent = nullptr);
    ~SQLTextFinder() override;

    [[nodiscard]] QTextDocument *document() const { return m_document; }
    void setDocument(QTextDocument *document);
    [[nodiscard]] bool isActive() const { return m_active; }
    void setActive(bool active);
    [[nodiscard]] QString pattern() const { return m_pattern; }
    void setPattern(const QString &pattern);
    [[nodiscard]] bool caseSensitive() const { return m_caseSensitive; }
    void setCaseSensitive(bool caseSensitive);
    [[nodiscard]] bool wholeWords() const { return m_wholeWords; }
    void setWholeWords(bool wholeWords);
    [[nodiscard]] bool regularExpression() const { return m_regularExpression; }
    void setRegularExpression(bool regularExpression);

    [[nodiscard]] int matchCount() const { return int(m_matches.size()); }
    [[nodiscard]] const std::vector<Match> &matches() const { return m_matches; }
    // The matches that overlap the characters [from, to), in order.
    [[nodiscard]] std::span<const Match> matchesIn(int from, int to) const;
    [[nodiscard]] int currentIndex() const { return m_current; }
    [[nodiscard]] int currentStart() const;
    [[nodiscard]] int currentEnd() const;
    [[nodiscard]] bool isSearching() const { return m_searching; }
    [[nodiscard]] QString errorString() const { return m_errorString; }

    // Where the next search takes its first current match from: the first match at or after
    // `position` (the caret, as the find bar opens). Later searches keep the current match's place.
    Q_INVOKABLE void setOrigin(int position);
    // Makes the first match that starts at or after `position` current, from the top again
    // past the last; false if there is none.
    Q_INVOKABLE bool findNext(int position);
    // Makes the last match that ends at or before `position` current, from the bottom again
    // before the first; false if there is none.
    Q_INVOKABLE bool findPrevious(int position);
    // Replaces the current match (in an expression, "\1"…"\9" stand for its groups and "\0"
    // for all of it) and makes the next match current; false if there was none.
    Q_INVOKABLE bool replaceCurrent(const QString &replacement);
    // Replaces every match in one undoable edit; returns how many.
    Q_INVOKABLE int replaceAll(const QString &replacement);
    // Searches the rest of the text now (for tests, and before replacing).
    void finishSearch();

Q_SIGNALS:
    void documentChanged();
    void activeChanged();
    void patternChanged();
    void optionsChanged();
    void matchesChanged();
    void currentChanged();
    void searchingChanged();
    void errorStringChanged();

private:
    void restart();
    void runSlice(qint64 budgetNs);
    void contentsChange(int position, int removed, int added);
    void setCurrent(int index);
    void setSearching(bool searching);
    void setErrorString(const QString &errorString);
    [[nodiscard]] QString replacementFor(const Match &match, const QString &replacement);
    [[nodiscard]] const QString &text();

    QPointer<QTextDocument> m_document;
    QMetaObject::Connection m_changeConnection;
    bool m_active = false;
    QString m_pattern;
    bool m_caseSensitive = false;
    bool m_wholeWords = false;
    bool m_regularExpression = false;

    QRegularExpression m_expression;
    // The document's text with line feeds between blocks, positions equal to the document's;
    // taken again after a change.
    QString m_text;
    bool m_textIsCurrent = false;
    QRegularExpressionMatchIterator m_iterator;
    std::vector<Match> m_matches;
    int m_current = -1;
    // The start of the match that was current before a search started again, to find it again.
    int m_wantedStart = -1;
    bool m_searching = false;
    QString m_errorString;
    QTimer m_sliceTimer;
    QTimer m_researchTimer;
};
