#pragma once

#include "knowledgeitem.h"

#include <QAbstractListModel>
#include <QPointer>
#include <QQmlEngine>
#include <QTimer>

class DataStore;

// The knowledge items for the settings window: grouped by category in the fixed order of the
// categories, in the store's order within a group. Rows follow the store by small changes
// (added, removed, updated in place), so that a long list keeps its place and its delegates.
// Items are edited and deleted by id, never found by their text: two items may hold the same.
class KnowledgeListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
    // The number of items by the category's raw value ("databaseVersion"), for the group heads.
    Q_PROPERTY(QVariantMap groupSizes READ groupSizes NOTIFY groupsChanged)

public:
    enum Role {
        ItemIdRole = Qt::UserRole + 1,
        CategoryRole,
        // The category's raw value ("databaseVersion"), which the list's group heads use.
        CategoryKeyRole,
        ContentRole,
        SourceRole,
        RelativeTimeRole,
    };
    Q_ENUM(Role)

    // Uses the shared store unless given another one.
    explicit KnowledgeListModel(QObject *parent = nullptr);
    explicit KnowledgeListModel(DataStore *store, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] QVariantMap groupSizes() const;

    Q_INVOKABLE void addItem(KnowledgeEnums::KnowledgeCategory category, const QString &content);
    // Ids are passed as text, as the views hold them. An id that is gone changes nothing.
    Q_INVOKABLE void updateItem(const QString &id, KnowledgeEnums::KnowledgeCategory category,
                                const QString &content);
    Q_INVOKABLE void deleteItem(const QString &id);

Q_SIGNALS:
    void countChanged();
    // The number of items of some category changed.
    void groupsChanged();

private:
    struct Row
    {
        QUuid id;
        KnowledgeCategory category;
        QString content;
        KnowledgeSource source;
        QDateTime createdAt;
    };

    [[nodiscard]] QList<Row> groupedRows() const;
    void refresh();
    void timesChanged();

    QPointer<DataStore> m_store;
    QList<Row> m_rows;
    QHash<KnowledgeCategory, int> m_groupSizes;
    // Relative times ("5 min. ago") age while nothing changes.
    QTimer m_clockTimer;
};
