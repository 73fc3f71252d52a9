#include "sqlcodecolouring.h"

#include "sqlhighlighter.h"
#include "sqlhighlightformats.h"

#include <QQuickTextDocument>
#include <QTextDocument>

SQLCodeColouring::SQLCodeColouring(QObject *parent)
    : QObject(parent)
{}

void SQLCodeColouring::setTextDocument(QQuickTextDocument *document)
{
    if (document == m_quickDocument)
        return;
    if (m_document)
        disconnect(m_document, nullptr, this, nullptr);
    m_quickDocument = document;
    m_document = document ? document->textDocument() : nullptr;
    if (m_document) {
        // A change of the text, not of its formats, asks for colours again.
        connect(m_document, &QTextDocument::contentsChange, this, [this](int, int removed, int added) {
            if (removed > 0 || added > 0)
                scheduleColouring();
        });
    }
    Q_EMIT textDocumentChanged();
    scheduleColouring();
}

void SQLCodeColouring::setPlainColor(const QColor &color)
{
    if (color == m_plainColor)
        return;
    m_plainColor = color;
    Q_EMIT coloursChanged();
    scheduleColouring();
}

void SQLCodeColouring::setCommentColor(const QColor &color)
{
    if (color == m_commentColor)
        return;
    m_commentColor = color;
    Q_EMIT coloursChanged();
    scheduleColouring();
}

void SQLCodeColouring::setFontSize(double size)
{
    if (qFuzzyCompare(size, m_fontSize))
        return;
    m_fontSize = size;
    Q_EMIT coloursChanged();
    scheduleColouring();
}

void SQLCodeColouring::componentComplete()
{
    m_isComplete = true;
    colour();
}

// Once, after the item has finished setting its text and the bindings have settled.
void SQLCodeColouring::scheduleColouring()
{
    if (m_isScheduled || !m_isComplete)
        return;
    m_isScheduled = true;
    QMetaObject::invokeMethod(this, &SQLCodeColouring::colour, Qt::QueuedConnection);
}

void SQLCodeColouring::colour()
{
    m_isScheduled = false;
    if (!m_document)
        return;
    const SQLHighlightFormats formats(m_plainColor, m_commentColor, m_fontSize);
    formats.applyToDocument(m_document,
                            SQLHighlighter::highlightedContent(SQLHighlightFormats::documentText(m_document)));
}
