#include "documenttransfer.h"

#include "datastore.h"
#include "documentfile.h"

#include <QFutureWatcher>
#include <QtConcurrent/QtConcurrentRun>

using namespace Qt::StringLiterals;

DocumentTransfer::DocumentTransfer(QObject *parent)
    : DocumentTransfer(DataStore::shared(), parent)
{}

DocumentTransfer::DocumentTransfer(DataStore *store, QObject *parent)
    : QObject(parent)
    , m_store(store)
{
    connect(store, &DataStore::selectedDocumentIdChanged, this, &DocumentTransfer::suggestedFileNameChanged);
    connect(store, &DataStore::documentsChanged, this, &DocumentTransfer::suggestedFileNameChanged);
}

QString DocumentTransfer::suggestedFileName() const
{
    const std::optional<SQLDocument> document = m_store->selectedDocument();
    return DocumentFile::fileNameFor(document ? document->name : QString());
}

void DocumentTransfer::begin()
{
    if (m_pending++ == 0)
        Q_EMIT isBusyChanged();
}

void DocumentTransfer::end(const QStringList &problems)
{
    if (problems != m_problems) {
        m_problems = problems;
        Q_EMIT problemsChanged();
    }
    if (--m_pending == 0)
        Q_EMIT isBusyChanged();
}

void DocumentTransfer::clearProblems()
{
    if (m_problems.isEmpty())
        return;
    m_problems.clear();
    Q_EMIT problemsChanged();
}

void DocumentTransfer::importFiles(const QList<QUrl> &urls)
{
    QStringList paths;
    QStringList problems;
    for (const QUrl &url : urls) {
        if (url.isLocalFile())
            paths.append(url.toLocalFile());
        else
            problems.append(u"%1 is not a local file"_s.arg(url.toDisplayString()));
    }
    begin();
    auto *watcher = new QFutureWatcher<QList<DocumentFile::Imported>>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, problems]() mutable {
        int count = 0;
        for (const DocumentFile::Imported &file : watcher->result()) {
            if (!file.error.isEmpty()) {
                problems.append(file.error);
                continue;
            }
            m_store->createDocument(file.name, file.content);
            ++count;
        }
        watcher->deleteLater();
        end(problems);
        Q_EMIT imported(count);
    });
    watcher->setFuture(QtConcurrent::run([paths] {
        QList<DocumentFile::Imported> files;
        for (const QString &path : paths)
            files.append(DocumentFile::read(path));
        return files;
    }));
}

void DocumentTransfer::exportSelectedDocument(const QUrl &url)
{
    const std::optional<SQLDocument> document = m_store->selectedDocument();
    if (!document)
        return;
    begin();
    if (!url.isLocalFile()) {
        end({u"%1 is not a local file"_s.arg(url.toDisplayString())});
        return;
    }
    const QString path = url.toLocalFile();
    auto *watcher = new QFutureWatcher<QString>(this);
    connect(watcher, &QFutureWatcherBase::finished, this, [this, watcher, path] {
        const QString error = watcher->result();
        watcher->deleteLater();
        end(error.isEmpty() ? QStringList() : QStringList{error});
        if (error.isEmpty())
            Q_EMIT exported(path);
    });
    watcher->setFuture(
        QtConcurrent::run([path, content = document->content] { return DocumentFile::write(path, content); }));
}
