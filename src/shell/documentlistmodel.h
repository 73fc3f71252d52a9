#pragma once

#include <QAbstractListModel>
#include <QDateTime>
#include <QPointer>
#include <QQmlEngine>
#include <QTimer>
#include <QUuid>

class DataStore;

// The sidebar's list: the store's documents, newest first, filtered by name. Rows follow the
// store by small changes (a row updated, inserted or removed) so that the views keep their
// delegates, and typing in the editor costs one comparison pass, not a rebuilt list.
class DocumentListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QString searchText READ searchText WRITE setSearchText NOTIFY searchTextChanged)
    Q_PROPERTY(int totalCount READ totalCount NOTIFY totalCountChanged)
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)
    Q_PROPERTY(int selectedRow READ selectedRow NOTIFY selectedRowChanged)

public:
    enum Role {
        IdRole = Qt::UserRole + 1,
        NameRole,
        RelativeTimeRole,
        IsSelectedRole,
    };
    Q_ENUM(Role)

    // Uses the shared store unless given another one.
    explicit DocumentListModel(QObject *parent = nullptr);
    explicit DocumentListModel(DataStore *store, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    [[nodiscard]] QString searchText() const { return m_searchText; }
    void setSearchText(const QString &text);
    [[nodiscard]] int totalCount() const;

    // Ids are passed as text, as the views hold them.
    Q_INVOKABLE void select(const QString &id);
    // The selected document's row, or -1 (the list's keys work from here whether or not the
    // row is in view); selectRow() selects the document at a row, if there is one.
    [[nodiscard]] int selectedRow() const { return m_selectedRow; }
    Q_INVOKABLE void selectRow(int row);
    Q_INVOKABLE [[nodiscard]] QString idAt(int row) const;
    Q_INVOKABLE void deleteDocument(const QString &id);
    // Brings the last deleted document back, or makes its deletion final.
    Q_INVOKABLE bool undoDeletion();
    Q_INVOKABLE void forgetDeletion();
    // The name of the document the last deletion took; empty if there is none to bring back.
    Q_INVOKABLE [[nodiscard]] QString lastDeletedName() const;
    // Creates a document named `name`, or the default name of the language in force if it is
    // empty, and selects it.
    Q_INVOKABLE void createDocument(const QString &name);

Q_SIGNALS:
    void searchTextChanged();
    void totalCountChanged();
    void countChanged();
    void selectedRowChanged();

private:
    struct Row
    {
        QUuid id;
        QString name;
        QDateTime updatedAt;
    };

    void refresh();
    void updateSelectedRow();
    [[nodiscard]] QList<Row> listedRows() const;

    QPointer<DataStore> m_store;
    QString m_searchText;
    QList<Row> m_rows;
    QUuid m_selectedId;
    int m_selectedRow = -1;
    int m_totalCount = 0;
    // Relative times ("5 min. ago") age while nothing changes.
    QTimer m_clockTimer;
};
