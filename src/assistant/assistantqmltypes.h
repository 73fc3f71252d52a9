#pragma once

#include "aienums.h"
#include "inlinemarkdown.h"
#include "conversationcontroller.h"
#include "conversationmodel.h"
#include "markdownblockmodel.h"

#include <QDesktopServices>
#include <QObject>
#include <QQmlEngine>
#include <QUrl>

// The assistant's windowless types, as the views see them.

struct ConversationControllerForeign
{
    Q_GADGET
    QML_FOREIGN(ConversationController)
    QML_NAMED_ELEMENT(ConversationController)
};

struct ConversationModelForeign
{
    Q_GADGET
    QML_FOREIGN(ConversationModel)
    QML_NAMED_ELEMENT(ConversationModel)
    QML_UNCREATABLE("made by ConversationController")
};

struct MarkdownBlockModelForeign
{
    Q_GADGET
    QML_FOREIGN(MarkdownBlockModel)
    QML_NAMED_ELEMENT(MarkdownBlockModel)
};

// The name and icon of an assistant mode in a given language; the views pass the language in
// force, so that their bindings follow it.
class AIModes : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    Q_INVOKABLE [[nodiscard]] static QString displayName(AIEnums::AIAssistantMode mode,
                                                         AppLanguages::AppLanguage language)
    {
        return AIEnums::modeDisplayName(mode, language);
    }
    Q_INVOKABLE [[nodiscard]] static QString iconName(AIEnums::AIAssistantMode mode)
    {
        return AIEnums::modeIcon(mode);
    }
};

// Opens a link of a reply in the desktop's browser or mail program, if it is one a reply may
// show as a link at all (http, https, mailto); the application itself fetches nothing.
class ReplyLinks : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    QML_SINGLETON

public:
    Q_INVOKABLE static bool open(const QString &url)
    {
        return isAllowedLinkTarget(url) && QDesktopServices::openUrl(QUrl(url, QUrl::StrictMode));
    }
};
