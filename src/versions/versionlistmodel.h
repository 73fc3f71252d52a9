#pragma once

#include <QAbstractListModel>
#include <QPointer>
#include <QQmlEngine>
#include <QTimer>

#include "sqlversion.h"

class DataStore;

// The version history of the selected document, highest number first, as the history panel
// lists it. Rows carry what a card shows; a version's text reaches the views only through
// versionAt(), when it is opened.
class VersionListModel : public QAbstractListModel
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(int count READ rowCount NOTIFY countChanged)

public:
    enum Role {
        IdRole = Qt::UserRole + 1,
        VersionNumberRole,
        NoteRole,
        RelativeTimeRole,
        FormattedDateRole,
        IsLatestRole,
    };
    Q_ENUM(Role)

    // Uses the shared store unless given another one.
    explicit VersionListModel(QObject *parent = nullptr);
    explicit VersionListModel(DataStore *store, QObject *parent = nullptr);

    [[nodiscard]] int rowCount(const QModelIndex &parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex &index, int role) const override;
    [[nodiscard]] QHash<int, QByteArray> roleNames() const override;

    // The version at `row` for the reading sheet: versionNumber, note, content, formattedDate,
    // characterCount (user-perceived characters), id. Empty outside the list.
    Q_INVOKABLE QVariantMap versionAt(int row) const;
    // Forgets every version of the selected document.
    Q_INVOKABLE void clearAll();

    [[nodiscard]] SQLVersion version(int row) const { return m_versions.value(row); }

Q_SIGNALS:
    void countChanged();

private:
    void refresh();

    QPointer<DataStore> m_store;
    QList<SQLVersion> m_versions;
    // Relative times ("5 min. ago") age while nothing changes.
    QTimer m_clockTimer;
};
