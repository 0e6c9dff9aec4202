#pragma once

#include <zucore/ZuJsonDocumentFile.h>

class CustomerModel;

// The customer table as a document: its file holds the table as one JSON array, so that New,
// Open, Save, Save As and Revert work on the whole table, guarded by a lock file. Every change of
// the table marks the document as modified.
class CustomerDocument : public ZuJsonDocumentFile
{
    Q_OBJECT

public:
    explicit CustomerDocument(CustomerModel *model, QObject *parent = nullptr);

    QString defaultFileName() const override;
    QJsonDocument toJsonDocument() override;
    bool fromJsonDocument(const QJsonDocument &document) override;
    void clearData() override;

private:
    CustomerModel *m_model;
};
