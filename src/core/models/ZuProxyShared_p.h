#pragma once
// What the library's sort/filter proxies share, without deriving one from the
// other: the natural order of rows over a list of sort columns, and search
// and filter patterns compiled once.

#include "platform/NaturalCompare.h"

#include <QAbstractItemModel>
#include <QHash>
#include <QList>
#include <QMetaMethod>
#include <QRegularExpression>
#include <QSortFilterProxyModel>
#include <QString>

#include <algorithm>

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
 * Puts the rows of a source change in place again when the change covers a
 * sort column of @p sortColumns other than @p proxy's sortColumn(). The base
 * class re-places a changed row only when the change covers the column last
 * given to sort(), while the order depends on every sort column. The change is
 * handed to the base class's own handling once more, widened to that column,
 * so that it re-places those rows as for its sort column (one row costs a
 * binary search, not a sort). Should that handling ever be missing, the whole
 * order is rebuilt instead. Connect it to the source's dataChanged() after the
 * base class's own connection.
 */
inline void placeEditedRows(QSortFilterProxyModel *proxy, const QList<int> &sortColumns,
                            const QModelIndex &topLeft, const QModelIndex &bottomRight)
{
    const int sortColumn = proxy->sortColumn();
    if (!proxy->dynamicSortFilter() || sortColumn < 0 || sortColumns.isEmpty() || !topLeft.isValid()
        || !bottomRight.isValid())
        return;
    if (topLeft.column() <= sortColumn && sortColumn <= bottomRight.column())
        return; // placed already
    const bool touchesOrder = std::any_of(sortColumns.cbegin(), sortColumns.cend(), [&](int c) {
        return topLeft.column() <= c && c <= bottomRight.column();
    });
    if (!touchesOrder)
        return;

    static const QMetaMethod baseHandler = [] {
        const QMetaObject &base = QSortFilterProxyModel::staticMetaObject;
        for (int i = base.methodOffset(); i < base.methodCount(); ++i) {
            if (base.method(i).name() == "_q_sourceDataChanged"
                && base.method(i).parameterCount() == 3)
                return base.method(i);
        }
        return QMetaMethod();
    }();
    const QAbstractItemModel *source = topLeft.model();
    const QModelIndex first
        = source->index(topLeft.row(), qMin(topLeft.column(), sortColumn), topLeft.parent());
    const QModelIndex last = source->index(
        bottomRight.row(), qMax(bottomRight.column(), sortColumn), bottomRight.parent());
    const QVector<int> allRoles;
    if (!baseHandler.isValid() || !first.isValid() || !last.isValid()
        || !baseHandler.invoke(
            proxy, Qt::DirectConnection, Q_ARG(QModelIndex, first), Q_ARG(QModelIndex, last),
            QGenericArgument(baseHandler.parameterTypes().at(2).constData(), &allRoles)))
        proxy->invalidate();
}

/**
 * Keeps @p proxy's rows in the order of @p sortColumns after edits of @p source (see
 * placeEditedRows()). Call it after the base class's setSourceModel(), so that its own handling
 * of a change comes first; disconnect the result before the source changes again.
 */
inline QMetaObject::Connection placeRowsOnEdit(QSortFilterProxyModel *proxy,
                                               QAbstractItemModel *source,
                                               const QList<int> *sortColumns)
{
    if (!source)
        return {};
    return QObject::connect(
        source, &QAbstractItemModel::dataChanged, proxy,
        [proxy, sortColumns](const QModelIndex &topLeft, const QModelIndex &bottomRight) {
            placeEditedRows(proxy, *sortColumns, topLeft, bottomRight);
        });
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
    bool matches(const QString &pattern, const QString &text)
    {
        const Compiled &found = compiled(pattern);
        // A match anywhere, as text.indexOf(expression, 0) != -1 finds it, without QString's
        // own validity check (a lock) for every cell; an invalid expression would also warn.
        return found.valid && found.expression.match(text).hasMatch();
    }

    void clear()
    {
        patterns.clear();
        for (Recent &entry : recent)
            entry = Recent();
    }

private:
    // A pattern compiled once, with its validity asked once: the question takes a lock.
    struct Compiled
    {
        QRegularExpression expression;
        bool valid;
    };
    struct Recent
    {
        const QChar *data = nullptr;
        qsizetype size = 0;
        const Compiled *compiled = nullptr;
    };

    const Compiled &compiled(const QString &pattern)
    {
        // The patterns of a pass are shared copies of a few texts: their data pointer finds the
        // expression without hashing the text for every cell.
        for (const Recent &entry : recent) {
            if (entry.compiled && entry.data == pattern.constData() && entry.size == pattern.size())
                return *entry.compiled;
        }
        auto it = patterns.constFind(pattern);
        if (it == patterns.cend()) {
            // An insertion may move the expressions held: forget where they were.
            for (Recent &entry : recent)
                entry = Recent();
            const QRegularExpression expression(pattern, QRegularExpression::CaseInsensitiveOption);
            it = patterns.insert(pattern, { expression, expression.isValid() });
        }
        recent[nextRecent] = { pattern.constData(), pattern.size(), &*it };
        nextRecent = (nextRecent + 1) % RecentCount;
        return *it;
    }

    QHash<QString, Compiled> patterns;
    static constexpr int RecentCount = 4;
    Recent recent[RecentCount];
    int nextRecent = 0;
};

} // namespace ZuProxyShared
