#include "chatstreamparser.h"

#include "chatwirecodec.h"

using namespace Qt::StringLiterals;

ChatStreamParser::ChatStreamParser(qsizetype maxLineBytes, qsizetype maxTextBytes)
    : m_lines(maxLineBytes)
    , m_maxTextBytes(maxTextBytes)
{}

void ChatStreamParser::append(QByteArrayView bytes)
{
    if (m_state == State::Reading)
        m_lines.append(bytes);
}

void ChatStreamParser::finish()
{
    m_finished = true;
    m_lines.finish();
}

bool ChatStreamParser::readPiece()
{
    while (m_state == State::Reading) {
        const std::optional<QByteArray> line = m_lines.nextLine();
        if (!line) {
            if (m_lines.lineTooLong())
                m_state = State::LineTooLong;
            else if (m_finished)
                m_state = State::Done;
            return false;
        }
        if (handleLine(*line))
            return true;
    }
    return false;
}

bool ChatStreamParser::handleLine(QByteArrayView line)
{
    static constexpr QByteArrayView prefix("data: ");
    if (!line.startsWith(prefix))
        return false;
    // Through text and back, so that bytes that are not UTF-8 reach the decoder as U+FFFD, as
    // they would from any reader of text lines.
    const QString payload = QString::fromUtf8(line.sliced(prefix.size()));
    if (payload == "[DONE]"_L1) {
        m_state = State::Done;
        return false;
    }
    const std::optional<OpenAIStreamResponse> chunk = ChatWire::decodeStreamResponse(payload.toUtf8());
    if (!chunk || !chunk->choices || chunk->choices->isEmpty())
        return false;
    const std::optional<OpenAIChatDelta> &delta = chunk->choices->constFirst().delta;
    if (!delta || !delta->content)
        return false;
    m_textBytes += delta->content->toUtf8().size();
    if (m_textBytes > m_maxTextBytes) {
        m_state = State::TextTooLarge;
        return false;
    }
    m_text += *delta->content;
    return true;
}
