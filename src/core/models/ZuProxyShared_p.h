#pragma once
// What the library's sort/filter proxies share, without deriving one from the
// other: the natural order of rows over a list of sort columns, and search
// and filter patterns compiled once.

#include "platform/NaturalCompare.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QList>
#include <QRegularExpression>
#include <QString>

namespace ZuProxyShared {

/// The display text of a cell; empty for an index without a model.
inline QString displayText(const QModelIndex &index)
{
    return index.isValid() ? index.data(Qt::DisplayRole).toString() : QString();
}

/**
 * Whether the row of source index @p left sorts before the row of @p right:
 * the display texts of @p columns, most significant first, in natural order,
 * each cell taken under @p leftParent and @p rightParent. A column that ties
 * passes on to the next; a tie on every column is not less. Without columns,
 * the texts of @p left and @p right themselves decide.
 */
inline bool naturalLessThan(const QAbstractItemModel *source, const QModelIndex &left,
                            const QModelIndex &right, const QList<int> &columns,
                            const QModelIndex &leftParent, const QModelIndex &rightParent)
{
    if (columns.isEmpty())
        return ZuPlatform::naturalCompare(displayText(left), displayText(right)) == -1;
    for (const int column : columns) {
        const int order = ZuPlatform::naturalCompare(
            displayText(source->index(left.row(), column, leftParent)),
            displayText(source->index(right.row(), column, rightParent)));
        if (order == -1)
            return true;
        if (order != 0)
            return false;
    }
    return false;
}

/**
 * Search and filter patterns: case-insensitive regular expressions, unescaped,
 * matched anywhere in a text. A pattern that doesn't compile matches nothing.
 * Each distinct pattern is compiled once, at its first use, and kept until
 * clear().
 */
class PatternCache
{
public:
    const QRegularExpression &compiled(const QString &pattern)
    {
        auto it = patterns.constFind(pattern);
        if (it == patterns.cend())
            it = patterns.insert(
                pattern, QRegularExpression(pattern, QRegularExpression::CaseInsensitiveOption));
        return *it;
    }

    bool matches(const QString &pattern, const QString &text)
    {
        const QRegularExpression &expression = compiled(pattern);
        // Asking QString with an invalid expression would also warn once per cell.
        return expression.isValid() && text.indexOf(expression, 0) != -1;
    }

    void clear() { patterns.clear(); }

private:
    QHash<QString, QRegularExpression> patterns;
};

} // namespace ZuProxyShared
