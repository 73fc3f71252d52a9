#pragma once

#include <QString>

#include <cstddef>
#include <cstdint>
#include <cstring>

// The fuzz input as text. The first byte chooses: bit 0 reads the rest as raw UTF-16, so that
// lone surrogates reach the code, else as UTF-8; bits 1 to 3 all set ask for an amplified run
// as well. Amplified runs reach higher hit counts, so the fuzzer soon prefers them.
inline QString fuzzText(const uint8_t *data, size_t size)
{
    if (size == 0)
        return {};
    if (data[0] & 1) {
        // Copied, not cast: the bytes need not be aligned for char16_t.
        QString text(qsizetype((size - 1) / 2), Qt::Uninitialized);
        memcpy(text.data(), data + 1, size_t(text.size()) * sizeof(char16_t));
        return text;
    }
    return QString::fromUtf8(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
}

// The text repeated up to 16 Ki characters: a step that is not linear in its input turns a few
// bytes into a timeout, or into an out-of-memory under the sanitizers' quarantine. Kept short
// because most runs end up amplified; markdown_scaling replays a corpus at 1 Mi characters.
inline QString amplified(const uint8_t *data, size_t size, const QString &text)
{
    constexpr qsizetype target = 16 * 1024;
    if (size == 0 || (data[0] & 14) != 14 || text.isEmpty() || text.size() >= target)
        return {};
    return text.repeated(target / text.size());
}
