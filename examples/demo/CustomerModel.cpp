#include "CustomerModel.h"

#include <QBrush>

CustomerModel::CustomerModel(QObject *parent)
    : ZuAbstractTableModel({}, parent)
{
    setObjectName(QStringLiteral("CustomerModel"));
    // The columns must exist before the first row does.
    setHeaderData(Name, Qt::Horizontal, QStringLiteral("name"));
    setHeaderData(City, Qt::Horizontal, QStringLiteral("city"));
    setHeaderData(Balance, Qt::Horizontal, QStringLiteral("balance"));
}

bool CustomerModel::itemIsValid(const QModelIndex &index) const
{
    if (index.column() != Balance)
        return true;
    bool isNumber = false;
    const double balance = index.data(Qt::EditRole).toDouble(&isNumber);
    return isNumber && balance >= 0;
}

QString CustomerModel::itemInvalidReason(const QModelIndex &index) const
{
    return itemIsValid(index) ? QString() : QStringLiteral("A balance is a number, 0 or more.");
}

QVariant CustomerModel::data(const QModelIndex &index, int role) const
{
    // The base class paints nothing: show edited cells and invalid ones here.
    if (role == Qt::BackgroundRole && index.isValid()) {
        if (!itemIsValid(index))
            return QBrush(QColor(255, 200, 200));
        if (isDirty(index))
            return QBrush(QColor(255, 225, 140));
        return QVariant();
    }
    if (role == Qt::ToolTipRole && index.isValid() && !itemIsValid(index))
        return itemInvalidReason(index);
    return ZuAbstractTableModel::data(index, role);
}

QVariant CustomerModel::headerData(int section, Qt::Orientation orientation, int role) const
{
    // The base class answers every role with the column's name, so a view
    // would take it for a size hint or a font too: answer the text roles only.
    if (role != Qt::DisplayRole && role != Qt::EditRole)
        return QVariant();
    if (orientation == Qt::Vertical)
        return section + 1;
    return ZuAbstractTableModel::headerData(section, orientation, role);
}
