#pragma once

#include <QObject>
#include <QString>

#include <array>
#include <optional>

// The interface languages. `System` defers to the operating system's first preferred
// language; the others are the three languages every text of the interface is written in.
namespace AppLanguages {
Q_NAMESPACE

enum class AppLanguage {
    System,
    ZhHans,
    En,
    Ja,
};
Q_ENUM_NS(AppLanguage)

inline constexpr std::array<AppLanguage, 4> all{AppLanguage::System, AppLanguage::ZhHans, AppLanguage::En,
                                                AppLanguage::Ja};

// The value stored under the "app_language" preference key.
[[nodiscard]] QString rawValue(AppLanguage language);
[[nodiscard]] std::optional<AppLanguage> fromRawValue(QStringView raw);

// BCP 47 identifier used for date formatting; empty for `System`.
[[nodiscard]] QString localeIdentifier(AppLanguage language);

// Name shown in the language picker. The three real languages always show their own name;
// only `System` is translated, into `resolved`.
[[nodiscard]] QString displayName(AppLanguage language, AppLanguage resolved);

// Which real language a system language tag such as "zh-Hant-TW" or "de-DE" maps to.
[[nodiscard]] AppLanguage resolveSystemLanguage(QStringView firstPreferredLanguage);

} // namespace AppLanguages

using AppLanguage = AppLanguages::AppLanguage;
