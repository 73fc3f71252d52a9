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
        if (c == u'\r' && i + 1 < code.size() && code[i + 1] == u'\n') {
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

QString flattenSqlBody(QStringView body)
{
    QString result;
    result.reserve(body.size() + body.size() / 4);
    qsizetype codeStart = 0;
    SqlTokenizer tokenizer(body);
    SqlToken token;
    while (tokenizer.next(token)) {
        if (token.kind != SqlTokenKind::Quoted && token.kind != SqlTokenKind::Comment)
            continue;
        const qsizetype start = token.text.data() - body.data();
        qsizetype end = start + token.text.size();
        if (token.kind == SqlTokenKind::Comment && end < body.size())
            ++end; // its line feed
        result.append(flattenedCode(body.sliced(codeStart, start - codeStart), codeStart == 0, false));
        result.append(body.sliced(start, end - start));
        codeStart = end;
    }
    result.append(flattenedCode(body.sliced(codeStart), codeStart == 0, true));
    return result;
}
