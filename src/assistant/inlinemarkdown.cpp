#include "inlinemarkdown.h"

#include "markdownrichtextwriter.h"

#include <QByteArray>

#include <md4c.h>

#include <algorithm>
#include <array>
#include <limits>
#include <vector>

using namespace Qt::StringLiterals;

namespace {

// md4c parses whole documents, but prose here is inline Markdown only, line by line as
// written. Every line of the source is given a two-byte lead, "x ", before md4c sees it: a
// line that starts with a letter starts no list, quote, heading, fence, table, thematic break,
// setext underline or link definition, and can neither end nor interrupt the paragraph. So
// each piece md4c parses is one paragraph, its line ends are line breaks, and its leading
// blanks are text. The blank after the letter keeps the start of each line a word boundary for emphasis,
// as it was. The leads are cut from whatever md4c hands back, found by their address.
constexpr char lineLead[] = "x ";
constexpr qsizetype lineLeadSize = 2;

// md4c finds the line of a bracket by walking the lines of its paragraph from the first, so its
// time grows with lines times brackets: a reply of 64 KiB with "[a](" on each line takes 80 ms.
// Parsing a few lines at a time bounds that walk. A piece ends after a blank line, where
// Markdown ends a paragraph and every inline mark with it, or after this many lines.
constexpr int maxLinesPerParse = 128;

constexpr unsigned parserFlags = MD_FLAG_NOHTML | MD_FLAG_STRIKETHROUGH | MD_FLAG_NOINDENTEDCODEBLOCKS;

char32_t decodeNumericEntity(QLatin1StringView entity)
{
    // "&#123;" or "&#x1F;"; md4c has checked the digits and their number.
    const bool hex = entity.size() > 3 && (entity[2] == u'x' || entity[2] == u'X');
    const QLatin1StringView digits = entity.sliced(hex ? 3 : 2).chopped(1);
    bool ok = false;
    const uint value = QByteArrayView(digits.data(), digits.size()).toUInt(&ok, hex ? 16 : 10);
    if (!ok || value == 0 || value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF))
        return 0xFFFD;
    return value;
}

// The URL of a link, entities resolved so that the scheme check sees what a browser would.
QString attributeText(const MD_ATTRIBUTE &attribute)
{
    QString text;
    for (unsigned i = 0; attribute.substr_offsets[i] < attribute.size; ++i) {
        const MD_OFFSET begin = attribute.substr_offsets[i];
        const QLatin1StringView raw(attribute.text + begin, attribute.substr_offsets[i + 1] - begin);
        switch (attribute.substr_types[i]) {
        case MD_TEXT_NULLCHAR:
            text += QChar(QChar::ReplacementCharacter);
            break;
        case MD_TEXT_ENTITY:
            if (raw.startsWith("&#"_L1)) {
                const char32_t c = decodeNumericEntity(raw);
                text += QStringView(QChar::fromUcs4(c));
            } else if (raw == "&amp;"_L1) {
                text += u'&';
            } else if (raw == "&quot;"_L1) {
                text += u'"';
            } else if (raw == "&lt;"_L1) {
                text += u'<';
            } else if (raw == "&gt;"_L1) {
                text += u'>';
            } else if (raw == "&apos;"_L1) {
                text += u'\'';
            } else {
                // Left as written; escaped on output, so it stays these characters.
                text += raw;
            }
            break;
        default:
            text += QString::fromUtf8(raw.data(), raw.size());
            break;
        }
    }
    return text;
}

class Renderer
{
public:
    explicit Renderer(MarkdownRichTextWriter &writer)
        : m_writer(writer)
    {}

    // Renders one piece of the source, made of whole lines with their leads; false if md4c
    // gave up.
    bool render(const QByteArray &source, const std::vector<qsizetype> &leads)
    {
        if (source.size() > qsizetype(std::numeric_limits<MD_SIZE>::max()))
            return false;
        m_source = &source;
        m_leads = &leads;
        m_blocks = 0;
        MD_PARSER parser{};
        parser.flags = parserFlags;
        parser.enter_block = [](MD_BLOCKTYPE type, void *, void *userdata) {
            return static_cast<Renderer *>(userdata)->enterBlock(type);
        };
        parser.leave_block = [](MD_BLOCKTYPE, void *, void *) { return 0; };
        parser.enter_span = [](MD_SPANTYPE type, void *detail, void *userdata) {
            return static_cast<Renderer *>(userdata)->enterSpan(type, detail);
        };
        parser.leave_span = [](MD_SPANTYPE type, void *, void *userdata) {
            return static_cast<Renderer *>(userdata)->leaveSpan(type);
        };
        parser.text = [](MD_TEXTTYPE type, const MD_CHAR *text, MD_SIZE size, void *userdata) {
            return static_cast<Renderer *>(userdata)->text(type, text, size);
        };
        const bool parsed = md_parse(source.constData(), MD_SIZE(source.size()), &parser, this) == 0;
        closeSpans(0);
        return parsed;
    }

private:
    int enterBlock(MD_BLOCKTYPE type)
    {
        // The leads leave one paragraph; should md4c still open a second block, the break
        // between them stays a line break.
        if (type != MD_BLOCK_DOC && m_blocks++ > 0 && !m_writer.isAtLineStart())
            m_writer.appendLineBreak();
        return 0;
    }

    int enterSpan(MD_SPANTYPE type, void *detail)
    {
        bool emitted = false;
        if (type == MD_SPAN_IMG) {
            // The alt text is all of an image that shows; nothing is ever fetched.
            ++m_images;
        } else if (type == MD_SPAN_A) {
            emitted =
                m_images == 0 && !m_inLink && openLink(static_cast<const MD_SPAN_A_DETAIL *>(detail)->href);
        } else if (m_images == 0 && !spanTag(type, true).isEmpty()) {
            m_writer.appendMarkup(spanTag(type, true));
            emitted = true;
        }
        m_openSpans.push_back({type, emitted});
        return 0;
    }

    // md4c 0.4.8 can leave a span open, for instance emphasis whose closing mark ends up in a
    // link destination. Spans left inside the one that ends are closed with it, and whatever
    // is still open when the piece ends is closed then, so the tags always nest.
    int leaveSpan(MD_SPANTYPE type)
    {
        const auto open = std::find_if(m_openSpans.rbegin(), m_openSpans.rend(),
                                       [type](const OpenSpan &span) { return span.type == type; });
        if (open != m_openSpans.rend())
            closeSpans(m_openSpans.size() - 1 - size_t(open - m_openSpans.rbegin()));
        return 0;
    }

    void closeSpans(size_t keep)
    {
        while (m_openSpans.size() > keep) {
            const OpenSpan span = m_openSpans.back();
            m_openSpans.pop_back();
            if (span.type == MD_SPAN_IMG)
                --m_images;
            if (!span.emitted)
                continue;
            if (span.type == MD_SPAN_A) {
                m_writer.appendMarkup("</a>"_L1);
                m_inLink = false;
            } else {
                m_writer.appendMarkup(spanTag(span.type, false));
            }
        }
    }

    int text(MD_TEXTTYPE type, const MD_CHAR *text, MD_SIZE size)
    {
        switch (type) {
        case MD_TEXT_NULLCHAR:
            m_writer.appendText(QStringView(u"\uFFFD"));
            break;
        case MD_TEXT_BR:
        case MD_TEXT_SOFTBR:
            m_writer.appendLineBreak();
            break;
        case MD_TEXT_ENTITY: {
            const QLatin1StringView entity(text, size);
            if (entity.startsWith("&#"_L1)) {
                const char32_t c = decodeNumericEntity(entity);
                m_writer.appendText(QStringView(QChar::fromUcs4(c)));
            } else {
                // A name of letters and digits: the text item resolves the names it knows
                // and shows any other as written.
                m_writer.appendMarkup(entity);
            }
            break;
        }
        default:
            appendSourceText(text, size);
            break;
        }
        return 0;
    }

    static QLatin1StringView spanTag(MD_SPANTYPE type, bool open)
    {
        switch (type) {
        case MD_SPAN_EM:
            return open ? "<i>"_L1 : "</i>"_L1;
        case MD_SPAN_STRONG:
            return open ? "<b>"_L1 : "</b>"_L1;
        case MD_SPAN_CODE:
            return open ? "<code>"_L1 : "</code>"_L1;
        case MD_SPAN_DEL:
            return open ? "<s>"_L1 : "</s>"_L1;
        default:
            return {};
        }
    }

    bool openLink(const MD_ATTRIBUTE &href)
    {
        const QString url = attributeText(href);
        if (!isAllowedLinkTarget(url))
            return false;
        m_writer.appendMarkup("<a href=\""_L1);
        m_writer.appendAttributeValue(url);
        m_writer.appendMarkup("\">"_L1);
        // A link inside a link would have the text item end the outer one early.
        m_inLink = true;
        return true;
    }

    // Text md4c took from the source, less the line leads within it. Text md4c made up itself
    // (a code span's line end turned blank) lies outside the source and is taken whole.
    void appendSourceText(const char *text, MD_SIZE size)
    {
        const char *sourceBegin = m_source->constData();
        if (text < sourceBegin || text >= sourceBegin + m_source->size()) {
            m_writer.appendText(QString::fromUtf8(text, size));
            return;
        }
        qsizetype begin = text - sourceBegin;
        const qsizetype end = begin + qsizetype(size);
        auto lead = std::upper_bound(m_leads->begin(), m_leads->end(), begin - lineLeadSize);
        while (begin < end) {
            qsizetype pieceEnd = end;
            if (lead != m_leads->end() && *lead < end)
                pieceEnd = std::max(begin, *lead);
            if (pieceEnd > begin)
                m_writer.appendText(QString::fromUtf8(sourceBegin + begin, pieceEnd - begin));
            if (pieceEnd == end)
                break;
            begin = std::min(end, *lead + lineLeadSize);
            ++lead;
        }
    }

    MarkdownRichTextWriter &m_writer;
    const QByteArray *m_source = nullptr;
    const std::vector<qsizetype> *m_leads = nullptr;
    struct OpenSpan
    {
        MD_SPANTYPE type;
        bool emitted;
    };
    std::vector<OpenSpan> m_openSpans;
    int m_images = 0;
    int m_blocks = 0;
    bool m_inLink = false;
};

QString plainTextToRichText(QStringView text)
{
    MarkdownRichTextWriter writer;
    writer.appendText(text);
    return writer.takeHtml();
}

} // namespace

QString cutHeadingMarks(QStringView text)
{
    QString result;
    result.reserve(text.size());
    qsizetype start = 0;
    while (true) {
        const qsizetype end = text.indexOf(u'\n', start);
        QStringView line = end < 0 ? text.sliced(start) : text.sliced(start, end - start);
        for (const QStringView mark : std::array<QStringView, 3>{u"### ", u"## ", u"# "}) {
            if (line.startsWith(mark)) {
                line = line.sliced(mark.size());
                break;
            }
        }
        result += line;
        if (end < 0)
            break;
        result += u'\n';
        start = end + 1;
    }
    return result;
}

bool isAllowedLinkTarget(QStringView url)
{
    const qsizetype colon = url.indexOf(u':');
    if (colon < 0)
        return false;
    // ASCII letters only: case folding would let "httpſ" pass for "https".
    QString scheme;
    for (const QChar c : url.first(colon)) {
        if (c.unicode() >= 0x80 || !c.isLetter())
            return false;
        scheme += c.toLower();
    }
    return scheme == u"http" || scheme == u"https" || scheme == u"mailto";
}

QString inlineMarkdownToRichText(QStringView markdown)
{
    const QByteArray utf8 = markdown.toUtf8();
    MarkdownRichTextWriter writer;
    Renderer renderer(writer);
    QByteArray source;
    std::vector<qsizetype> leads;
    int lines = 0;
    qsizetype lineStart = 0;
    while (true) {
        // md4c ends a line at LF, CR LF and a lone CR alike.
        qsizetype lineEnd = lineStart;
        while (lineEnd < utf8.size() && utf8[lineEnd] != '\n' && utf8[lineEnd] != '\r')
            ++lineEnd;
        const bool blank = std::all_of(utf8.begin() + lineStart, utf8.begin() + lineEnd,
                                       [](char c) { return c == ' ' || c == '\t'; });
        qsizetype next = lineEnd;
        if (next < utf8.size())
            next += utf8[next] == '\r' && next + 1 < utf8.size() && utf8[next + 1] == '\n' ? 2 : 1;
        leads.push_back(source.size());
        source.append(lineLead, lineLeadSize);
        source.append(utf8.constData() + lineStart, next - lineStart);
        const bool last = next == utf8.size();
        if (last || blank || ++lines == maxLinesPerParse) {
            // A lead after the last line end turns that end into a line break.
            if (next > lineEnd) {
                leads.push_back(source.size());
                source.append(lineLead, lineLeadSize);
            }
            if (!renderer.render(source, leads))
                return plainTextToRichText(markdown);
            if (last)
                break;
            source.clear();
            leads.clear();
            lines = 0;
        }
        lineStart = next;
    }
    return writer.takeHtml();
}

QString markdownTextToRichText(QStringView text)
{
    return inlineMarkdownToRichText(cutHeadingMarks(text));
}
