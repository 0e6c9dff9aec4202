#pragma once
// TestTree: a ZuTreeModel built from a shape, "A=1(a1=11(a1x=111),a2=12),B=2", which dump() reads
// back from any model ('*': a changed cell, '~': null); at(model, "0/1"): row 1 under row 0, "-":
// root.

#include <zucore/Logger.h>
#include <zucore/ZuAbstractTableModel.h>
#include <zucore/ZuTreeModel.h>

#include <QAbstractItemModelTester>
#include <QIdentityProxyModel>
#include <QRegularExpression>
#include <QThread>

template<class Base> class TestTreeOf : public Base
{
public:
    explicit TestTreeOf(const QString &shape = QString())
        : shape(shape)
    {
        this->setObjectName("Tree");
    }
    QString shape;
    QStringList headers { "name", "value" };
    int slowMs = 0;
    int itemOptions = -1; // answered for ItemOptionsRole unless negative
    using Base::options, Base::rootItem;

    void setupModelData() override
    {
        QThread::msleep(slowMs);
        auto cells = [this](const QStringList &values) {
            QList<ZuTreeItem::Cell> list;
            for (int i = 0; i < headers.size(); ++i)
                list.append({ values.value(i, ""), values.value(i, "") });
            return list;
        };
        if (!rootItem)
            rootItem = new ZuTreeItem(cells(headers), nullptr);
        QList<ZuTreeItem *> stack { rootItem };
        const QRegularExpression marks(",|(?=[()])|(?<=[()])");
        for (const QString &token : shape.split(marks, Qt::SkipEmptyParts)) {
            if (token == ")")
                stack.removeLast();
            else if (token == "(")
                stack << stack.last()->childItems.last();
            else
                stack.last()->childItems << new ZuTreeItem(cells(token.split('=')), stack.last());
        }
    }
    bool itemIsValid(const QModelIndex &i) const override { return i.data(Qt::EditRole) != "bad"; }
    QVariant data(const QModelIndex &index, int role) const override
    {
        const QString text = Base::data(index, Qt::EditRole).toString();
        if (role == ZuAbstractTableModel::ItemNoteRole)
            return text.startsWith("note") ? "a note" : "";
        if (role == ZuAbstractTableModel::ItemOptionsRole && itemOptions >= 0)
            return itemOptions;
        const bool selection = role == Qt::UserRole + 1; // the proxies' selection role
        return selection ? QVariant("selected " + text) : Base::data(index, role);
    }
};

using TestTree = TestTreeOf<ZuTreeModel>;

inline QModelIndex at(const QAbstractItemModel &model, const QString &path, int column = 0)
{
    QModelIndex index;
    const QStringList rows = path.split('/');
    for (int i = 0; path != "-" && i < rows.size(); ++i)
        index = model.index(rows.at(i).toInt(), i + 1 < rows.size() ? 0 : column, index);
    return index;
}

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
        rows << values.join('=') + (model.rowCount(first) ? "(" + dump(model, first) + ")" : "");
    }
    return rows.join(',');
}

// A ZuTreeModel counts children under every column but indexes them under column 0 only;
// QAbstractItemModelTester wants both to agree, so it looks through this proxy.
class ColumnZeroRows : public QIdentityProxyModel
{
public:
    explicit ColumnZeroRows(QAbstractItemModel *source) { setSourceModel(source); }
    int rowCount(const QModelIndex &parent = QModelIndex()) const override
    {
        return parent.column() > 0 ? 0 : QIdentityProxyModel::rowCount(parent);
    }
};

// A model tester whose reports are gathered, for a proxy that breaks some rules by design:
// unexpected() lists those on rules other than `allowed`, or says that none came (it did not
// watch).
class ReportingTester
{
public:
    ReportingTester(QAbstractItemModel *model, const QString &allowed)
        : allowed(allowed)
        , previous((cuteLoggerInstance(), // the global logger installs its handler when made
                    reports.clear(),
                    qInstallMessageHandler(
                        [](QtMsgType, const QMessageLogContext &c, const QString &message) {
                            if (qstrcmp(c.category, "qt.modeltest") == 0)
                                reports << message;
                        })))
        , tester(model, QAbstractItemModelTester::FailureReportingMode::Warning)
    { }
    ~ReportingTester() { qInstallMessageHandler(previous); }
    QStringList unexpected() const
    {
        if (reports.isEmpty())
            return { "no report seen" };
        return reports.filter(QRegularExpression("^(?![\\s\\S]*(" + allowed + ")\\.isValid)"));
    }

private:
    static inline QStringList reports;
    const QString allowed;
    QtMessageHandler previous;
    QAbstractItemModelTester tester;
};
