#pragma once

#include <QStringView>

// The four kinds of token the formatter's tokenizer reads. The kind can always be read back
// from the text; the tokenizer hands it over so that nobody has to.
enum class SqlTokenKind : quint8 {
    Punctuation, // one of ( ) , ;
    Comment,     // a line comment, up to its line end
    Quoted,      // a word that holds a string, quoted name or block comment
    Word,        // any other run of characters without white space
};

// One token: a slice of the text it was read from.
struct SqlToken
{
    QStringView text;
    SqlTokenKind kind = SqlTokenKind::Word;
    // A word that an opening bracket follows, white space aside: a call.
    bool bracketFollows = false;
};
