#pragma once

#include "knowledgeitem.h"

#include <QList>
#include <QObject>
#include <QUuid>

// A fact that a reply's marker added to the knowledge store or wrote over an existing one, with
// what the panel needs to show it and to undo it.
struct KnowledgeChange
{
    Q_GADGET
    Q_PROPERTY(QUuid itemId MEMBER itemId)
    Q_PROPERTY(bool isNew MEMBER isNew)
    Q_PROPERTY(KnowledgeEnums::KnowledgeCategory category MEMBER category)
    Q_PROPERTY(QString content MEMBER content)
    Q_PROPERTY(QString previousContent MEMBER previousContent)

public:
    QUuid itemId;
    // True when the item was added; false when an existing item got the new content.
    bool isNew = true;
    KnowledgeCategory category = KnowledgeCategory::Other;
    QString content;
    // The content the item had before; empty for a new item.
    QString previousContent;

    friend bool operator==(const KnowledgeChange &, const KnowledgeChange &) = default;
};

Q_DECLARE_METATYPE(KnowledgeChange)
