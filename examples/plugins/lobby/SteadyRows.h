#pragma once

#include <QIdentityProxyModel>

/// The rows of a model for a TableView of QML: a new order is new content of the same rows. For a new layout the view
/// takes all its items down and sets them up again, which lasts more than twice as long as to change their texts.
class CSteadyRows : public QIdentityProxyModel
{
public:
    explicit CSteadyRows(QAbstractItemModel *rows, QObject *parent = nullptr)
        : QIdentityProxyModel(parent)
    {
        setSourceModel(rows);
        disconnect(rows, &QAbstractItemModel::layoutAboutToBeChanged, this, nullptr);
        disconnect(rows, &QAbstractItemModel::layoutChanged, this, nullptr);
        connect(rows, &QAbstractItemModel::layoutChanged, this, [this] {
            if (rowCount() > 0)
                Q_EMIT dataChanged(index(0, 0), index(rowCount() - 1, columnCount() - 1));
        });
    }
};
