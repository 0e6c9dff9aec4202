#pragma once
// What the two flat table models (cell pairs and data-object rows) answer
// alike. They are sisters, not parent and child, so the shared part lives here
// and each model calls it with itself.

#include <zucore/ZuAbstractTableModel.h>

#include <QModelIndex>
#include <QString>
#include <QVariant>

namespace ZuTableModelCommon {

/// The answer of ItemHintRole where a cell has a note.
constexpr int ItemHintAnswer = 13;

/// What itemInvalidReason() says until a deriving class tells better.
inline QString defaultInvalidReason()
{
    return QStringLiteral(
        "No reason given - reimp ZuAbstractTableModel::modelRowDataInvalidReason");
}

/// Qt's flags plus Qt::ItemIsEditable, and none where Qt gives none: every cell
/// is editable to a view, the per-cell answer travels as ItemEditableRole.
inline Qt::ItemFlags editableFlags(Qt::ItemFlags base)
{
    return base ? (base | Qt::ItemIsEditable) : base;
}

/// Whether a deriving class gave the cell a note text (ItemNoteRole), the first
/// step of ItemHintRole in both models.
template<class Model> bool hasNote(const Model &model, const QModelIndex &index)
{
    return !model.data(index, ZuAbstractTableModel::ItemNoteRole).toString().isEmpty();
}

/// The roles that both models answer the same way for a valid index of
/// @p model, through its virtual operations; an invalid QVariant for any other.
template<class Model>
QVariant commonRoleAnswer(const Model &model, const QModelIndex &index, int role)
{
    switch (role) {
    case Qt::DisplayRole:
        return model.data(index, Qt::EditRole);
    case ZuAbstractTableModel::ItemEditableRole:
        return model.itemIsEditable(index);
    case ZuAbstractTableModel::ItemValidRole:
        return model.itemIsValid(index);
    case ZuAbstractTableModel::RowValidRole: {
        const int columns = model.columnCount();
        for (int c = 0; c < columns; ++c) {
            const QModelIndex cell = model.index(index.row(), c);
            if (!model.data(cell, ZuAbstractTableModel::ItemValidRole).toBool())
                return false;
        }
        return true;
    }
    case ZuAbstractTableModel::ItemEmptyTextRole:
        return QStringLiteral("");
    default:
        return QVariant();
    }
}

} // namespace ZuTableModelCommon
