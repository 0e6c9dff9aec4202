#pragma once

#include <zucore/ZuAbstractTableModel.h>

// A table of customers: three declared columns, and a rule that a balance
// can't be negative.
class CustomerModel : public ZuAbstractTableModel
{
    Q_OBJECT

public:
    enum Column { Name, City, Balance };

    explicit CustomerModel(QObject *parent = nullptr);

    bool itemIsValid(const QModelIndex &index) const override;
    QString itemInvalidReason(const QModelIndex &index) const override;
    QVariant data(const QModelIndex &index, int role = Qt::DisplayRole) const override;
    QVariant headerData(int section, Qt::Orientation orientation,
                        int role = Qt::DisplayRole) const override;
};
