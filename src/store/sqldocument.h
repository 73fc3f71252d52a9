#pragma once

#include "applanguage.h"

#include <QDateTime>
#include <QObject>
#include <QStringList>
#include <QUuid>

// A named SQL text kept in the sidebar. A plain value: copies never reach the store.
struct SQLDocument
{
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id CONSTANT)
    Q_PROPERTY(QString name MEMBER name)
    Q_PROPERTY(QString content MEMBER content)
    Q_PROPERTY(QDateTime createdAt MEMBER createdAt)
    Q_PROPERTY(QDateTime updatedAt MEMBER updatedAt)
    Q_PROPERTY(QStringList tags MEMBER tags)
    Q_PROPERTY(bool isFavorite MEMBER isFavorite)

public:
    QUuid id;
    QString name;
    QString content;
    QDateTime createdAt;
    QDateTime updatedAt;
    QStringList tags;
    bool isFavorite = false;

    // "5 min. ago" for `updatedAt`, in `language`.
    [[nodiscard]] QString relativeTimeText(AppLanguage language, const QDateTime &now) const;

    friend bool operator==(const SQLDocument &, const SQLDocument &) = default;
};
