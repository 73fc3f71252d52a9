#include "aienums.h"

#include "localizedtext.h"

using namespace Qt::StringLiterals;

namespace AIEnums {

QString rawValue(AIAssistantMode mode)
{
    switch (mode) {
    case AIAssistantMode::Explain:
        return u"explain"_s;
    case AIAssistantMode::Optimize:
        return u"optimize"_s;
    case AIAssistantMode::FixError:
        return u"fixError"_s;
    case AIAssistantMode::FreeChat:
        break;
    }
    return u"freeChat"_s;
}

std::optional<AIAssistantMode> modeFromRawValue(QStringView raw)
{
    for (const AIAssistantMode mode : allModes) {
        if (raw == rawValue(mode))
            return mode;
    }
    return std::nullopt;
}

QString modeIcon(AIAssistantMode mode)
{
    switch (mode) {
    case AIAssistantMode::Explain:
        return u"text.magnifyingglass"_s;
    case AIAssistantMode::Optimize:
        return u"wand.and.stars"_s;
    case AIAssistantMode::FixError:
        return u"wrench.and.screwdriver"_s;
    case AIAssistantMode::FreeChat:
        break;
    }
    return u"bubble.left.and.bubble.right"_s;
}

QString modeDisplayName(AIAssistantMode mode, AppLanguage language)
{
    switch (mode) {
    case AIAssistantMode::Explain:
        return pickText(language, u"Explain SQL", u"解释 SQL", u"SQL を説明");
    case AIAssistantMode::Optimize:
        return pickText(language, u"Optimize", u"优化建议", u"最適化");
    case AIAssistantMode::FixError:
        return pickText(language, u"Fix Error", u"修复错误", u"エラー修復");
    case AIAssistantMode::FreeChat:
        break;
    }
    return pickText(language, u"Free Chat", u"自由对话", u"フリーチャット");
}

QString rawValue(AIMessageRole role)
{
    switch (role) {
    case AIMessageRole::User:
        return u"user"_s;
    case AIMessageRole::Assistant:
        return u"assistant"_s;
    case AIMessageRole::System:
        break;
    }
    return u"system"_s;
}

std::optional<AIMessageRole> roleFromRawValue(QStringView raw)
{
    for (const AIMessageRole role : {AIMessageRole::User, AIMessageRole::Assistant, AIMessageRole::System}) {
        if (raw == rawValue(role))
            return role;
    }
    return std::nullopt;
}

} // namespace AIEnums
