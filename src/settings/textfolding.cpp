#include "textfolding.h"

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>

QString foldedForSearch(QStringView text)
{
    if (text.isEmpty())
        return {};
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2 *folding = icu::Normalizer2::getNFKCCasefoldInstance(status);
    if (U_FAILURE(status))
        return text.toString().toCaseFolded();
    const icu::UnicodeString source(false, reinterpret_cast<const UChar *>(text.utf16()), int32_t(text.size()));
    const icu::UnicodeString folded = folding->normalize(source, status);
    if (U_FAILURE(status))
        return text.toString().toCaseFolded();
    return QString(reinterpret_cast<const QChar *>(folded.getBuffer()), folded.length());
}
