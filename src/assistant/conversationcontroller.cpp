#include "conversationcontroller.h"

#include "aichatcall.h"
#include "aiservice.h"
#include "conversationstore.h"
#include "datastore.h"
#include "languagemanager.h"
#include "localizedtext.h"

#include <QVariantMap>

using namespace Qt::StringLiterals;

namespace {

// About one frame: pieces that come faster are drawn together.
constexpr int blocksIntervalMs = 16;

} // namespace

ConversationController::ConversationController(QObject *parent)
    : ConversationController(DataStore::shared(), AIService::shared(), ConversationStore::shared(),
                             LanguageManager::shared(), parent)
{}

ConversationController::ConversationController(DataStore *store, AIService *service,
                                               ConversationStore *conversations, LanguageManager *language,
                                               QObject *parent)
    : QObject(parent)
    , m_store(store)
    , m_service(service)
    , m_conversations(conversations)
    , m_language(language)
    , m_messages(new ConversationModel(store, this))
    , m_streamingBlocks(new MarkdownBlockModel(this))
{
    m_blocksTimer.setSingleShot(true);
    m_blocksTimer.setInterval(blocksIntervalMs);
    connect(&m_blocksTimer, &QTimer::timeout, this,
            [this] { m_streamingBlocks->setContent(m_streamingContent); });
    connect(m_messages, &ConversationModel::countChanged, this, &ConversationController::updateEmptyState);
    connect(store, &DataStore::selectedDocumentIdChanged, this, &ConversationController::followSelection);
    connect(service, &AIService::isLoadingChanged, this, &ConversationController::isLoadingChanged);
    connect(service, &AIService::isConfiguredChanged, this, &ConversationController::isConfiguredChanged);
    for (const auto changed : {&ConversationController::inputTextChanged, &ConversationController::currentSQLChanged,
                               &ConversationController::selectedModeChanged})
        connect(this, changed, this, &ConversationController::contextPreviewChanged);
    connect(m_messages, &ConversationModel::modelReset, this, &ConversationController::contextPreviewChanged);
    connect(m_messages, &ConversationModel::rowsInserted, this, &ConversationController::contextPreviewChanged);
    connect(store, &DataStore::knowledgeItemsChanged, this, &ConversationController::contextPreviewChanged);
    connect(language, &LanguageManager::currentLanguageChanged, this,
            &ConversationController::contextPreviewChanged);
    m_documentId = store->selectedDocumentId();
    loadMessages(m_documentId);
}

ConversationController::~ConversationController()
{
    flush();
}

AppLanguage ConversationController::language() const
{
    return m_language->resolvedLanguage();
}

QString ConversationController::quickActionText(AIAssistantMode mode, AppLanguage language)
{
    if (mode == AIAssistantMode::Optimize)
        return pickText(language, u"Please optimize this SQL for better performance and readability",
                        u"请优化这段 SQL，提升性能和可读性",
                        u"この SQL をパフォーマンスと可読性の向上のために最適化してください");
    return pickText(language, u"Please explain the meaning and purpose of this SQL", u"请解读这段 SQL 的含义和作用",
                    u"この SQL の意味と目的を説明してください");
}

QString ConversationController::interruptionNote(AppLanguage language)
{
    return pickText(language, u"[Output interrupted]", u"[输出已中断]", u"[出力が中断されました]");
}

QString ConversationController::unconfiguredText(AppLanguage language)
{
    return pickText(language, u"Please configure API in settings first", u"请先在设置中配置 API",
                    u"設定で API を設定してください");
}

QString ConversationController::fixErrorRequest(const QString &error, AppLanguage language)
{
    const QString pattern = pickText(
        language, u"Encountered an error when executing this SQL:\n\n%@\n\nPlease help analyze the cause and fix it",
        u"执行这段 SQL 时遇到了错误：\n\n%@\n\n请帮我分析原因并修复",
        u"この SQL を実行時にエラーが発生しました：\n\n%@\n\n原因を分析して修正してください");
    // Not QString::arg: the pasted text may hold "%1" of its own.
    const qsizetype at = pattern.indexOf(u"%@"_s);
    return pattern.first(at) + error + pattern.sliced(at + 2);
}

bool ConversationController::isLoading() const
{
    return m_service && m_service->isLoading();
}

bool ConversationController::isConfigured() const
{
    return m_service && m_service->isConfigured();
}

void ConversationController::setCurrentSQL(const QString &sql)
{
    if (sql == m_currentSQL)
        return;
    m_currentSQL = sql;
    Q_EMIT currentSQLChanged();
}

void ConversationController::setInputText(const QString &text)
{
    if (text == m_inputText)
        return;
    m_inputText = text;
    Q_EMIT inputTextChanged();
    updateEmptyState();
}

void ConversationController::setErrorInputText(const QString &text)
{
    if (text == m_errorInputText)
        return;
    m_errorInputText = text;
    Q_EMIT errorInputTextChanged();
}

void ConversationController::setErrorMessage(const QString &message)
{
    if (message == m_errorMessage)
        return;
    m_errorMessage = message;
    Q_EMIT errorMessageChanged();
}

void ConversationController::setSelectedMode(AIAssistantMode mode)
{
    if (mode == m_selectedMode)
        return;
    m_selectedMode = mode;
    Q_EMIT selectedModeChanged();
}

void ConversationController::setShowErrorInput(bool show)
{
    if (show == m_showErrorInput)
        return;
    m_showErrorInput = show;
    Q_EMIT showErrorInputChanged();
    updateEmptyState();
}

void ConversationController::setStreaming(bool streaming)
{
    if (streaming == m_isStreaming)
        return;
    m_isStreaming = streaming;
    Q_EMIT isStreamingChanged();
    updateEmptyState();
}

void ConversationController::setStreamingContent(const QString &text)
{
    if (text == m_streamingContent)
        return;
    m_streamingContent = text;
    Q_EMIT streamingContentChanged();
    if (text.isEmpty()) {
        m_blocksTimer.stop();
        m_streamingBlocks->clear();
    } else if (!m_blocksTimer.isActive()) {
        m_blocksTimer.start();
    }
}

bool ConversationController::isEmptyState() const
{
    return m_isEmptyState;
}

void ConversationController::updateEmptyState()
{
    const bool empty =
        m_inputText.isEmpty() && m_messages->rowCount() == 0 && !m_isStreaming && !m_showErrorInput;
    if (empty == m_isEmptyState)
        return;
    m_isEmptyState = empty;
    Q_EMIT isEmptyStateChanged();
}

void ConversationController::followSelection()
{
    const QUuid selected = m_store->selectedDocumentId();
    if (selected == m_documentId)
        return;
    flush();
    m_documentId = selected;
    Q_EMIT documentChanged();
    loadMessages(selected);
    Q_EMIT conversationSwitched();
}

void ConversationController::loadMessages(const QUuid &documentId)
{
    forgetCleared();
    m_messages->setMessages(m_conversations->load(documentId));
    setStreamingContent({});
    setStreaming(false);
}

void ConversationController::saveMessages()
{
    m_conversations->save(m_documentId, m_messages->messages());
}

void ConversationController::appendMessage(const ConversationMessage &message)
{
    forgetCleared();
    m_messages->append(message);
    saveMessages();
}

void ConversationController::appendUserMessage(const QString &text)
{
    appendMessage(ConversationMessage::fromMessage(AIMessage::create(AIMessageRole::User, text)));
}

void ConversationController::sendInput()
{
    if (m_inputText.isEmpty())
        return;
    const QString text = m_inputText;
    setInputText({});
    appendUserMessage(text);
    startRequest(text, m_selectedMode);
}

void ConversationController::submitInput()
{
    if (!m_inputText.isEmpty() && !m_isStreaming)
        sendInput();
}

void ConversationController::handleQuickAction(AIAssistantMode mode)
{
    setSelectedMode(mode);
    switch (mode) {
    case AIAssistantMode::FixError:
        setShowErrorInput(true);
        return;
    case AIAssistantMode::FreeChat:
        return;
    case AIAssistantMode::Explain:
    case AIAssistantMode::Optimize:
        break;
    }
    if (m_currentSQL.isEmpty() || m_isStreaming)
        return;
    const QString text = quickActionText(mode, language());
    appendUserMessage(text);
    startRequest(text, mode);
}

void ConversationController::submitErrorInput()
{
    if (m_errorInputText.isEmpty() || m_currentSQL.isEmpty() || m_isStreaming)
        return;
    const QString text = fixErrorRequest(m_errorInputText, language());
    appendUserMessage(text);
    startRequest(text, AIAssistantMode::FixError);
    closeErrorInput();
}

void ConversationController::closeErrorInput()
{
    setShowErrorInput(false);
    setErrorInputText({});
}

void ConversationController::startRequest(const QString &text, AIAssistantMode mode)
{
    if (!isConfigured()) {
        setErrorMessage(unconfiguredText(language()));
        return;
    }
    cancelCall();
    setStreaming(true);
    setStreamingContent({});

    // The history ends with the record just appended.
    AIChatCall *call =
        m_service->sendMessageStreaming(text, m_currentSQL, mode, m_messages->plainMessages());
    m_call = call;
    connect(call, &AIChatCall::chunkReceived, this, [this](const QString &whole) {
        setStreamingContent(whole);
    });
    connect(call, &AIChatCall::finished, this, [this, call](const QString &result) {
        finishStreaming(result, call->recordedKnowledge());
    });
    connect(call, &AIChatCall::failed, this, &ConversationController::failStreaming);
}

// Stops listening to the running call and stops it; what it still reports goes nowhere.
void ConversationController::cancelCall()
{
    if (AIChatCall *call = m_call.data()) {
        m_call = nullptr;
        disconnect(call, nullptr, this, nullptr);
        call->cancel();
    }
}

void ConversationController::finishStreaming(const QString &text, const QList<KnowledgeChange> &learned)
{
    m_call = nullptr;
    setStreaming(false);
    setStreamingContent({});
    ConversationMessage reply = ConversationMessage::fromMessage(AIMessage::create(AIMessageRole::Assistant, text));
    for (const KnowledgeChange &change : learned)
        reply.learned.append({change, false});
    appendMessage(reply);
}

void ConversationController::failStreaming(const AIServiceError &error)
{
    m_call = nullptr;
    // A reply cut off on its way is kept, as a stopped one is; no knowledge came of it.
    interruptStreaming();
    if (!error.isCancellation())
        setErrorMessage(error.description(language()));
}

void ConversationController::interruptStreaming()
{
    const QString partial = m_streamingContent;
    setStreaming(false);
    setStreamingContent({});
    if (partial.isEmpty())
        return;
    appendMessage(ConversationMessage::fromMessage(AIMessage::create(
        AIMessageRole::Assistant, partial + u"\n\n*"_s + interruptionNote(language()) + u'*')));
}

void ConversationController::stopStreaming()
{
    cancelCall();
    interruptStreaming();
}

void ConversationController::flush()
{
    // Every other change was saved as it was made; an unchanged conversation is not written again.
    if (m_isStreaming || !m_streamingContent.isEmpty()) {
        cancelCall();
        interruptStreaming();
    }
}

void ConversationController::clearConversation()
{
    if (m_isStreaming)
        return;
    const QList<ConversationMessage> cleared = m_messages->messages();
    m_messages->setMessages({});
    setStreamingContent({});
    saveMessages();
    if (cleared.isEmpty())
        return;
    m_clearedMessages = cleared;
    Q_EMIT canRestoreClearedChanged();
}

void ConversationController::restoreCleared()
{
    if (m_clearedMessages.isEmpty() || m_messages->rowCount() > 0)
        return;
    m_messages->setMessages(std::exchange(m_clearedMessages, {}));
    Q_EMIT canRestoreClearedChanged();
    saveMessages();
}

void ConversationController::forgetCleared()
{
    if (m_clearedMessages.isEmpty())
        return;
    m_clearedMessages.clear();
    Q_EMIT canRestoreClearedChanged();
}

void ConversationController::dismissError()
{
    setErrorMessage({});
}

void ConversationController::undoLearnedFact(int row, const QString &itemId)
{
    const std::optional<QUuid> id = QUuid::fromString(itemId);
    if (row < 0 || row >= m_messages->rowCount() || !id || id->isNull())
        return;
    for (const LearnedFact &fact : m_messages->messages().at(row).learned) {
        if (fact.change.itemId != *id || !m_messages->canUndo(fact))
            continue;
        if (fact.change.isNew)
            m_store->deleteKnowledgeItem(*id);
        else
            m_store->updateKnowledgeItem(*id, std::nullopt, fact.change.previousContent);
        m_messages->markUndone(row, *id);
        saveMessages();
        return;
    }
}

QVariantList ConversationController::contextPreview() const
{
    if (!m_service)
        return {};
    // As the next send would: the typed text is appended to the history before the request.
    QList<AIMessage> history = m_messages->plainMessages();
    history.append(AIMessage::create(AIMessageRole::User, m_inputText));
    QVariantList elements;
    for (const OpenAIChatMessage &message :
         m_service->assembleMessages(m_inputText, m_currentSQL, m_selectedMode, history))
        elements.append(QVariantMap{{u"role"_s, message.role}, {u"content"_s, message.content}});
    return elements;
}
