#pragma once

#include "sqlhighlightrules.h"

// One coloured stretch of text, in UTF-16 code units. Passes give only stretches that are not
// plain, in text order, never overlapping, and with touching stretches of equal look merged,
// so that two results with the same colours compare equal.
struct SQLHighlightSpan
{
    qsizetype start = 0;
    qsizetype length = 0;
    SQLHighlightRole role = SQLHighlightRole::Plain;
    // Set on every keyword, whatever colour a later rule gave it.
    bool hasKeywordWeight = false;

    [[nodiscard]] qsizetype end() const { return start + length; }
    friend bool operator==(const SQLHighlightSpan &, const SQLHighlightSpan &) = default;
};
