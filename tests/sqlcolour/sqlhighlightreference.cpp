#include "sqlhighlightreference.h"

#include <QRegularExpression>
#include <QStringList>

#include <unicode/uregex.h>

#include <memory>
#include <vector>

namespace {

struct Rule
{
    QString pattern;
    bool caseInsensitive = false;
    bool anchorsMatchLines = false;
    SQLHighlightRole role = SQLHighlightRole::Plain;
    bool keywordWeight = false;
    // Strings and comments: coloured by their first character, over all earlier colours and
    // weights.
    bool isToken = false;
};

QString wordPattern(QLatin1StringView word)
{
    return u"\\b"_s + word + u"\\b"_s;
}

template<std::size_t N>
QString alternationPattern(const std::array<QLatin1StringView, N> &words)
{
    QStringList list;
    for (const QLatin1StringView word : words)
        list.append(word);
    return u"\\b("_s + list.join(u'|') + u")\\b"_s;
}

std::vector<Rule> editorRules()
{
    std::vector<Rule> rules;
    for (const QLatin1StringView word : highlightKeywords)
        rules.push_back({wordPattern(word), true, false, SQLHighlightRole::Keyword, true});
    for (const QLatin1StringView word : highlightTypes)
        rules.push_back({wordPattern(word), true, false, SQLHighlightRole::Type, false});
    rules.push_back({u"\\b\\d+\\b"_s, true, false, SQLHighlightRole::Number, false});
    rules.push_back({u"'[^']*'|--.*$|/\\*[\\s\\S]*?\\*/"_s, false, true, {}, false, true});
    return rules;
}

std::vector<Rule> readOnlyRules()
{
    return {
        {alternationPattern(highlightKeywords), true, false, SQLHighlightRole::Keyword, true},
        {alternationPattern(highlightTypes), true, false, SQLHighlightRole::Type, false},
        {u"\\b\\d+(?:\\.\\d+)?\\b"_s, true, false, SQLHighlightRole::Number, false},
        {u"'[^']*'|\"[^\"]*\"|--[^\\n]*|/\\*[\\s\\S]*?\\*/"_s, false, false, {}, false, true},
    };
}

// One compiled rule set per engine; match ranges come back as [start, end) pairs.
class RuleSet
{
public:
    explicit RuleSet(std::vector<Rule> rules)
        : m_rules(std::move(rules))
    {
        for (const Rule &rule : m_rules) {
            // ICU
            UErrorCode status = U_ZERO_ERROR;
            uint32_t flags = (rule.caseInsensitive ? UREGEX_CASE_INSENSITIVE : 0) |
                             (rule.anchorsMatchLines ? UREGEX_MULTILINE : 0);
            URegularExpression *icu = uregex_open(reinterpret_cast<const UChar *>(rule.pattern.utf16()),
                                                  int32_t(rule.pattern.size()), flags, nullptr, &status);
            // Long lazy block comments would otherwise run out of ICU's backtracking stack.
            uregex_setStackLimit(icu, 0, &status);
            Q_ASSERT(U_SUCCESS(status));
            m_icu.emplace_back(icu, &uregex_close);
            // PCRE2: Unicode properties for \b and \d; "$" and "." see ICU's line ends only
            // with the (*ANY) newline convention.
            QRegularExpression::PatternOptions options = QRegularExpression::UseUnicodePropertiesOption;
            if (rule.caseInsensitive)
                options |= QRegularExpression::CaseInsensitiveOption;
            if (rule.anchorsMatchLines)
                options |= QRegularExpression::MultilineOption;
            QRegularExpression pcre(u"(*ANY)"_s + rule.pattern, options);
            pcre.optimize();
            Q_ASSERT(pcre.isValid());
            m_pcre.push_back(pcre);
        }
    }

    QList<SQLHighlightSpan> run(QStringView text, SQLHighlightReference::Engine engine) const
    {
        std::vector<SQLHighlightRole> roles(std::size_t(text.size()), SQLHighlightRole::Plain);
        std::vector<bool> weights(std::size_t(text.size()), false);
        const QString copy = text.toString();
        for (std::size_t r = 0; r < m_rules.size(); ++r) {
            const Rule &rule = m_rules[r];
            const auto paint = [&](qsizetype start, qsizetype end) {
                SQLHighlightRole role = rule.role;
                if (rule.isToken)
                    role = text[start] == u'\'' || text[start] == u'"' ? SQLHighlightRole::String
                                                                       : SQLHighlightRole::Comment;
                for (qsizetype i = start; i < end; ++i) {
                    roles[std::size_t(i)] = role;
                    if (rule.keywordWeight)
                        weights[std::size_t(i)] = true;
                    else if (rule.isToken)
                        weights[std::size_t(i)] = false;
                }
            };
            if (engine == SQLHighlightReference::Engine::Icu) {
                URegularExpression *re = m_icu[r].get();
                UErrorCode status = U_ZERO_ERROR;
                uregex_setText(re, reinterpret_cast<const UChar *>(copy.utf16()), int32_t(copy.size()),
                               &status);
                while (uregex_findNext(re, &status))
                    paint(uregex_start(re, 0, &status), uregex_end(re, 0, &status));
                Q_ASSERT(U_SUCCESS(status));
            } else {
                auto matches = m_pcre[r].globalMatch(copy);
                while (matches.hasNext()) {
                    const QRegularExpressionMatch match = matches.next();
                    paint(match.capturedStart(), match.capturedEnd());
                }
            }
        }
        QList<SQLHighlightSpan> spans;
        for (qsizetype i = 0; i < text.size();) {
            const SQLHighlightRole role = roles[std::size_t(i)];
            const bool weight = weights[std::size_t(i)];
            qsizetype end = i + 1;
            while (end < text.size() && roles[std::size_t(end)] == role &&
                   weights[std::size_t(end)] == weight)
                ++end;
            if (role != SQLHighlightRole::Plain || weight)
                spans.append({i, end - i, role, weight});
            i = end;
        }
        return spans;
    }

private:
    std::vector<Rule> m_rules;
    std::vector<std::unique_ptr<URegularExpression, decltype(&uregex_close)>> m_icu;
    std::vector<QRegularExpression> m_pcre;
};

} // namespace

QList<SQLHighlightSpan> SQLHighlightReference::editorSpans(QStringView text, Engine engine)
{
    static const RuleSet rules(editorRules());
    return rules.run(text, engine);
}

QList<SQLHighlightSpan> SQLHighlightReference::highlightedContent(QStringView text, Engine engine)
{
    static const RuleSet rules(readOnlyRules());
    return rules.run(text, engine);
}
