#pragma once

#include <QObject>
#include <QString>

// One piece of an assistant reply: prose, or the code of a fenced block with the language
// written after its opening fence (possibly empty).
struct MarkdownBlock
{
    Q_GADGET
    Q_PROPERTY(Kind kind MEMBER kind CONSTANT)
    Q_PROPERTY(QString text MEMBER text CONSTANT)
    Q_PROPERTY(QString language MEMBER language CONSTANT)
    Q_PROPERTY(bool isApplicable READ isApplicable CONSTANT)

public:
    enum class Kind {
        Text,
        CodeBlock,
    };
    Q_ENUM(Kind)

    Kind kind = Kind::Text;
    // The prose of a text block, or the code of a code block.
    QString text;
    QString language;

    // SQL and untagged code can be put into the editor; any other language is only shown.
    [[nodiscard]] bool isApplicable() const;

    friend bool operator==(const MarkdownBlock &, const MarkdownBlock &) = default;
};
