#pragma once

#include "markdownblock.h"

#include <QAbstractListModel>
#include <QList>

// The blocks of one reply as the views show them: prose as safe rich text, code as written.
//
// `setContent` may be called with the whole reply again and again while it streams: only the
// rows that changed are reported (usually the last), so the views rebuild only what grew.
class MarkdownBlockModel : public QAbstractListModel
{
    Q_OBJECT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
    Q_PROPERTY(QString content READ content WRITE setContent NOTIFY contentChanged)

public:
    enum Role {
        // A code block, not prose.
        IsCodeRole = Qt::UserRole + 1,
        // The rich text of prose, or the code of a code block.
        TextRole,
        LanguageRole,
        IsApplicableRole,
    };
    Q_ENUM(Role)

    explicit MarkdownBlockModel(QObject *parent = nullptr);

    [[nodiscard]] QString content() const { return m_content; }
    void setContent(const QString &content);
    // No blocks at all (an empty reply still has its one empty block).
    void clear();

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void countChanged();
    void contentChanged();

private:
    struct Row
    {
        MarkdownBlock block;
        // What the views show of the block.
        QString shownText;
    };

    QString m_content;
    QList<Row> m_rows;
};
