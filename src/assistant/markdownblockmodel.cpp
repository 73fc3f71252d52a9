#include "markdownblockmodel.h"

#include "inlinemarkdown.h"
#include "markdownsplitter.h"

MarkdownBlockModel::MarkdownBlockModel(QObject *parent)
    : QAbstractListModel(parent)
{}

void MarkdownBlockModel::setContent(const QString &content)
{
    if (content == m_content && !m_rows.isEmpty())
        return;
    m_content = content;
    Q_EMIT contentChanged();
    const QList<MarkdownBlock> blocks = parseBlocks(content);
    const qsizetype common = std::min(blocks.size(), m_rows.size());
    for (qsizetype i = 0; i < common; ++i) {
        Row &row = m_rows[i];
        const MarkdownBlock &block = blocks.at(i);
        if (row.block == block)
            continue;
        row.block = block;
        row.shownText = block.kind == MarkdownBlock::Kind::Text ? markdownTextToRichText(block.text) : block.text;
        const QModelIndex changed = index(int(i));
        Q_EMIT dataChanged(changed, changed);
    }
    if (blocks.size() > m_rows.size()) {
        beginInsertRows({}, int(m_rows.size()), int(blocks.size() - 1));
        for (qsizetype i = m_rows.size(); i < blocks.size(); ++i) {
            const MarkdownBlock &block = blocks.at(i);
            m_rows.append({block, block.kind == MarkdownBlock::Kind::Text ? markdownTextToRichText(block.text)
                                                                           : block.text});
        }
        endInsertRows();
        Q_EMIT countChanged();
    } else if (blocks.size() < m_rows.size()) {
        beginRemoveRows({}, int(blocks.size()), int(m_rows.size() - 1));
        m_rows.resize(blocks.size());
        endRemoveRows();
        Q_EMIT countChanged();
    }
}

void MarkdownBlockModel::clear()
{
    m_content.clear();
    if (m_rows.isEmpty())
        return;
    beginResetModel();
    m_rows.clear();
    endResetModel();
    Q_EMIT countChanged();
}

int MarkdownBlockModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : int(m_rows.size());
}

QVariant MarkdownBlockModel::data(const QModelIndex &index, int role) const
{
    if (!checkIndex(index, CheckIndexOption::IndexIsValid | CheckIndexOption::ParentIsInvalid))
        return {};
    const Row &row = m_rows.at(index.row());
    switch (role) {
    case IsCodeRole:
        return row.block.kind == MarkdownBlock::Kind::CodeBlock;
    case TextRole:
        return row.shownText;
    case LanguageRole:
        return row.block.language;
    case IsApplicableRole:
        return row.block.kind == MarkdownBlock::Kind::CodeBlock && row.block.isApplicable();
    default:
        return {};
    }
}

QHash<int, QByteArray> MarkdownBlockModel::roleNames() const
{
    return {{IsCodeRole, "isCode"}, {TextRole, "text"}, {LanguageRole, "language"}, {IsApplicableRole, "isApplicable"}};
}
