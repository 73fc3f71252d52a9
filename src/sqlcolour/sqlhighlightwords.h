#pragma once

#include <QtGlobal>

#include <array>

// The keyword and type lists as one hash table over case-folded words, so that a pass looks a
// word up in a few nanoseconds instead of trying 90 expressions.
class SQLHighlightWords
{
public:
    enum Flag : quint8 {
        IsKeyword = 1,
        IsType = 2,
    };

    // A word as 5-bit letter codes (A..Z = 1..26, "_" = 31); codes are never 0, so the packed
    // value alone tells words of different lengths apart.
    struct Key
    {
        quint64 low = 0;
        quint64 high = 0;
        int length = 0;

        void append(quint32 code)
        {
            if (length < 12)
                low = (low << 5) | code;
            else if (length < 24)
                high = (high << 5) | code;
            ++length;
        }
    };

    [[nodiscard]] static const SQLHighlightWords &instance();

    // IsKeyword and/or IsType for a listed word, else 0.
    [[nodiscard]] quint8 flags(const Key &key) const
    {
        if (key.length < m_minLength || key.length > m_maxLength)
            return 0;
        for (quint32 slot = hash(key);; slot = (slot + 1) & (slotCount - 1)) {
            const Entry &entry = m_entries[slot];
            if (entry.flags == 0)
                return 0;
            if (entry.low == key.low && entry.high == key.high)
                return entry.flags;
        }
    }

private:
    SQLHighlightWords();
    static constexpr quint32 slotCount = 256;
    static quint32 hash(const Key &key)
    {
        return quint32((key.low * 0x9E3779B97F4A7C15ULL + key.high * 0xC2B2AE3D27D4EB4FULL) >> 56);
    }
    void insert(const Key &key, Flag flag);

    struct Entry
    {
        quint64 low = 0;
        quint64 high = 0;
        quint8 flags = 0;
    };
    std::array<Entry, slotCount> m_entries{};
    int m_minLength = 1000;
    int m_maxLength = 0;
};
