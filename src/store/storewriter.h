#pragma once

#include <QByteArray>
#include <QString>

#include <array>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <thread>

// Writes the store files on a thread of its own, one file at a time in slot order.
//
// A job carries a function that serialises an immutable snapshot (Qt's containers share
// their data, so taking one is cheap on the caller's side) and the generation of the data
// it holds. A newer job for a slot replaces a pending older one, so a backlog coalesces
// into one write of the newest data.
class StoreWriter
{
public:
    static constexpr int slotCount = 3;

    // `paths` are the files of the slots, in writing order.
    explicit StoreWriter(std::array<QString, slotCount> paths);
    // Finishes the pending writes.
    ~StoreWriter();

    StoreWriter(const StoreWriter &) = delete;
    StoreWriter &operator=(const StoreWriter &) = delete;

    // Queues a write of slot `slot` unless the same generation is written, being written or
    // queued already.
    void submit(int slot, quint64 generation, std::function<QByteArray()> serialize);
    // Blocks until nothing is queued or being written.
    void flush();
    // The generation of the slot's last successful write, 0 before any.
    [[nodiscard]] quint64 writtenGeneration(int slot) const;
    [[nodiscard]] QString lastError() const;
    // Records that the file of `slot` already holds `generation` (it was just read).
    void markWritten(int slot, quint64 generation);

private:
    struct Job
    {
        quint64 generation = 0;
        std::function<QByteArray()> serialize;
    };

    void run();

    std::array<QString, slotCount> m_paths;
    mutable std::mutex m_mutex;
    std::condition_variable m_wake;
    std::condition_variable m_idle;
    std::array<Job, slotCount> m_pending;
    std::array<quint64, slotCount> m_inFlight{};
    std::array<quint64, slotCount> m_written{};
    bool m_busy = false;
    bool m_stopping = false;
    QString m_lastError;
    std::thread m_thread;
};
