#include "sqlformatterflatten.h"

#include "sqltokenchars.h"
#include "sqltokenizer.h"

using namespace Qt::StringLiterals;

namespace {

enum class Piece : quint8 { Start, Blank, Open, Close, Comma, Semicolon, Other };

// What the character at `i` is to the steps: only characters that stand alone count.
Piece pieceAt(QStringView text, qsizetype i)
{
    Piece piece = Piece::Other;
    switch (text[i].unicode()) {
    case u' ':
        piece = Piece::Blank;
        break;
    case u'(':
        piece = Piece::Open;
        break;
    case u')':
        piece = Piece::Close;
        break;
    case u',':
        piece = Piece::Comma;
        break;
    case u';':
        piece = Piece::Semicolon;
        break;
    default:
        return Piece::Other;
    }
    return SqlTokenChars::standsAlone(text, i) ? piece : Piece::Other;
}

// A line that begins so is a client's command to some dialect (psql's "\", SQL*Plus's "rem")
// and reads differently from the same text inside a line: its line end stays.
bool beginsClientCommand(QStringView line)
{
    qsizetype i = 0;
    while (i < line.size() && (line[i] == u' ' || line[i] == u'\t'))
        ++i;
    line = line.sliced(i);
    if (line.startsWith(u'\\'))
        return true;
    for (const QStringView word : {QStringView(u"rem"), QStringView(u"remark")}) {
        if (line.size() >= word.size() && line.first(word.size()).compare(word, Qt::CaseInsensitive) == 0 &&
            (line.size() == word.size() || line[word.size()] == u' ' || line[word.size()] == u'\t' ||
             line[word.size()] == u'\r' || line[word.size()] == u'\n'))
            return true;
    }
    return false;
}

// The steps over one stretch of code; `front` and `back` say whether it begins or ends the body.
//
// The first three steps (line ends and tabs to blanks) run on their own: a new blank may merge
// with a combining mark behind it (or a prepended mark before it) into a character that is no
// longer a blank, so the rest must read the characters of their result. The other steps only
// drop or add blanks next to characters that stand alone, which merges nothing; they run
// together in one pass, each blank judged by its neighbours as the steps in order would judge it.
QString flattenedCode(QStringView code, bool front, bool back)
{
    QString blanks;
    blanks.reserve(code.size());
    for (qsizetype i = 0; i < code.size(); ++i) {
        const QChar c = code[i];
        const qsizetype lineEnd = c == u'\r' && i + 1 < code.size() && code[i + 1] == u'\n' ? 2 : c == u'\n';
        if (lineEnd > 0 && beginsClientCommand(code.sliced(i + lineEnd))) {
            blanks.append(code.sliced(i, lineEnd));
            i += lineEnd - 1;
        } else if (lineEnd == 2) {
            blanks.append(u' ');
            ++i;
        } else {
            blanks.append(c == u'\n' || c == u'\t' ? QChar(u' ') : c);
        }
    }

    QString result;
    result.reserve(blanks.size() + blanks.size() / 4);
    Piece previous = Piece::Start;
    bool blankPending = false;      // runs of blanks are one blank
    bool commaBlankPending = false; // the blank each comma gets, unless a ";" follows at once
    for (qsizetype i = 0; i < blanks.size(); ++i) {
        const Piece piece = pieceAt(blanks, i);
        if (piece == Piece::Blank) {
            blankPending = true;
            continue;
        }
        if (commaBlankPending && !(piece == Piece::Semicolon && !blankPending))
            result.append(u' ');
        commaBlankPending = false;
        if (blankPending) {
            const bool trimmed = front && previous == Piece::Start;
            const bool beforePunctuation = piece == Piece::Open || piece == Piece::Close ||
                                           piece == Piece::Comma || piece == Piece::Semicolon;
            if (!trimmed && !beforePunctuation && previous != Piece::Open)
                result.append(u' ');
            blankPending = false;
        }
        result.append(blanks[i]);
        commaBlankPending = piece == Piece::Comma;
        previous = piece;
    }
    if (commaBlankPending)
        result.append(u' ');
    if (blankPending && !back && !(front && previous == Piece::Start) && previous != Piece::Open)
        result.append(u' ');
    return result;
}

} // namespace

QString flattenSqlBody(QStringView body, SqlDialectScan::Options options)
{
    QString result;
    result.reserve(body.size() + body.size() / 4);
    qsizetype codeStart = 0;
    SqlTokenizer tokenizer(body, options);
    SqlToken token;
    while (tokenizer.next(token)) {
        if (token.kind != SqlTokenKind::Quoted && token.kind != SqlTokenKind::Comment)
            continue;
        const qsizetype start = token.text.data() - body.data();
        qsizetype end = start + token.text.size();
        if (token.kind == SqlTokenKind::Comment) {
            // Its line end, with the CRs before it that the comment left out.
            while (end < body.size() && body[end] == u'\r')
                ++end;
            if (end < body.size() && body[end] == u'\n')
                ++end;
        }
        result.append(flattenedCode(body.sliced(codeStart, start - codeStart), codeStart == 0, false));
        // A psql command is one only at the start of its line.
        if (token.kind == SqlTokenKind::Comment && token.text.front() == u'\\' && !result.isEmpty() &&
            !result.endsWith(u'\n'))
            result.append(u'\n');
        result.append(body.sliced(start, end - start));
        codeStart = end;
    }
    result.append(flattenedCode(body.sliced(codeStart), codeStart == 0, true));
    return result;
}
