#pragma once

#include <QLatin1StringView>
#include <QString>
#include <QStringView>

// Builds the rich text of one piece of prose. Text is escaped so that nothing in it can become
// markup, and its white space is kept as written: a Qt text item collapses runs of blanks and
// drops them at the start of a line, so every blank that would be lost is written as a
// no-break space.
class MarkdownRichTextWriter
{
public:
    // Text as it should read; a line feed in it becomes a line break.
    void appendText(QStringView text);
    void appendLineBreak();
    // Markup the caller vouches for: one of the tags of the safe subset, or a named entity.
    void appendMarkup(QLatin1StringView markup);
    void appendAttributeValue(QStringView value);

    [[nodiscard]] bool isAtLineStart() const { return m_atLineStart; }
    [[nodiscard]] QString takeHtml() { return std::move(m_html); }

private:
    // Appends `c`, as an entity where HTML would read it as markup.
    void appendEscaped(QChar c);
    QString m_html;
    bool m_atLineStart = true;
    bool m_afterBlank = false;
};
