#include "markdownblock.h"

bool MarkdownBlock::isApplicable() const
{
    // Lower-casing, not case folding: "ſql" folds to "sql" but is not SQL.
    return kind == Kind::CodeBlock && (language.isEmpty() || language.toLower() == u"sql");
}
