#include "ZuTableModelCommon_p.h"
#include "compat/ZuVariantCompare.h"

#include <zucore/Logger.h>
#include <zucore/ZuAbstractTableModel.h>

#include <QJsonDocument>
#include <QJsonParseError>
#include <QJsonValue>

namespace {

using Cell = QPair<QVariant, QVariant>;
using Row = QList<Cell>;

// JSON has one number type: Qt's parser keeps integral numbers as qlonglong, but a
// loaded table holds every number as a double, as JSON gives it.
QVariant jsonToVariant(const QJsonValue &value)
{
    if (value.isDouble())
        return value.toDouble();
    return value.toVariant();
}

} // namespace

ZuAbstractTableModel::ZuAbstractTableModel(QFlags<ZuCore::ModelOption> options, QObject *parent)
    : QAbstractTableModel(parent)
    , modelOptions(options)
{
    setObjectName(QStringLiteral("ZuAbstractTableModel"));
}

ZuAbstractTableModel::~ZuAbstractTableModel() = default;

bool ZuAbstractTableModel::isDirty() const
{
    return dirtyFlag;
}

bool ZuAbstractTableModel::isDirty(const QModelIndex &index) const
{
    if (!index.isValid() || index.row() >= rowCount() || index.column() >= columnCount())
        return false;
    // The storage may disagree with an overridden rowCount()/columnCount();
    // never read past it.
    if (index.row() >= modelRows.size() || index.column() >= modelRows.at(index.row()).size())
        return false;
    const Cell &cell = modelRows.at(index.row()).at(index.column());
    return !ZuCompat::variantEqual(cell.second, cell.first);
}

int ZuAbstractTableModel::rowCount(const QModelIndex &parent) const
{
    return parent.isValid() ? 0 : modelRows.size();
}

int ZuAbstractTableModel::columnCount(const QModelIndex &) const
{
    return headerValues.size();
}

QVariant ZuAbstractTableModel::data(const QModelIndex &index, int role) const
{
    // The model-wide roles answer for any index, even an invalid one.
    if (role == ModelNameRole)
        return objectName();
    if (role == ModelOptionsRole)
        return int(modelOptions);
    if (!index.isValid())
        return QVariant();

    const int row = index.row();
    const int column = index.column();
    // An index of another model (or an override of rowCount()) could point past
    // the storage: answer nothing rather than read out of bounds.
    const Cell *cell = nullptr;
    if (row < modelRows.size() && column < modelRows.at(row).size())
        cell = &modelRows.at(row).at(column);

    switch (role) {
    case Qt::EditRole:
        if (!cell)
            return QVariant();
        return previousOnEdit ? cell->second : cell->first;
    case ItemHintRole: {
        if (!ZuTableModelCommon::hasNote(*this, index))
            return QVariant();
        const int options = data(index, ItemOptionsRole).toInt();
        if (!(options & 1) || (options & 4))
            return ZuTableModelCommon::ItemHintAnswer;
        return QVariant();
    }
    case ItemOptionsRole: {
        int options = 0;
        if (modelOptions.testFlag(ZuCore::ModelOption8))
            options += 2;
        if (modelOptions.testFlag(ZuCore::ModelOption16))
            options += 1;
        return options;
    }
    case PreviousValueRole:
    case PreviousValueRole2:
        return cell ? cell->second : QVariant();
    default:
        return ZuTableModelCommon::commonRoleAnswer(*this, index, role);
    }
}

bool ZuAbstractTableModel::setData(const QModelIndex &index, const QVariant &value, int role)
{
    if (role != Qt::EditRole || !index.isValid())
        return false;
    const int row = index.row();
    const int column = index.column();
    if (row >= rowCount()) {
        LOG_ERROR() << "Invalid Row" << objectName() << row;
        return false;
    }
    if (column >= columnCount()) {
        LOG_ERROR() << "Invalid Column" << objectName() << column;
        return false;
    }
    if (ZuCompat::variantEqual(value, data(index, Qt::EditRole)))
        return false;
    if (row >= modelRows.size() || column >= modelRows.at(row).size())
        return false;

    Cell &cell = modelRows[row][column];
    cell.second = cell.first;
    cell.first = value;
    emit dataChanged(index, index, { Qt::EditRole });
    dirtyFlag = true;
    return true;
}

QVariant ZuAbstractTableModel::headerData(int section, Qt::Orientation orientation, int) const
{
    if (orientation != Qt::Horizontal)
        return QVariant();
    const auto it = headerValues.constFind(section);
    if (it != headerValues.constEnd())
        return it.value();
    LOG_ERROR() << "Header data not set for section" << section;
    return QVariant();
}

bool ZuAbstractTableModel::setHeaderData(int section, Qt::Orientation, const QVariant &value,
                                         int role)
{
    if (role != Qt::EditRole)
        return false;
    headerValues[section] = value;
    return true;
}

bool ZuAbstractTableModel::insertRows(int row, int count, const QModelIndex &)
{
    // A negative count is refused like 0: Qt's begin/end brackets can't express it.
    if (count <= 0 || row < 0 || row > rowCount())
        return false;

    beginInsertRows(QModelIndex(), row, row + count - 1);
    const int columns = columnCount();
    Row fresh;
    fresh.reserve(columns);
    for (int c = 0; c < columns; ++c)
        fresh.append(Cell());
    const int at = qMin(row, modelRows.size());
    for (int i = 0; i < count; ++i)
        modelRows.insert(at + i, fresh);
    endInsertRows();
    dirtyFlag = true;
    return true;
}

bool ZuAbstractTableModel::removeRows(int row, int count, const QModelIndex &)
{
    // Negative positions and counts are refused too, rather than corrupt the list.
    if (count <= 0 || row < 0 || row + count > rowCount())
        return false;

    beginRemoveRows(QModelIndex(), row, row + count - 1);
    const int first = qMin(row, modelRows.size());
    const int last = qMin(row + count, modelRows.size());
    modelRows.erase(modelRows.begin() + first, modelRows.begin() + last);
    endRemoveRows();
    dirtyFlag = true;
    return true;
}

Qt::ItemFlags ZuAbstractTableModel::flags(const QModelIndex &index) const
{
    return ZuTableModelCommon::editableFlags(QAbstractTableModel::flags(index));
}

bool ZuAbstractTableModel::submit()
{
    const int rows = qMin(rowCount(), modelRows.size());
    const int columns = columnCount();
    for (int r = 0; r < rows; ++r) {
        Row &cells = modelRows[r];
        const int n = qMin(columns, cells.size());
        for (int c = 0; c < n; ++c) {
            Cell &cell = cells[c];
            cell.second = cell.first;
        }
    }
    const bool wasDirty = dirtyFlag;
    emit dataSubmitted(wasDirty);
    dirtyFlag = false;
    return true;
}

void ZuAbstractTableModel::revertRow(int row)
{
    if (row < 0 || row >= rowCount() || row >= modelRows.size())
        return;
    const int columns = columnCount();
    const int stored = qMin(columns, modelRows.at(row).size());
    bool changed = false;
    for (int c = 0; c < stored; ++c) {
        // Read without detaching; most cells of a table are unchanged.
        const Cell &cell = modelRows.at(row).at(c);
        if (cell.second.isNull()) {
            // A null previous value marks a row that was never loaded or submitted.
            removeRows(row, 1, QModelIndex());
            return;
        }
        if (!ZuCompat::variantEqual(cell.first, cell.second)) {
            Cell &target = modelRows[row][c];
            target.first = target.second;
            changed = true;
        }
    }
    if (changed)
        emit dataChanged(index(row, 0), index(row, columns - 1), {});
}

void ZuAbstractTableModel::revert()
{
    // From the end, so that removing a new row doesn't shift one still to come.
    for (int row = rowCount() - 1; row >= 0; --row)
        revertRow(row);
    dirtyFlag = false;
}

void ZuAbstractTableModel::clear()
{
    dirtyFlag = false;
    const int rows = rowCount();
    if (rows == 0)
        return;
    removeRows(0, rows, QModelIndex());
    modelRows.clear();
}

bool ZuAbstractTableModel::copy(const QModelIndex &from, const QModelIndex &to)
{
    if (!from.isValid() || !to.isValid())
        return false;
    // Indexes of another model or rows outside the table name no row here: refused before
    // any signal, which would otherwise carry indexes that don't exist.
    const int rows = qMin(rowCount(), modelRows.size());
    if (from.model() != this || to.model() != this || from.row() >= rows || to.row() >= rows)
        return false;
    const int source = from.row();
    const int target = to.row();
    const int columns = columnCount();
    const Row cells = modelRows.at(source); // a copy: source and target may be one row
    Row &targetCells = modelRows[target];
    const int n = qMin(columns, qMin(cells.size(), targetCells.size()));
    for (int c = 0; c < n; ++c)
        targetCells[c].first = cells.at(c).first;
    if (columns > 0)
        emit dataChanged(index(target, 0), index(target, columns - 1), {});
    return true;
}

int ZuAbstractTableModel::itemIsEditable(const QModelIndex &) const
{
    return 1;
}

bool ZuAbstractTableModel::itemIsValid(const QModelIndex &) const
{
    return true;
}

QString ZuAbstractTableModel::itemInvalidReason(const QModelIndex &) const
{
    return ZuTableModelCommon::defaultInvalidReason();
}

// --- export ----------------------------------------------------------------

struct ZuAbstractTableModel::ExportKeys
{
    QStringList keys;
    // Every key with a null value: copying it and replacing the values is far
    // cheaper than growing a fresh object member by member for each row.
    QJsonObject rowTemplate;
};

QString ZuAbstractTableModel::exportKey(int column) const
{
    QVariant key = headerData(column, Qt::Horizontal, Qt::EditRole);
    if (!key.isValid())
        key = headerData(column, Qt::Horizontal, Qt::DisplayRole);
    return key.toString();
}

QJsonObject ZuAbstractTableModel::toJsonObject(int row) const
{
    const int columns = columnCount();
    const ExportKeys *cached
        = (exportKeys && exportKeys->keys.size() == columns) ? exportKeys : nullptr;
    QJsonObject object = cached ? cached->rowTemplate : QJsonObject();
    // What index() gives, decided once per row instead of once per cell.
    const bool rowInside = row >= 0 && row < rowCount();
    for (int c = 0; c < columns; ++c) {
        const QModelIndex cell = rowInside ? createIndex(row, c) : QModelIndex();
        const QJsonValue value = QJsonValue::fromVariant(data(cell, Qt::EditRole));
        // Later columns overwrite earlier ones of the same key, as in a fresh object.
        object.insert(cached ? cached->keys.at(c) : exportKey(c), value);
    }
    return object;
}

QJsonArray ZuAbstractTableModel::toJsonArray() const
{
    // The keys can't change while rows are read: ask the headers once.
    ExportKeys keys;
    const int columns = columnCount();
    keys.keys.reserve(columns);
    for (int c = 0; c < columns; ++c) {
        keys.keys.append(exportKey(c));
        keys.rowTemplate.insert(keys.keys.last(), QJsonValue());
    }
    const ExportKeys *outer = exportKeys;
    exportKeys = &keys;

    QJsonArray array;
    const int rows = rowCount();
    for (int r = 0; r < rows; ++r) {
        const QJsonObject object = toJsonObject(r);
        if (!object.isEmpty())
            array.append(object);
    }
    exportKeys = outer;
    return array;
}

QString ZuAbstractTableModel::toJsonString() const
{
    return QString::fromUtf8(QJsonDocument(toJsonArray()).toJson(QJsonDocument::Compact));
}

QStringList ZuAbstractTableModel::toStrings(int row) const
{
    QStringList strings;
    const int columns = columnCount();
    strings.reserve(columns);
    for (int c = 0; c < columns; ++c)
        strings.append(data(index(row, c), Qt::EditRole).toString());
    return strings;
}

QList<QStringList> ZuAbstractTableModel::toStringsList() const
{
    QList<QStringList> list;
    const int rows = rowCount();
    list.reserve(rows);
    for (int r = 0; r < rows; ++r)
        list.append(toStrings(r));
    return list;
}

// --- import ----------------------------------------------------------------

bool ZuAbstractTableModel::fromJsonObject(int row, const QJsonObject &object)
{
    // A row outside the storage is not written, but the columns are still
    // looked up and reported as for any other row.
    Row *cells = (row >= 0 && row < modelRows.size()) ? &modelRows[row] : nullptr;
    const int columns = columnCount();
    for (int c = 0; c < columns; ++c) {
        QString name = headerData(c, Qt::Horizontal, Qt::DisplayRole).toString();
        auto it = object.constFind(name);
        if (it == object.constEnd()) {
            name = headerData(c, Qt::Horizontal, Qt::EditRole).toString();
            it = object.constFind(name);
        }
        if (it == object.constEnd()) {
            LOG_WARNING() << objectName() << name << "Col name not found in model.";
            continue;
        }
        if (cells && c < cells->size()) {
            Cell &cell = (*cells)[c];
            cell.first = jsonToVariant(it.value());
            cell.second = cell.first; // shares the value's data
        }
    }
    return true;
}

bool ZuAbstractTableModel::insertFromJsonObject(const QJsonObject &object)
{
    const int row = rowCount();
    if (!insertRows(row, 1, QModelIndex())) {
        LOG_ERROR() << objectName() << "Unable to insert rows.";
        return false;
    }
    return fromJsonObject(row, object);
}

bool ZuAbstractTableModel::insertFromJsonArray(const QJsonArray &array)
{
    if (array.isEmpty())
        return false;
    const int first = rowCount();
    const int count = array.size();
    if (!insertRows(first, count, QModelIndex())) {
        LOG_ERROR() << objectName() << "Unable to insert rows.";
        return false;
    }
    int row = first;
    for (const QJsonValue &element : array)
        fromJsonObject(row++, element.toObject());
    const int columns = columnCount();
    // Without columns there is no cell to name in the notification.
    if (columns > 0)
        emit dataChanged(index(first, 0), index(first + count - 1, columns - 1), {});
    dirtyFlag = false;
    return true;
}

bool ZuAbstractTableModel::insertFromJsonString(const QString &json)
{
    if (json.isEmpty())
        return false;
    QJsonParseError parseError;
    QJsonDocument document = QJsonDocument::fromJson(json.toUtf8(), &parseError);
    if (parseError.error != QJsonParseError::NoError) {
        const int code = int(parseError.error);
        LOG_ERROR() << objectName() << code << parseError.errorString();
        emit error(QStringLiteral("Insert Error [%1]").arg(code), parseError.errorString());
        return false;
    }
    if (!document.isArray()) {
        const QString text = QStringLiteral("JSON Document is not an array.");
        LOG_ERROR() << objectName() << "JSON Document is not an array.";
        emit error(QStringLiteral("Insert Error"), text);
        return false;
    }
    // Keep only the array alive while the rows are built: the document is big.
    const QJsonArray array = document.array();
    document = QJsonDocument();
    return insertFromJsonArray(array);
}

bool ZuAbstractTableModel::insertFromStrings(const QStringList &strings)
{
    const int columns = columnCount();
    if (strings.size() != columns) {
        LOG_ERROR() << objectName()
                    << QStringLiteral("Mismatched counts: Items Count = %1  columnCount=%2")
                           .arg(strings.size())
                           .arg(columns);
        return false;
    }
    const int row = rowCount();
    if (!insertRows(row, 1, QModelIndex())) {
        LOG_ERROR() << objectName() << "Unable to insert rows.";
        return false;
    }
    if (row < modelRows.size()) {
        Row &cells = modelRows[row];
        const int n = qMin(columns, cells.size());
        for (int c = 0; c < n; ++c) {
            const QVariant value(strings.at(c));
            cells[c] = Cell(value, value);
        }
    }
    if (columns > 0)
        emit dataChanged(index(row, 0), index(row, columns - 1), {});
    dirtyFlag = true;
    return true;
}

bool ZuAbstractTableModel::insertFromStringsList(const QList<QStringList> &list)
{
    const int columns = columnCount();
    for (int i = 0; i < list.size(); ++i) {
        if (list.at(i).size() != columns) {
            LOG_ERROR() << objectName()
                        << QStringLiteral(
                               "Mismatched counts at index:%1 Items Count = %2  columnCount=%3")
                               .arg(i)
                               .arg(list.at(i).size())
                               .arg(columns);
            return false;
        }
    }
    if (list.isEmpty())
        return false;
    const int first = rowCount();
    const int count = list.size();
    if (!insertRows(first, count, QModelIndex())) {
        LOG_ERROR() << objectName() << "Unable to insert rows.";
        return false;
    }
    for (int i = 0; i < count; ++i) {
        const int row = first + i;
        if (row >= modelRows.size())
            break;
        Row &cells = modelRows[row];
        const QStringList &strings = list.at(i);
        const int n = qMin(columns, cells.size());
        for (int c = 0; c < n; ++c) {
            const QVariant value(strings.at(c));
            cells[c] = Cell(value, value);
        }
    }
    if (columns > 0)
        emit dataChanged(index(first, 0), index(first + count - 1, columns - 1), {});
    dirtyFlag = true;
    return true;
}
