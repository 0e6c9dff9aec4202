#pragma once
// A ZuTreeModel built from a one-line shape and read back in the same form,
// shared by the tree model and tree proxy tests:
//   "A=1(a1=11(a1x=111),a2=12),B=2"
// rows separated by ',', children in '(...)', cells by '='. Read back, a cell
// whose current value differs from its previous one ends in '*', and a null
// current value reads '~'.

#include <zucore/ZuAbstractTableModel.h>
#include <zucore/ZuTreeModel.h>

#include <QIdentityProxyModel>
#include <QThread>

template<class Base> class TestTreeOf : public Base
{
public:
    explicit TestTreeOf(const QString &shape = QString(), QFlags<ZuCore::ModelOption> options = {},
                        const QStringList &headers = { "name", "value" })
        : shape(shape)
        , headers(headers)
    {
        this->options = options;
        this->setObjectName("Tree");
    }
    QString shape;
    QStringList headers;
    int slowMs = 0;

    void setupModelData() override
    {
        QThread::msleep(slowMs);
        if (!rootItem)
            rootItem = new ZuTreeItem(cells(headers), nullptr);
        int at = 0;
        parse(rootItem, at);
    }
    bool itemIsValid(const QModelIndex &index) const override
    {
        return this->data(index, Qt::EditRole) != "bad";
    }
    QVariant data(const QModelIndex &index, int role) const override
    {
        if (role == ZuAbstractTableModel::ItemNoteRole)
            return this->data(index, Qt::EditRole).toString().startsWith("note") ? "a note" : "";
        if (role == ZuAbstractTableModel::ItemOptionsRole && itemOptions >= 0)
            return itemOptions;
        if (role == Qt::UserRole + 1) // the selection role of the proxies
            return "selected " + this->data(index, Qt::EditRole).toString();
        return Base::data(index, role);
    }
    int itemOptions = -1; // answered for ItemOptionsRole unless negative
    using Base::dirty;
    using Base::rootItem;

private:
    static QList<ZuTreeItem::Cell> cells(const QStringList &values)
    {
        QList<ZuTreeItem::Cell> list;
        for (const QString &value : values)
            list.append({ value, value });
        return list;
    }
    void parse(ZuTreeItem *parent, int &at)
    {
        while (at < shape.size() && shape.at(at) != ')') {
            int end = at;
            while (end < shape.size() && !QString("(),").contains(shape.at(end)))
                ++end;
            QStringList values = shape.mid(at, end - at).split('=');
            while (values.size() < headers.size())
                values << QString("");
            auto *item = new ZuTreeItem(cells(values.mid(0, headers.size())), parent);
            parent->childItems.append(item);
            at = end;
            if (at < shape.size() && shape.at(at) == '(') {
                parse(item, ++at);
                ++at; // ')'
            }
            if (at < shape.size() && shape.at(at) == ',')
                ++at;
        }
    }
};

using TestTree = TestTreeOf<ZuTreeModel>;
using TestRowEditTree = TestTreeOf<ZuTreeRowEditModel>;

// "0/1" is row 1 under top-level row 0; "-" is the root (the invalid index).
inline QModelIndex at(const QAbstractItemModel &model, const QString &path, int column = 0)
{
    QModelIndex index;
    const QStringList rows = path.split('/');
    for (int i = 0; path != "-" && i < rows.size(); ++i)
        index = model.index(rows.at(i).toInt(), i + 1 < rows.size() ? 0 : column, index);
    return index;
}

// The tree under @p parent of any model in the shape's form.
inline QString dump(const QAbstractItemModel &model, const QModelIndex &parent = QModelIndex())
{
    QStringList rows;
    for (int r = 0; r < model.rowCount(parent); ++r) {
        QStringList values;
        for (int c = 0; c < model.columnCount(parent); ++c) {
            const QModelIndex cell = model.index(r, c, parent);
            const QVariant value = cell.data(Qt::EditRole);
            values << (value.isNull() ? "~" : value.toString())
                    + (value != cell.data(ZuAbstractTableModel::PreviousValueRole) ? "*" : "");
        }
        const QModelIndex first = model.index(r, 0, parent);
        const QString children = model.rowCount(first) ? "(" + dump(model, first) + ")" : "";
        rows << values.join('=') + children;
    }
    return rows.join(',');
}

// QAbstractItemModelTester's rule that a parent with rows gives valid child
// indexes doesn't hold for a ZuTreeModel: rowCount() counts a node's children
// under every column of its row, while index() gives them under column 0 only,
// both as specified (tst_zutreemodel's structure() tests them directly). The
// tester looks at the model through this identity proxy, which hides just
// that: it counts no rows under other columns.
class ColumnZeroRows : public QIdentityProxyModel
{
public:
    explicit ColumnZeroRows(QAbstractItemModel *source) { setSourceModel(source); }
    int rowCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.column() > 0 ? 0 : QIdentityProxyModel::rowCount(parent);
    }
};
