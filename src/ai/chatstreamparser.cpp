#include "chatstreamparser.h"

#include "chatwirecodec.h"

using namespace Qt::StringLiterals;

ChatStreamParser::ChatStreamParser(TextHandler onText, qsizetype maxLineBytes, qsizetype maxTextBytes)
    : m_onText(std::move(onText))
    , m_lines(maxLineBytes)
    , m_maxTextBytes(maxTextBytes)
{}

ChatStreamParser::State ChatStreamParser::feed(QByteArrayView bytes)
{
    if (m_state == State::Reading)
        settle(m_lines.feed(bytes, [this](QByteArrayView line) { return handleLine(line); }));
    return m_state;
}

ChatStreamParser::State ChatStreamParser::finish()
{
    if (m_state == State::Reading) {
        settle(m_lines.finish([this](QByteArrayView line) { return handleLine(line); }));
        if (m_state == State::Reading)
            m_state = State::Done;
    }
    return m_state;
}

void ChatStreamParser::settle(bool goOn)
{
    if (goOn || m_state != State::Reading)
        return;
    m_state = m_lines.lineTooLong() ? State::LineTooLong : State::Done;
}

bool ChatStreamParser::handleLine(QByteArrayView line)
{
    static constexpr QByteArrayView prefix("data: ");
    if (!line.startsWith(prefix))
        return true;
    // Through text and back, so that bytes that are not UTF-8 reach the decoder as U+FFFD, as
    // they would from any reader of text lines.
    const QString payload = QString::fromUtf8(line.sliced(prefix.size()));
    if (payload == "[DONE]"_L1)
        return false;
    const std::optional<OpenAIStreamResponse> chunk = ChatWire::decodeStreamResponse(payload.toUtf8());
    if (!chunk || !chunk->choices || chunk->choices->isEmpty())
        return true;
    const std::optional<OpenAIChatDelta> &delta = chunk->choices->constFirst().delta;
    if (!delta || !delta->content)
        return true;
    m_textBytes += delta->content->toUtf8().size();
    if (m_textBytes > m_maxTextBytes) {
        m_state = State::TextTooLarge;
        return false;
    }
    m_text += *delta->content;
    if (m_onText)
        m_onText(m_text);
    return true;
}
