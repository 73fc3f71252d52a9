#pragma once

#include "knowledgechange.h"

#include <QList>
#include <QString>

class DataStore;

// Facts a reply marks as [KNOWLEDGE:category:content] at its end: they go to the knowledge store,
// and the marks are cut out of the text the user keeps.
class KnowledgeMarkers
{
public:
    struct Result
    {
        // The text without its markers, trimmed of white space at both ends.
        QString text;
        // What the store took, in the order of the markers.
        QList<KnowledgeChange> changes;
    };

    // The category a marker's word names; the words are Chinese in every language, and any other
    // word means `Other`.
    [[nodiscard]] static KnowledgeCategory categoryForWord(QStringView word);

    // Records each marker in `store` unless its auto-recording flag is off, which is read anew
    // for every marker; removes every marker either way. A fact replaces a stored one of its
    // category when the store's keyword rule finds a conflict, and is added otherwise.
    [[nodiscard]] static Result extract(const QString &text, DataStore *store);
};
