#include "linesplitter.h"

#include <utility>

LineSplitter::LineSplitter(qsizetype maxLineLength)
    : m_maxLineLength(maxLineLength)
{}

bool LineSplitter::tooLong(qsizetype length)
{
    if (m_maxLineLength < 0 || length <= m_maxLineLength)
        return false;
    m_lineTooLong = true;
    m_stopped = true;
    m_pending.clear();
    return true;
}

bool LineSplitter::feed(QByteArrayView bytes, const LineHandler &onLine)
{
    if (m_stopped)
        return false;
    const char *p = bytes.data();
    const char *const end = p + bytes.size();
    if (m_afterCR && p != end) {
        m_afterCR = false;
        if (*p == '\n')
            ++p;
    }
    while (p != end) {
        const char *q = p;
        while (q != end && *q != '\n' && *q != '\r')
            ++q;
        if (q == end) {
            if (tooLong(m_pending.size() + (end - p)))
                return false;
            m_pending.append(p, end - p);
            return true;
        }
        QByteArrayView line(p, q - p);
        if (!m_pending.isEmpty()) {
            m_pending.append(p, q - p);
            line = m_pending;
        }
        if (tooLong(line.size()))
            return false;
        const bool goOn = onLine(line);
        m_pending.clear();
        if (*q == '\r') {
            if (q + 1 == end)
                m_afterCR = true;
            else if (q[1] == '\n')
                ++q;
        }
        p = q + 1;
        if (!goOn) {
            m_stopped = true;
            return false;
        }
    }
    return true;
}

bool LineSplitter::finish(const LineHandler &onLine)
{
    if (m_stopped)
        return false;
    m_stopped = true;
    if (m_pending.isEmpty())
        return true;
    const QByteArray last = std::exchange(m_pending, {});
    return onLine(last);
}
