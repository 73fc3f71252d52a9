#include "apikeystore.h"

#include <qt6keychain/keychain.h>

namespace {

ApiKeyStore::Result resultOf(const QKeychain::Job &job)
{
    switch (job.error()) {
    case QKeychain::NoError:
        return {ApiKeyStore::Outcome::Done, {}, {}};
    case QKeychain::EntryNotFound:
        return {ApiKeyStore::Outcome::NotFound, {}, {}};
    case QKeychain::CouldNotDeleteEntry:
    case QKeychain::AccessDeniedByUser:
    case QKeychain::AccessDenied:
    case QKeychain::NoBackendAvailable:
    case QKeychain::NotImplemented:
    case QKeychain::OtherError:
        break;
    }
    return {ApiKeyStore::Outcome::Unavailable, {}, job.errorString()};
}

// Runs `job` and hands its result to `done`; the job deletes itself when it has finished.
void run(QKeychain::Job *job, const QString &account, ApiKeyStore::Callback done)
{
    // Never the settings file: without a secret service the key stays in memory only.
    job->setInsecureFallback(false);
    job->setAutoDelete(true);
    job->setKey(account);
    QObject::connect(job, &QKeychain::Job::finished, job, [done = std::move(done)](QKeychain::Job *finished) {
        ApiKeyStore::Result result = resultOf(*finished);
        auto *read = qobject_cast<QKeychain::ReadPasswordJob *>(finished);
        if (read && result.outcome == ApiKeyStore::Outcome::Done)
            result.key = read->textData();
        done(result);
    });
    job->start();
}

} // namespace

ApiKeyStore::ApiKeyStore(QString service, QObject *parent)
    : QObject(parent)
    , m_service(std::move(service))
{}

void ApiKeyStore::read(const QString &account, Callback done)
{
    run(new QKeychain::ReadPasswordJob(m_service, this), account, std::move(done));
}

void ApiKeyStore::write(const QString &account, const QString &key, Callback done)
{
    auto *job = new QKeychain::WritePasswordJob(m_service, this);
    job->setTextData(key);
    run(job, account, std::move(done));
}

void ApiKeyStore::remove(const QString &account, Callback done)
{
    run(new QKeychain::DeletePasswordJob(m_service, this), account,
        [done = std::move(done)](const Result &result) {
            done(result.outcome == Outcome::NotFound ? Result{} : result);
        });
}
