#pragma once

#include <QAbstractListModel>
#include <QColor>
#include <QQmlEngine>

#include "sqlhighlightspan.h"

// A long version's text as a list of coloured lines, for a view that makes only the lines it
// shows: the text is coloured once by the read-only pass, and each line turns into styled text
// when it is first asked for. Lines longer than `pieceLength` are cut into pieces of that
// length, so that no single row lays out a megabyte.
class VersionTextLines : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)
    // The theme's colours of plain text and comments; the other colours are fixed.
    Q_PROPERTY(QColor plainColor READ plainColor WRITE setPlainColor NOTIFY coloursChanged)
    Q_PROPERTY(QColor commentColor READ commentColor WRITE setCommentColor NOTIFY coloursChanged)

public:
    static constexpr qsizetype pieceLength = 2000;

    enum Role {
        StyledTextRole = Qt::UserRole + 1,
    };

    explicit VersionTextLines(QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] QString text() const { return m_text; }
    void setText(const QString &text);
    [[nodiscard]] QColor plainColor() const { return m_plainColor; }
    void setPlainColor(const QColor &color);
    [[nodiscard]] QColor commentColor() const { return m_commentColor; }
    void setCommentColor(const QColor &color);

    // The styled text of the row: HTML-escaped, with a font colour per coloured stretch and
    // keywords in bold.
    [[nodiscard]] QString styledRow(int row) const;

Q_SIGNALS:
    void textChanged();
    void coloursChanged();

private:
    struct Row
    {
        qsizetype start = 0;
        qsizetype length = 0;
    };

    QString m_text;
    QList<Row> m_rows;
    QList<SQLHighlightSpan> m_spans;
    QColor m_plainColor{Qt::black};
    QColor m_commentColor{Qt::gray};
};
