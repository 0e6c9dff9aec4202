#pragma once

#include <zucore/zucore_export.h>

#include <QIdentityProxyModel>

/**
 * @class ZuReadOnlyProxyModel
 * @brief Shows any source model unchanged and refuses every edit through it.
 *
 * @code #include <zucore/ZuReadOnlyProxyModel.h> @endcode
 *
 * Hand a view this proxy for a read-only picture of a model that stays
 * editable through other routes. Only cell edits are refused: row and column
 * changes asked of the proxy still reach the source.
 */
class ZUCORE_EXPORT ZuReadOnlyProxyModel : public QIdentityProxyModel
{
    Q_OBJECT

public:
    /// Makes a proxy without source.
    explicit ZuReadOnlyProxyModel(QObject *parent = nullptr);

    /// Does nothing. @return always false.
    bool setData(const QModelIndex &index, const QVariant &value, int role = Qt::EditRole) override;
    /// @return the source's flags without Qt::ItemIsEditable.
    Qt::ItemFlags flags(const QModelIndex &index) const override;
};
