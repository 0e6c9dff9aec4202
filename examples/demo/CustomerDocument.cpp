#include "CustomerDocument.h"

#include "CustomerModel.h"

#include <QJsonArray>

CustomerDocument::CustomerDocument(CustomerModel *model, QObject *parent)
    : ZuJsonDocumentFile(parent)
    , m_model(model)
{
    setFileTypeName(QStringLiteral("Customer List"));
    setUseLockFile(true);
    connect(model, &CustomerModel::dataChanged, this, &CustomerDocument::dataWasModified);
    connect(model, &CustomerModel::rowsInserted, this, &CustomerDocument::dataWasModified);
    connect(model, &CustomerModel::rowsRemoved, this, &CustomerDocument::dataWasModified);
}

QString CustomerDocument::defaultFileName() const
{
    return QStringLiteral("customers.json");
}

QJsonDocument CustomerDocument::toJsonDocument()
{
    return QJsonDocument(m_model->toJsonArray());
}

bool CustomerDocument::fromJsonDocument(const QJsonDocument &document)
{
    // Anything but an array of rows (a file that didn't parse arrives as a null document) is
    // refused before the table is touched.
    if (!document.isArray())
        return false;
    const QJsonArray rows = document.array();
    for (const QJsonValue &row : rows) {
        if (!row.isObject())
            return false;
    }
    clearData();
    if (!rows.isEmpty())
        m_model->insertFromJsonArray(rows);
    // The loaded values are the ones that the table's own revert goes back to.
    m_model->submit();
    return true;
}

void CustomerDocument::clearData()
{
    if (m_model->rowCount() > 0)
        m_model->removeRows(0, m_model->rowCount());
    m_model->submit();
}
