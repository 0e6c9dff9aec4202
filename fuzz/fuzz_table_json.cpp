#include <zucore/Logger.h>
#include <zucore/LoggerAbstractAppender.h>
#include <zucore/OldZuAbstractTableModel.h>
#include <zucore/ZuAbstractTableModel.h>

#include <QJsonDocument>
#include <QString>

#include <cstdint>
#include <cstdlib>

namespace {

// Keeps the fallback to standard error quiet: a warning per missing column
// would otherwise dominate the run.
class QuietAppender : public LoggerAbstractAppender
{
protected:
    void append(const QDateTime &, Logger::LogLevel, const char *, int, const char *,
                const QString &, const QString &) override
    { }
};

// Three named fields; counts the records alive so that a lost one aborts.
class Record : public ZuAbstractDataObject
{
public:
    Record()
    {
        fieldValues << QVariant() << QVariant() << QVariant();
        ++alive;
    }
    ~Record() override { --alive; }
    QString fieldName(int column) const override { return QStringLiteral("c%1").arg(column); }
    ZuAbstractDataObject *clone(QObject *parent) const override
    {
        auto *record = new Record;
        record->copy(*this);
        record->setParent(parent);
        return record;
    }
    static int alive;
};
int Record::alive = 0;

class Records : public OldZuAbstractTableModel
{
public:
    int columnCount(const QModelIndex & = QModelIndex()) const override { return 3; }

protected:
    ZuAbstractDataObject *createDataObject() override { return new Record; }
    ZuAbstractDataObject *cloneDataObject(ZuAbstractDataObject *source) override
    {
        return source->clone(nullptr);
    }
};

// The legacy model has no text import: the parsed document goes through its
// JSON imports. Imported rows have snapshots, so edits and revert keep them,
// and removing them must free every record.
void checkLegacyImports(const QJsonDocument &document)
{
    Records model;
    const bool accepted = document.isArray() ? model.insertFromJsonArray(document.array())
                                             : model.insertFromJsonObject(document.object());
    const int expectedRows = document.isArray() ? document.array().size() : 1;
    if (accepted != (expectedRows > 0) || model.rowCount() != expectedRows)
        abort();
    // A few rows are enough: each revert walks the whole table.
    for (int row = 0; row < qMin(model.rowCount(), 8); ++row) {
        ZuAbstractDataObject *record = model.dataObjectAtRow(row);
        const QJsonObject json = record->toJsonObject();
        model.setData(model.index(row, row % 3), QStringLiteral("edited"));
        model.revert();
        if (model.rowCount() != expectedRows || record->toJsonObject() != json)
            abort();
    }
    model.submit();
    if (model.rowCount() > 0 && !model.removeRows(0, model.rowCount()))
        abort();
    if (Record::alive != 0)
        abort();
}

} // namespace

// Arbitrary text through insertFromJsonString on a three-column model. The
// answer must agree with Qt's own parser: refused text leaves the table as it
// was, accepted text adds one row per array element, and the table must
// export and survive a revert; anything else aborts. Parsed documents also go
// through the legacy model's JSON imports.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const bool quiet = [] {
        cuteLoggerInstance()->registerAppender(new QuietAppender);
        return true;
    }();
    Q_UNUSED(quiet)

    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), int(size));
    ZuAbstractTableModel model;
    for (int c = 0; c < 3; ++c)
        model.setHeaderData(c, Qt::Horizontal, QStringLiteral("c%1").arg(c));
    model.insertFromStrings({ "x", "y", "z" });

    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(text.toUtf8(), &error);
    const int expectedRows
        = (!text.isEmpty() && error.error == QJsonParseError::NoError && document.isArray())
        ? document.array().size()
        : 0;
    const bool accepted = model.insertFromJsonString(text);
    if (accepted != (expectedRows > 0) || model.rowCount() != 1 + expectedRows)
        abort();
    if (model.toStringsList().size() != model.rowCount())
        abort();
    model.toJsonString();
    model.revert();
    if (model.rowCount() < 1)
        abort();
    if (!text.isEmpty() && error.error == QJsonParseError::NoError)
        checkLegacyImports(document);
    return 0;
}
