#pragma once

#include <QObject>
#include <QString>

#include <functional>

// API keys in the desktop's secret service (the Secret Service of GNOME Keyring or KWallet,
// through QtKeychain), one per account name. Never in a file of ours and never in a log.
//
// Every operation is asynchronous and reports once to its callback, on the thread of the store.
// Where no secret service answers, the operation reports `Unavailable` with the reason; nothing
// is then written anywhere else.
class ApiKeyStore : public QObject
{
    Q_OBJECT

public:
    enum class Outcome {
        Done,
        // Reading: there is no key under this account.
        NotFound,
        Unavailable,
    };
    struct Result
    {
        Outcome outcome = Outcome::Done;
        // The key read.
        QString key;
        // Why the secret service could not be used, in its own words.
        QString problem;
    };
    using Callback = std::function<void(const Result &)>;

    // `service` names the application's entries in the secret service.
    explicit ApiKeyStore(QString service, QObject *parent = nullptr);

    void read(const QString &account, Callback done);
    // Replaces any key stored under `account`.
    void write(const QString &account, const QString &key, Callback done);
    // Removing a key that is not there is done, too.
    void remove(const QString &account, Callback done);

private:
    QString m_service;
};
