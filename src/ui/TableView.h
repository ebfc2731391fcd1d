#pragma once

#include <Export.h>

#include <QList>
#include <QString>

/// The memory of tables: widths of the columns and the order of the rows, each table under a key of its own in the
/// user's settings. A view owns its header and asks here for numbers alone.
///
/// Widths are pixels. A negative one marks a hidden column, which keeps its value and takes no room. With an empty
/// key nothing is stored, and the getters answer their defaults. CSettings' databases have to be initialised. Thread
/// of the user interface.
namespace TableView {

/// The stored widths; none at all if one of them can't be read.
PLUGININTERFACE_EXPORT QList<double> Load(const QString &key);
/// Fractions are cut off.
PLUGININTERFACE_EXPORT void Store(const QString &key, const QList<double> &sizes);

/// Fits widths into \a width. With a negative \a column all are scaled; with the index of a column that the user has
/// dragged, the next visible one to its right takes up what is missing or too much, unless there is none. No column
/// gets narrower than 20 pixels, or than an equal share where there is less room.
///
/// \a sizes that are not as many as \a defaultSizes are replaced by those. Empty if there are no columns, none that
/// is visible, none with a width, or if \a width is negative. Time is linear in the number of columns.
PLUGININTERFACE_EXPORT QList<double> Recalculate(double width, QList<double> sizes, QList<double> defaultSizes,
                                                 int column);

/// 0 if none is stored.
PLUGININTERFACE_EXPORT int GetSortingColumn(const QString &key);
/// Stores the index of the column by which the rows are sorted.
PLUGININTERFACE_EXPORT void SetSortingColumn(const QString &key, int column);
/// False if none is stored.
PLUGININTERFACE_EXPORT bool GetSortingOrder(const QString &key);
/// Stores the order; what the two values mean is the view's.
PLUGININTERFACE_EXPORT void SetSortingOrder(const QString &key, bool order);

} // namespace TableView
