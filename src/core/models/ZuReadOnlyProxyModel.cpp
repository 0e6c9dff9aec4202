#include <zucore/ZuReadOnlyProxyModel.h>

ZuReadOnlyProxyModel::ZuReadOnlyProxyModel(QObject *parent)
    : QIdentityProxyModel(parent)
{ }

bool ZuReadOnlyProxyModel::setData(const QModelIndex &, const QVariant &, int)
{
    return false;
}

Qt::ItemFlags ZuReadOnlyProxyModel::flags(const QModelIndex &index) const
{
    return QAbstractProxyModel::flags(index) & ~Qt::ItemIsEditable;
}
