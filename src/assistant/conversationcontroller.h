#pragma once

#include "aienums.h"
#include "conversationmodel.h"
#include "markdownblockmodel.h"

#include <QObject>
#include <QPointer>
#include <QTimer>
#include <QUuid>
#include <QVariantList>

class AIChatCall;
class AIService;
class AIServiceError;
class ConversationStore;
class DataStore;
class LanguageManager;

// The assistant panel's state and rules: one conversation per document, sending, streaming,
// stopping, the interruption note, quick actions (explain, optimise, fix an error), clearing,
// and what replies taught the knowledge store.
//
// It follows the store's selected document: on a switch the conversation of the old document is
// flushed (a reply under way is stopped and kept with the interruption note) and saved, and the
// new one is read. Every change of the messages is saved at once (ConversationStore writes off
// this thread). Destroying the controller (the panel closing) flushes the same way.
//
// While a reply streams, `streamingContent` holds the raw text so far and `streamingBlocks` its
// blocks, brought up to date at most once a frame however fast the pieces come.
class ConversationController : public QObject
{
    Q_OBJECT
    Q_PROPERTY(ConversationModel *messages READ messages CONSTANT)
    Q_PROPERTY(MarkdownBlockModel *streamingBlocks READ streamingBlocks CONSTANT)
    Q_PROPERTY(bool hasDocument READ hasDocument NOTIFY documentChanged)
    Q_PROPERTY(QString currentSQL READ currentSQL WRITE setCurrentSQL NOTIFY currentSQLChanged)
    Q_PROPERTY(QString inputText READ inputText WRITE setInputText NOTIFY inputTextChanged)
    Q_PROPERTY(QString errorMessage READ errorMessage NOTIFY errorMessageChanged)
    Q_PROPERTY(AIEnums::AIAssistantMode selectedMode READ selectedMode NOTIFY selectedModeChanged)
    Q_PROPERTY(bool isStreaming READ isStreaming NOTIFY isStreamingChanged)
    Q_PROPERTY(QString streamingContent READ streamingContent NOTIFY streamingContentChanged)
    Q_PROPERTY(bool isLoading READ isLoading NOTIFY isLoadingChanged)
    Q_PROPERTY(bool isConfigured READ isConfigured NOTIFY isConfiguredChanged)
    Q_PROPERTY(bool showErrorInput READ showErrorInput NOTIFY showErrorInputChanged)
    Q_PROPERTY(QString errorInputText READ errorInputText WRITE setErrorInputText NOTIFY errorInputTextChanged)
    Q_PROPERTY(bool isEmptyState READ isEmptyState NOTIFY isEmptyStateChanged)
    Q_PROPERTY(bool canRestoreCleared READ canRestoreCleared NOTIFY canRestoreClearedChanged)
    // What the next request would carry, element by element: [{role, content}], the system prompt
    // with the knowledge block first, the trimmed history, then the wrapped message. Worked out
    // when read.
    Q_PROPERTY(QVariantList contextPreview READ contextPreview NOTIFY contextPreviewChanged)

public:
    // Follows the application's shared store, service and conversations.
    explicit ConversationController(QObject *parent = nullptr);
    ConversationController(DataStore *store, AIService *service, ConversationStore *conversations,
                           LanguageManager *language, QObject *parent = nullptr);
    ~ConversationController() override;

    [[nodiscard]] ConversationModel *messages() const { return m_messages; }
    [[nodiscard]] MarkdownBlockModel *streamingBlocks() const { return m_streamingBlocks; }
    [[nodiscard]] bool hasDocument() const { return !m_documentId.isNull(); }
    [[nodiscard]] QUuid documentId() const { return m_documentId; }
    [[nodiscard]] QString currentSQL() const { return m_currentSQL; }
    void setCurrentSQL(const QString &sql);
    [[nodiscard]] QString inputText() const { return m_inputText; }
    void setInputText(const QString &text);
    [[nodiscard]] QString errorMessage() const { return m_errorMessage; }
    [[nodiscard]] AIAssistantMode selectedMode() const { return m_selectedMode; }
    [[nodiscard]] bool isStreaming() const { return m_isStreaming; }
    [[nodiscard]] QString streamingContent() const { return m_streamingContent; }
    [[nodiscard]] bool isLoading() const;
    [[nodiscard]] bool isConfigured() const;
    [[nodiscard]] bool showErrorInput() const { return m_showErrorInput; }
    [[nodiscard]] QString errorInputText() const { return m_errorInputText; }
    void setErrorInputText(const QString &text);
    // Nothing typed, nothing said, nothing under way: the panel welcomes the user.
    [[nodiscard]] bool isEmptyState() const;
    // A clear can still be taken back (until the conversation changes again).
    [[nodiscard]] bool canRestoreCleared() const { return !m_clearedMessages.isEmpty(); }

    // Sends the typed text, untrimmed; nothing when the field is empty.
    Q_INVOKABLE void sendInput();
    // Return in the field: sends unless the field is empty or a reply is under way.
    Q_INVOKABLE void submitInput();
    // Explain and Optimise send their request about the current SQL (nothing without SQL); Fix
    // Error opens the error panel; Free Chat only chooses the mode of typed text.
    Q_INVOKABLE void handleQuickAction(AIEnums::AIAssistantMode mode);
    // The error panel's action: asks to fix the SQL for the pasted error.
    Q_INVOKABLE void submitErrorInput();
    Q_INVOKABLE void closeErrorInput();
    // The stop button: keeps what arrived, with the interruption note.
    Q_INVOKABLE void stopStreaming();
    // Empties the conversation; `restoreCleared` takes that back while nothing else happened.
    Q_INVOKABLE void clearConversation();
    Q_INVOKABLE void restoreCleared();
    // The alert was closed.
    Q_INVOKABLE void dismissError();
    // Takes back what a reply taught: a new item is deleted, a replaced one gets its old text.
    Q_INVOKABLE void undoLearnedFact(int row, const QString &itemId);
    // Stops a reply under way, keeping it with the note in the conversation it belongs to.
    Q_INVOKABLE void flush();
    [[nodiscard]] QVariantList contextPreview() const;

    // The texts the panel sends and keeps, in the language in force.
    [[nodiscard]] static QString quickActionText(AIAssistantMode mode, AppLanguage language);
    [[nodiscard]] static QString interruptionNote(AppLanguage language);
    [[nodiscard]] static QString unconfiguredText(AppLanguage language);
    [[nodiscard]] static QString fixErrorRequest(const QString &error, AppLanguage language);

Q_SIGNALS:
    void documentChanged();
    void currentSQLChanged();
    void inputTextChanged();
    void errorMessageChanged();
    void selectedModeChanged();
    void isStreamingChanged();
    void streamingContentChanged();
    void isLoadingChanged();
    void isConfiguredChanged();
    void showErrorInputChanged();
    void errorInputTextChanged();
    void isEmptyStateChanged();
    void canRestoreClearedChanged();
    void contextPreviewChanged();
    // Another document's conversation is on show: the list starts at its bottom.
    void conversationSwitched();

private:
    void followSelection();
    void loadMessages(const QUuid &documentId);
    void saveMessages();
    void appendMessage(const ConversationMessage &message);
    void appendUserMessage(const QString &text);
    void startRequest(const QString &text, AIAssistantMode mode);
    void finishStreaming(const QString &text, const QList<KnowledgeChange> &learned);
    void failStreaming(const AIServiceError &error);
    void interruptStreaming();
    void cancelCall();
    void setStreaming(bool streaming);
    void setStreamingContent(const QString &text);
    void setErrorMessage(const QString &message);
    void setSelectedMode(AIAssistantMode mode);
    void setShowErrorInput(bool show);
    void forgetCleared();
    void updateEmptyState();
    [[nodiscard]] AppLanguage language() const;

    DataStore *m_store = nullptr;
    QPointer<AIService> m_service;
    ConversationStore *m_conversations = nullptr;
    LanguageManager *m_language = nullptr;
    ConversationModel *m_messages = nullptr;
    MarkdownBlockModel *m_streamingBlocks = nullptr;
    QUuid m_documentId;
    QString m_currentSQL;
    QString m_inputText;
    QString m_errorMessage;
    AIAssistantMode m_selectedMode = AIAssistantMode::FreeChat;
    bool m_isStreaming = false;
    QString m_streamingContent;
    QPointer<AIChatCall> m_call;
    bool m_showErrorInput = false;
    QString m_errorInputText;
    bool m_isEmptyState = true;
    QList<ConversationMessage> m_clearedMessages;
    // Brings the streamed blocks up to date at most once a frame.
    QTimer m_blocksTimer;
};
