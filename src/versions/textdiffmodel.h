#pragma once

#include "textdiff.h"

#include <QAbstractListModel>
#include <QColor>
#include <QFutureWatcher>
#include <QQmlEngine>

// The comparison of two texts as rows for a view: computed off the GUI thread whenever a text
// changes, each row's text coloured as SQL with its changed words marked.
class TextDiffModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString oldText READ oldText WRITE setOldText NOTIFY oldTextChanged)
    Q_PROPERTY(QString newText READ newText WRITE setNewText NOTIFY newTextChanged)
    Q_PROPERTY(bool isComputing READ isComputing NOTIFY isComputingChanged)
    Q_PROPERTY(int changedLines READ changedLines NOTIFY rowsReady)
    // The theme's colours: plain text, comments, and the marks of added and removed words.
    Q_PROPERTY(QColor plainColor MEMBER m_plainColor NOTIFY coloursChanged)
    Q_PROPERTY(QColor commentColor MEMBER m_commentColor NOTIFY coloursChanged)
    Q_PROPERTY(QColor addedMark MEMBER m_addedMark NOTIFY coloursChanged)
    Q_PROPERTY(QColor removedMark MEMBER m_removedMark NOTIFY coloursChanged)

public:
    enum Role {
        KindRole = Qt::UserRole + 1, // 0 context, 1 removed, 2 added, 3 fold
        OldNumberRole,
        NewNumberRole,
        StyledTextRole,
        FoldedLinesRole,
    };

    explicit TextDiffModel(QObject *parent = nullptr);
    ~TextDiffModel() override;

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] QString oldText() const { return m_oldText; }
    void setOldText(const QString &text);
    [[nodiscard]] QString newText() const { return m_newText; }
    void setNewText(const QString &text);
    [[nodiscard]] bool isComputing() const { return m_watcher.isRunning(); }
    [[nodiscard]] int changedLines() const { return m_changedLines; }

    // The row's text as rich text: HTML-escaped, SQL colours, changed words on their mark.
    [[nodiscard]] QString styledRow(int row) const;

Q_SIGNALS:
    void oldTextChanged();
    void newTextChanged();
    void isComputingChanged();
    void rowsReady();
    void coloursChanged();

private:
    void recompute();

    QString m_oldText;
    QString m_newText;
    QList<TextDiffRow> m_rows;
    int m_changedLines = 0;
    QFutureWatcher<QList<TextDiffRow>> m_watcher;
    bool m_pending = false;
    QColor m_plainColor{Qt::black};
    QColor m_commentColor{Qt::gray};
    QColor m_addedMark{QColor(52, 199, 89, 90)};
    QColor m_removedMark{QColor(255, 59, 48, 90)};
};
