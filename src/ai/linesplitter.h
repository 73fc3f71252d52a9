#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <functional>

// Cuts a byte stream into lines at LF, CR LF or a lone CR, wherever the reads happen to split
// it, a CR LF pair included. Lines are handed over as bytes, so that a multi-byte UTF-8 character
// cut between two reads arrives whole. Line ends are never part of a line.
class LineSplitter
{
public:
    // Gets each line; returns false to stop reading.
    using LineHandler = std::function<bool(QByteArrayView line)>;

    // A line longer than `maxLineLength` bytes stops the reading for good.
    explicit LineSplitter(qsizetype maxLineLength = -1);

    // Hands over every line that `bytes` completes. False once reading has stopped, because the
    // handler asked for it or a line was too long.
    bool feed(QByteArrayView bytes, const LineHandler &onLine);
    // At the end of the stream: the last line, if it had no line end.
    bool finish(const LineHandler &onLine);

    [[nodiscard]] bool lineTooLong() const { return m_lineTooLong; }

private:
    bool tooLong(qsizetype length);

    QByteArray m_pending;
    qsizetype m_maxLineLength = -1;
    // The previous read ended in CR: a LF at the start of the next belongs to it.
    bool m_afterCR = false;
    bool m_stopped = false;
    bool m_lineTooLong = false;
};
