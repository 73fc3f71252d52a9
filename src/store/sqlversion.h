#pragma once

#include "applanguage.h"

#include <QDateTime>
#include <QObject>
#include <QUuid>

// A numbered snapshot of a document's text. Never changed once made.
struct SQLVersion
{
    Q_GADGET
    Q_PROPERTY(QUuid id MEMBER id CONSTANT)
    Q_PROPERTY(QUuid documentId MEMBER documentId CONSTANT)
    Q_PROPERTY(QString content MEMBER content CONSTANT)
    Q_PROPERTY(QString note MEMBER note CONSTANT)
    Q_PROPERTY(QDateTime createdAt MEMBER createdAt CONSTANT)
    Q_PROPERTY(qint64 versionNumber MEMBER versionNumber CONSTANT)

public:
    QUuid id;
    QUuid documentId;
    QString content;
    QString note;
    QDateTime createdAt;
    qint64 versionNumber = 0;

    // Texts for `createdAt`, in `language`.
    [[nodiscard]] QString relativeTimeText(AppLanguage language, const QDateTime &now) const;
    [[nodiscard]] QString formattedDate(AppLanguage language) const;

    friend bool operator==(const SQLVersion &, const SQLVersion &) = default;
};
