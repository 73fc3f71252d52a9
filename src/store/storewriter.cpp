#include "storewriter.h"

#include "durablefile.h"

StoreWriter::StoreWriter(std::array<QString, slotCount> paths)
    : m_paths(std::move(paths))
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

void StoreWriter::submit(int slot, quint64 generation, std::function<QByteArray()> serialize)
{
    {
        std::lock_guard lock(m_mutex);
        if (generation == m_written[slot] || generation == m_inFlight[slot] ||
            generation == m_pending[slot].generation)
            return;
        m_pending[slot] = Job{generation, std::move(serialize)};
    }
    m_wake.notify_one();
}

void StoreWriter::flush()
{
    std::unique_lock lock(m_mutex);
    m_idle.wait(lock, [this] {
        if (m_busy)
            return false;
        for (const Job &job : m_pending) {
            if (job.serialize)
                return false;
        }
        return true;
    });
}

quint64 StoreWriter::writtenGeneration(int slot) const
{
    std::lock_guard lock(m_mutex);
    return m_written[slot];
}

void StoreWriter::markWritten(int slot, quint64 generation)
{
    std::lock_guard lock(m_mutex);
    m_written[slot] = generation;
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
        int slot = -1;
        for (int i = 0; i < slotCount; ++i) {
            if (m_pending[i].serialize) {
                slot = i;
                break;
            }
        }
        if (slot < 0) {
            m_busy = false;
            m_idle.notify_all();
            if (m_stopping)
                return;
            m_wake.wait(lock);
            continue;
        }
        Job job = std::exchange(m_pending[slot], Job{});
        m_inFlight[slot] = job.generation;
        m_busy = true;
        lock.unlock();

        QString error;
        const quint64 generation = job.generation;
        const bool ok = writeFileDurably(m_paths[slot], job.serialize(), &error);
        job = Job{}; // drop the snapshot off the lock

        lock.lock();
        m_inFlight[slot] = 0;
        if (ok)
            m_written[slot] = generation;
        m_lastError = ok ? QString() : error;
    }
}
