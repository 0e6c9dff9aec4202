#include <zucore/ZuManualSubmitProxyModel.h>

ZuManualSubmitProxyModel::ZuManualSubmitProxyModel(QObject *parent)
    : QIdentityProxyModel(parent)
{ }

ZuManualSubmitProxyModel::~ZuManualSubmitProxyModel() = default;

bool ZuManualSubmitProxyModel::submit()
{
    return true;
}

void ZuManualSubmitProxyModel::revert() { }

bool ZuManualSubmitProxyModel::submitAll()
{
    QAbstractItemModel *source = sourceModel();
    return source && source->submit();
}

void ZuManualSubmitProxyModel::revertAll()
{
    if (QAbstractItemModel *source = sourceModel())
        source->revert();
}
