#pragma once

#include "aiconnectionsettings.h"
#include "aimodellistrequest.h"

#include <QObject>
#include <QPointer>
#include <QQmlEngine>
#include <QSortFilterProxyModel>
#include <QStringListModel>

class AIService;
class LanguageManager;

// What the settings window's AI assistant section works with: the service's state, the user's
// connection settings, the connection test and its one-line result, and the own server's models
// filtered by what is typed. The test result also carries what went wrong with an address or a
// model list, so that every outcome shows in the same row. The state lives as long as the view.
class AIConnectionController : public QObject
{
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(AIConnectionSettings *settings READ settings CONSTANT)
    Q_PROPERTY(bool hasProxy READ hasProxy CONSTANT)
    Q_PROPERTY(bool isConfigured READ isConfigured NOTIFY isConfiguredChanged)
    Q_PROPERTY(bool usesOwnServer READ usesOwnServer NOTIFY usesOwnServerChanged)
    Q_PROPERTY(bool isTestingConnection READ isTestingConnection NOTIFY isTestingConnectionChanged)
    Q_PROPERTY(bool hasTestResult READ hasTestResult NOTIFY testResultChanged)
    Q_PROPERTY(bool testSucceeded READ testSucceeded NOTIFY testResultChanged)
    Q_PROPERTY(QString testMessage READ testMessage NOTIFY testResultChanged)
    Q_PROPERTY(bool isLoadingModels READ isLoadingModels NOTIFY isLoadingModelsChanged)
    // The server's models that contain `modelFilter`, case aside; role "display".
    Q_PROPERTY(QAbstractItemModel *models READ models CONSTANT)
    Q_PROPERTY(int modelCount READ modelCount NOTIFY modelsChanged)
    Q_PROPERTY(QString modelFilter READ modelFilter WRITE setModelFilter NOTIFY modelFilterChanged)

public:
    // On the application's service and language manager.
    explicit AIConnectionController(QObject *parent = nullptr);
    AIConnectionController(AIService *service, LanguageManager *language, QObject *parent = nullptr);
    ~AIConnectionController() override;

    [[nodiscard]] AIConnectionSettings *settings() const;
    [[nodiscard]] bool hasProxy() const;
    [[nodiscard]] bool isConfigured() const;
    [[nodiscard]] bool usesOwnServer() const;

    [[nodiscard]] bool isTestingConnection() const { return m_isTestingConnection; }
    [[nodiscard]] bool hasTestResult() const { return m_hasTestResult; }
    [[nodiscard]] bool testSucceeded() const { return m_testSucceeded; }
    [[nodiscard]] QString testMessage() const { return m_testMessage; }

    [[nodiscard]] bool isLoadingModels() const { return m_modelRequest != nullptr; }
    [[nodiscard]] QAbstractItemModel *models() { return &m_filteredModels; }
    [[nodiscard]] int modelCount() const { return int(m_modelList.rowCount()); }
    [[nodiscard]] QString modelFilter() const { return m_modelFilter; }
    void setModelFilter(const QString &filter);

    // The result is cleared at once; the new one comes when the test ends.
    Q_INVOKABLE void testConnection();
    // Stores the typed address if it is one and then reads its models; otherwise the result row
    // says what is wrong and the stored address stays. True when stored.
    Q_INVOKABLE bool commitServerBaseURL(const QString &text);
    // Plain http to another machine, for the warning under the field as the user types.
    Q_INVOKABLE [[nodiscard]] bool isUnencryptedRemote(const QString &text) const;
    // Keeps the key (an empty one removes it) and reads the models again with it.
    Q_INVOKABLE void setApiKey(const QString &key);
    Q_INVOKABLE void loadModels();

Q_SIGNALS:
    void isConfiguredChanged();
    void usesOwnServerChanged();
    void isTestingConnectionChanged();
    void testResultChanged();
    void isLoadingModelsChanged();
    void modelsChanged();
    void modelFilterChanged();

private:
    void setTestResult(bool hasResult, bool succeeded, const QString &message);
    void setTesting(bool testing);
    void endModelRequest();

    QPointer<AIService> m_service;
    LanguageManager *m_language = nullptr;
    bool m_isTestingConnection = false;
    bool m_hasTestResult = false;
    bool m_testSucceeded = false;
    QString m_testMessage;
    QPointer<AIModelListRequest> m_modelRequest;
    QStringListModel m_modelList;
    QSortFilterProxyModel m_filteredModels;
    QString m_modelFilter;
};
