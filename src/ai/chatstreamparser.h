#pragma once

#include "linesplitter.h"

#include <QString>

#include <functional>

// Reads the event stream of a streamed chat reply and accumulates its text.
//
// Only lines that begin with "data: " count. "data: [DONE]" ends the reply; any other payload
// is a JSON chunk whose first choice's `delta.content` is the next piece of text. Chunks that do
// not decode, or lack a choice, a delta or content, are skipped without a report. Each piece,
// an empty one included, hands the whole text so far to the text handler.
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

    using TextHandler = std::function<void(const QString &text)>;

    // `maxTextBytes` bounds the accumulated text, counted in UTF-8 bytes.
    explicit ChatStreamParser(TextHandler onText, qsizetype maxLineBytes = defaultMaxLineBytes,
                              qsizetype maxTextBytes = defaultMaxTextBytes);

    State feed(QByteArrayView bytes);
    // The end of the stream, with or without "[DONE]".
    State finish();

    [[nodiscard]] State state() const { return m_state; }
    [[nodiscard]] const QString &text() const { return m_text; }

private:
    bool handleLine(QByteArrayView line);
    void settle(bool goOn);

    TextHandler m_onText;
    LineSplitter m_lines;
    QString m_text;
    qsizetype m_textBytes = 0;
    qsizetype m_maxTextBytes = defaultMaxTextBytes;
    State m_state = State::Reading;
};
