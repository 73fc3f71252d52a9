#pragma once

#include "applanguage.h"

#include <QObject>

#include <array>
#include <optional>

namespace AIEnums {
Q_NAMESPACE

// What the assistant is asked to do. The order is the order of the mode picker and the integer
// tag a conversation stores.
enum class AIAssistantMode {
    Explain,
    Optimize,
    FixError,
    FreeChat,
};
Q_ENUM_NS(AIAssistantMode)

// Who wrote a line of a conversation. The panel writes only `User` and `Assistant`; `System`
// exists for the wire and for stored conversations that hold it.
enum class AIMessageRole {
    User,
    Assistant,
    System,
};
Q_ENUM_NS(AIMessageRole)

inline constexpr std::array<AIAssistantMode, 4> allModes{AIAssistantMode::Explain, AIAssistantMode::Optimize,
                                                         AIAssistantMode::FixError,
                                                         AIAssistantMode::FreeChat};

// "explain", "optimize", "fixError", "freeChat".
[[nodiscard]] QString rawValue(AIAssistantMode mode);
[[nodiscard]] std::optional<AIAssistantMode> modeFromRawValue(QStringView raw);
// Symbol name of the mode's icon ("text.magnifyingglass", ...); the views map it to an image.
[[nodiscard]] QString modeIcon(AIAssistantMode mode);
[[nodiscard]] QString modeDisplayName(AIAssistantMode mode, AppLanguage language);

// "user", "assistant", "system": the stored and the wire form alike.
[[nodiscard]] QString rawValue(AIMessageRole role);
[[nodiscard]] std::optional<AIMessageRole> roleFromRawValue(QStringView raw);

} // namespace AIEnums

using AIEnums::AIAssistantMode;
using AIEnums::AIMessageRole;
