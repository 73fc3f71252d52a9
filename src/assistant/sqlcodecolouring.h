#pragma once

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QQmlParserStatus>
#include <QQuickTextDocument>
class QTextDocument;

// Colours the SQL shown by a read-only text item with the read-only colouring pass, whenever its
// text or the colours change. The item shows plain text; only the formats are added.
class SQLCodeColouring : public QObject, public QQmlParserStatus
{
    Q_OBJECT
    Q_INTERFACES(QQmlParserStatus)
    QML_ELEMENT
    Q_PROPERTY(QQuickTextDocument *textDocument READ textDocument WRITE setTextDocument NOTIFY textDocumentChanged)
    // The theme's colours of plain text and comments; the other colours are fixed.
    Q_PROPERTY(QColor plainColor READ plainColor WRITE setPlainColor NOTIFY coloursChanged)
    Q_PROPERTY(QColor commentColor READ commentColor WRITE setCommentColor NOTIFY coloursChanged)
    // In points, as the item's font.
    Q_PROPERTY(double fontSize READ fontSize WRITE setFontSize NOTIFY coloursChanged)

public:
    explicit SQLCodeColouring(QObject *parent = nullptr);

    [[nodiscard]] QQuickTextDocument *textDocument() const { return m_quickDocument; }
    void setTextDocument(QQuickTextDocument *document);
    [[nodiscard]] QColor plainColor() const { return m_plainColor; }
    void setPlainColor(const QColor &color);
    [[nodiscard]] QColor commentColor() const { return m_commentColor; }
    void setCommentColor(const QColor &color);
    [[nodiscard]] double fontSize() const { return m_fontSize; }
    void setFontSize(double size);

    void classBegin() override {}
    // Coloured before the item is first drawn.
    void componentComplete() override;

Q_SIGNALS:
    void textDocumentChanged();
    void coloursChanged();

private:
    void scheduleColouring();
    void colour();

    QPointer<QQuickTextDocument> m_quickDocument;
    QPointer<QTextDocument> m_document;
    QColor m_plainColor{Qt::black};
    QColor m_commentColor{Qt::gray};
    double m_fontSize = 10;
    bool m_isScheduled = false;
    bool m_isComplete = false;
};
