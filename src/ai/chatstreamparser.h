#pragma once

#include "linesplitter.h"

#include <QString>

// Reads the event stream of a streamed chat reply and accumulates its text.
//
// Only lines that begin with "data: " count. "data: [DONE]" ends the reply; any other payload
// is a JSON chunk whose first choice's `delta.content` is the next piece of text. Chunks that do
// not decode, or lack a choice, a delta or content, are skipped without a report.
//
// The reader appends bytes as they come and then pulls pieces with readPiece() until it gives
// false; after each piece, an empty one included, text() holds the whole text so far.
class ChatStreamParser
{
public:
    static constexpr qsizetype defaultMaxLineBytes = 1024 * 1024;
    static constexpr qsizetype defaultMaxTextBytes = 8 * 1024 * 1024;

    enum class State {
        Reading,
        // "[DONE]" came, or the stream ended; whatever follows is ignored.
        Done,
        LineTooLong,
        TextTooLarge,
    };

    // `maxTextBytes` bounds the accumulated text, counted in UTF-8 bytes.
    explicit ChatStreamParser(qsizetype maxLineBytes = defaultMaxLineBytes,
                              qsizetype maxTextBytes = defaultMaxTextBytes);

    void append(QByteArrayView bytes);
    // The end of the stream, with or without "[DONE]".
    void finish();
    // Reads on to the next piece of text: true when there was one, false when more bytes are
    // needed or the reading has ended (state() says which).
    bool readPiece();

    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] const QString &text() const { return m_text; }

private:
    // True when the line added a piece.
    bool handleLine(QByteArrayView line);

    LineSplitter m_lines;
    QString m_text;
    qsizetype m_textBytes = 0;
    qsizetype m_maxTextBytes = defaultMaxTextBytes;
    bool m_finished = false;
    State m_state = State::Reading;
};
