#include "sqlhighlightwords.h"

#include "sqlhighlightrules.h"

const SQLHighlightWords &SQLHighlightWords::instance()
{
    static const SQLHighlightWords words;
    return words;
}

SQLHighlightWords::SQLHighlightWords()
{
    const auto add = [this](QLatin1StringView word, Flag flag) {
        Key key;
        for (const char c : word)
            key.append(quint32(c) & 0x1F);
        insert(key, flag);
        m_minLength = std::min(m_minLength, key.length);
        m_maxLength = std::max(m_maxLength, key.length);
    };
    for (const QLatin1StringView word : highlightKeywords)
        add(word, IsKeyword);
    for (const QLatin1StringView word : highlightTypes)
        add(word, IsType);
}

void SQLHighlightWords::insert(const Key &key, Flag flag)
{
    for (quint32 slot = hash(key);; slot = (slot + 1) & (slotCount - 1)) {
        Entry &entry = m_entries[slot];
        if (entry.flags == 0) {
            entry = Entry{key.low, key.high, quint8(flag)};
            return;
        }
        if (entry.low == key.low && entry.high == key.high) {
            entry.flags |= flag;
            return;
        }
    }
}
