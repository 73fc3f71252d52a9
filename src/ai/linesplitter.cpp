#include "linesplitter.h"

namespace {

// Read bytes are dropped from the front of the buffer once they are this many and more than half.
constexpr qsizetype compactAfter = 64 * 1024;

} // namespace

LineSplitter::LineSplitter(qsizetype maxLineLength)
    : m_maxLineLength(maxLineLength)
{}

void LineSplitter::append(QByteArrayView bytes)
{
    if (m_lineTooLong || m_finished || bytes.isEmpty())
        return;
    if (m_start == m_buffer.size()) {
        m_buffer.clear();
        m_start = m_scanned = 0;
    } else if (m_start >= compactAfter && m_start * 2 > m_buffer.size()) {
        m_buffer.remove(0, m_start);
        m_scanned -= m_start;
        m_start = 0;
    }
    m_buffer.append(bytes);
}

void LineSplitter::finish()
{
    m_finished = true;
}

void LineSplitter::stopTooLong()
{
    m_lineTooLong = true;
    m_buffer.clear();
    m_start = m_scanned = 0;
}

std::optional<QByteArray> LineSplitter::nextLine()
{
    if (m_lineTooLong)
        return std::nullopt;
    const qsizetype size = m_buffer.size();
    if (m_afterCR && m_start < size) {
        m_afterCR = false;
        if (m_buffer.at(m_start) == '\n') {
            ++m_start;
            m_scanned = std::max(m_scanned, m_start);
        }
    }
    const char *const data = m_buffer.constData();
    qsizetype end = std::max(m_scanned, m_start);
    while (end < size && data[end] != '\n' && data[end] != '\r')
        ++end;
    if (end == size) {
        m_scanned = end;
        const qsizetype pending = size - m_start;
        if (m_maxLineLength >= 0 && pending > m_maxLineLength) {
            stopTooLong();
            return std::nullopt;
        }
        if (!m_finished || pending == 0)
            return std::nullopt;
        QByteArray last = m_buffer.sliced(m_start);
        m_start = m_scanned = size;
        return last;
    }
    if (m_maxLineLength >= 0 && end - m_start > m_maxLineLength) {
        stopTooLong();
        return std::nullopt;
    }
    QByteArray line = m_buffer.sliced(m_start, end - m_start);
    if (data[end] == '\r') {
        if (end + 1 == size)
            m_afterCR = true;
        else if (data[end + 1] == '\n')
            ++end;
    }
    m_start = m_scanned = end + 1;
    return line;
}
