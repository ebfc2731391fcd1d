#pragma once

#include <Export.h>

#include <QList>
#include <QString>

/// Stores the widths of the columns and the order of the rows of tables in the user's settings, each table under its
/// own key. A view owns its header and uses only numbers from here.
///
/// Widths are in pixels. A negative width marks a hidden column, which keeps its value and takes up no space. With an
/// empty key nothing is stored, and the getters return their defaults. CSettings' databases must be initialised. Main
/// thread.
namespace TableView {

/// Returns the stored widths; an empty list if one of them can't be read.
PLUGININTERFACE_EXPORT QList<double> Load(const QString &key);
/// Stores the widths, with fractions cut off.
PLUGININTERFACE_EXPORT void Store(const QString &key, const QList<double> &sizes);

/// Fits widths into \a width. If \a column is negative, all columns are scaled. If it is the index of a column that
/// the user has dragged, the next visible column to its right absorbs the difference, if there is one. No column
/// becomes narrower than 20 pixels, or than an equal share if there is less room.
///
/// If \a sizes and \a defaultSizes differ in number, \a defaultSizes are used. Returns an empty list if there are no
/// columns, if none is visible or has a width, or if \a width is negative. Takes time linear in the number of
/// columns.
PLUGININTERFACE_EXPORT QList<double> Recalculate(double width, QList<double> sizes, QList<double> defaultSizes,
                                                 int column);

/// Returns the index of the column that the rows are sorted by; 0 if none is stored.
PLUGININTERFACE_EXPORT int GetSortingColumn(const QString &key);
/// Stores the index of the column by which the rows are sorted.
PLUGININTERFACE_EXPORT void SetSortingColumn(const QString &key, int column);
/// Returns the order of the rows; false if none is stored.
PLUGININTERFACE_EXPORT bool GetSortingOrder(const QString &key);
/// Stores the order of the rows; the view decides what the two values mean.
PLUGININTERFACE_EXPORT void SetSortingOrder(const QString &key, bool order);

} // namespace TableView
