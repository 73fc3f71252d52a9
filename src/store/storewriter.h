#pragma once

#include <QByteArray>
#include <QHash>
#include <QString>

#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>

// Writes files on a thread of its own, one at a time, in the order they were first asked for.
//
// A job carries a function that serialises an immutable snapshot (Qt's containers share their
// data, so taking one is cheap on the caller's side) and the generation of the data it holds.
// A newer job for a file replaces a queued older one and keeps its place, so a backlog coalesces
// into one write of the newest data. Removing a file is a job too, queued behind the writes
// before it; it drops a queued write of the same file.
//
// The folder of a file is made again (0700) before each write, should it have gone meanwhile,
// and a file that is no longer there is written again even if its generation was written.
class StoreWriter
{
public:
    // What became of a write: the file, the generation, and the reason if it failed. Called on
    // the writer's thread.
    using WriteReport = std::function<void(const QString &path, quint64 generation, const QString &error)>;

    explicit StoreWriter(WriteReport report = {});
    // Finishes the queued jobs.
    ~StoreWriter();

    StoreWriter(const StoreWriter &) = delete;
    StoreWriter &operator=(const StoreWriter &) = delete;

    // Queues a write of `path` unless the same generation is written, being written or queued.
    void submit(const QString &path, quint64 generation, std::function<QByteArray()> serialize);
    // Queues the removal of `path`; a missing file is no failure.
    void remove(const QString &path);
    // Blocks until nothing is queued or being done.
    void flush();
    // The generation of the path's last successful write, 0 before any (and after a removal).
    [[nodiscard]] quint64 writtenGeneration(const QString &path) const;
    [[nodiscard]] QString lastError() const;
    // Records that the file at `path` already holds `generation` (it was just read).
    void markWritten(const QString &path, quint64 generation);

private:
    struct Job
    {
        quint64 generation = 0;
        // Empty for a removal.
        std::function<QByteArray()> serialize;
    };
    struct FileState
    {
        quint64 written = 0;
        quint64 inFlight = 0;
    };

    void enqueue(const QString &path, Job job);
    void run();

    WriteReport m_report;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::deque<QString> m_order;
    QHash<QString, Job> m_pending;
    QHash<QString, FileState> m_files;
    bool m_busy = false;
    bool m_stopping = false;
    QString m_lastError;
    std::thread m_thread;
};
