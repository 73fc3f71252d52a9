#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <optional>

// Cuts a byte stream into lines at LF, CR LF or a lone CR, wherever the reads happen to split
// it, a CR LF pair included. Lines are handed out as bytes, so that a multi-byte UTF-8 character
// cut between two reads arrives whole. Line ends are never part of a line.
//
// The reader pulls one line at a time: nothing is called back, so whatever the reader does
// between two lines (emit a signal whose receiver deletes the reader, run an event loop that
// appends more bytes) cannot find the splitter in the middle of a loop.
class LineSplitter
{
public:
    // A line longer than `maxLineLength` bytes stops the reading for good.
    explicit LineSplitter(qsizetype maxLineLength = -1);

    void append(QByteArrayView bytes);
    // The end of the stream: a last line without a line end becomes available.
    void finish();
    // The next complete line, or nothing until more bytes come (or ever, after a line too long).
    [[nodiscard]] std::optional<QByteArray> nextLine();

    [[nodiscard]] bool lineTooLong() const { return m_lineTooLong; }

private:
    void stopTooLong();

    QByteArray m_buffer;
    // Where the unread bytes begin, and how far the search for a line end has come.
    qsizetype m_start = 0;
    qsizetype m_scanned = 0;
    qsizetype m_maxLineLength = -1;
    // The last line ended in CR at the end of the bytes so far: a LF that follows belongs to it.
    bool m_afterCR = false;
    bool m_finished = false;
    bool m_lineTooLong = false;
};
