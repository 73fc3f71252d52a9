#include "storewriter.h"

#include "durablefile.h"

#include <QFile>
#include <QFileInfo>

#include <cerrno>
#include <cstring>
#include <unistd.h>

using namespace Qt::StringLiterals;

StoreWriter::StoreWriter(WriteReport report)
    : m_report(std::move(report))
    , m_thread([this] { run(); })
{}

StoreWriter::~StoreWriter()
{
    {
        std::lock_guard lock(m_mutex);
        m_stopping = true;
    }
    m_wake.notify_all();
    m_thread.join();
}

void StoreWriter::submit(const QString &path, quint64 generation, std::function<QByteArray()> serialize)
{
    {
        std::lock_guard lock(m_mutex);
        const FileState state = m_files.value(path);
        const auto pending = m_pending.constFind(path);
        if (generation == state.inFlight ||
            (pending != m_pending.cend() && pending->serialize && pending->generation == generation))
            return;
        if (generation == state.written && QFileInfo(path).isFile())
            return;
        enqueue(path, Job{generation, std::move(serialize)});
    }
    m_wake.notify_one();
}

void StoreWriter::remove(const QString &path)
{
    {
        std::lock_guard lock(m_mutex);
        enqueue(path, Job{});
    }
    m_wake.notify_one();
}

// Called with the lock held.
void StoreWriter::enqueue(const QString &path, Job job)
{
    if (!m_pending.contains(path))
        m_order.push_back(path);
    m_pending.insert(path, std::move(job));
}

void StoreWriter::flush()
{
    std::unique_lock lock(m_mutex);
    m_idle.wait(lock, [this] { return !m_busy && m_order.empty(); });
}

quint64 StoreWriter::writtenGeneration(const QString &path) const
{
    std::lock_guard lock(m_mutex);
    return m_files.value(path).written;
}

void StoreWriter::markWritten(const QString &path, quint64 generation)
{
    std::lock_guard lock(m_mutex);
    m_files[path].written = generation;
}

QString StoreWriter::lastError() const
{
    std::lock_guard lock(m_mutex);
    return m_lastError;
}

void StoreWriter::run()
{
    std::unique_lock lock(m_mutex);
    while (true) {
        if (m_order.empty()) {
            m_busy = false;
            m_idle.notify_all();
            if (m_stopping)
                return;
            m_wake.wait(lock);
            continue;
        }
        const QString path = m_order.front();
        m_order.pop_front();
        Job job = m_pending.take(path);
        const bool removal = !job.serialize;
        const quint64 generation = job.generation;
        m_files[path].inFlight = generation;
        m_busy = true;
        lock.unlock();

        QString error;
        bool ok = true;
        if (removal) {
            if (::unlink(QFile::encodeName(path).constData()) != 0 && errno != ENOENT) {
                ok = false;
                error = u"cannot remove %1: %2"_s.arg(path, QString::fromLocal8Bit(std::strerror(errno)));
            }
        } else {
            // The folder may have been deleted or moved away meanwhile.
            ok = makePrivateFolder(QFileInfo(path).absolutePath(), &error) &&
                 writeFileDurably(path, job.serialize(), &error);
        }
        job = Job{}; // drop the snapshot off the lock

        lock.lock();
        FileState &state = m_files[path];
        state.inFlight = 0;
        if (removal)
            state.written = 0;
        else if (ok)
            state.written = generation;
        m_lastError = ok ? QString() : error;
        if (m_report) {
            lock.unlock();
            m_report(path, generation, ok ? QString() : error);
            lock.lock();
        }
    }
}
