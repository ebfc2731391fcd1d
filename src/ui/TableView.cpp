#include "TableView.h"

#include <settings/Settings.h>

#include <QStringList>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double MINIMUM_WIDTH = 20;
// More rounds than EnforceMinimum() ever needs, unless rounding errors keep it running.
constexpr qint64 MAX_ROUNDS = 4;

// Converts a width to an int, within the range that can be stored.
int ToPixels(double size)
{
    constexpr double most = std::numeric_limits<int>::max();
    return std::isnan(size) ? 0 : static_cast<int>(qBound(-most, size, most));
}

bool IsVisible(double size)
{
    return size >= 0;
}

// Distributes the remaining pixels one by one over the visible columns, whole rounds at once.
void GiveOut(double left, const QList<double> &sizes, QList<double> &widths)
{
    if (!(left > 0))
        return;
    const double pixels = std::ceil(left);
    const double visible = static_cast<double>(std::count_if(sizes.cbegin(), sizes.cend(), IsVisible));
    const double rounds = std::floor(pixels / visible);
    double rest = pixels - rounds * visible;
    for (int column = 0; column < sizes.size(); ++column) {
        if (!IsVisible(sizes.at(column)))
            continue;
        widths[column] += rounds + (rest > 0 ? 1 : 0);
        --rest;
    }
}

QList<double> Scale(double width, double total, const QList<double> &sizes)
{
    const double factor = width / total;
    const bool same = !(factor < 1) && !(factor > 1);
    QList<double> widths = sizes;
    double left = width;
    for (double &size : widths) {
        if (!IsVisible(size))
            continue;
        size = same ? size : std::floor(size * factor);
        left -= size;
    }
    GiveOut(left, sizes, widths);
    return widths;
}

// The width of the neighbour may become negative.
QList<double> AdjustNeighbour(double surplus, const QList<double> &sizes, int column)
{
    QList<double> widths = sizes;
    for (int neighbour = column + 1; neighbour < widths.size(); ++neighbour) {
        if (IsVisible(widths.at(neighbour))) {
            widths[neighbour] -= surplus;
            break;
        }
    }
    return widths;
}

// Widens columns that are too narrow, each at the expense of the next column, in a circle that ends one round after
// the last such column.
void EnforceMinimum(double width, const QList<double> &sizes, int first, QList<double> &widths)
{
    const int count = static_cast<int>(widths.size());
    const double minimum = qMin(MINIMUM_WIDTH, std::floor(width / count));
    int stop = first;
    int i = first;
    double debt = 0;
    qint64 steps = 0;
    do {
        if (IsVisible(sizes.at(i))) {
            double &size = widths[i];
            if (debt > 0)
                size -= debt;
            debt = 0;
            if (size < minimum) {
                debt = minimum - size;
                size = minimum;
                stop = i;
            }
        }
        i = (i + 1) % count;
    } while (i != stop && ++steps < MAX_ROUNDS * count);
}

} // namespace

QList<double> TableView::Load(const QString &key)
{
    if (key.isEmpty())
        return {};
    QList<double> sizes;
    const QStringList parts =
        CSettings::GetInstance()->GetHeaderSizesByKey(key).split(QLatin1Char(','), Qt::SkipEmptyParts);
    for (const QString &part : parts) {
        bool good = false;
        sizes.append(part.toInt(&good));
        if (!good)
            return {};
    }
    return sizes;
}

void TableView::Store(const QString &key, const QList<double> &sizes)
{
    if (key.isEmpty())
        return;
    QStringList parts;
    for (const double size : sizes)
        parts.append(QString::number(ToPixels(size)));
    CSettings::GetInstance()->SetHeaderSizesByKey(key, parts.join(QLatin1Char(',')));
}

QList<double> TableView::Recalculate(double width, QList<double> sizes, QList<double> defaultSizes, int column)
{
    if (width < 0 || defaultSizes.isEmpty())
        return {};
    if (sizes.size() != defaultSizes.size())
        sizes = defaultSizes;
    double total = 0;
    int last = -1;
    for (int i = 0; i < sizes.size(); ++i) {
        if (!IsVisible(sizes.at(i)))
            continue;
        total += sizes.at(i);
        last = i;
    }
    if (!(total > 0))
        return {};
    const bool dragged = column >= 0 && column < last; // otherwise no neighbour can absorb the change
    QList<double> widths = dragged ? AdjustNeighbour(total - width, sizes, column) : Scale(width, total, sizes);
    EnforceMinimum(width, sizes, dragged ? column : 0, widths);
    return widths;
}

int TableView::GetSortingColumn(const QString &key)
{
    return key.isEmpty() ? 0 : CSettings::GetInstance()->GetHeaderSortingColumnByKey(key);
}

void TableView::SetSortingColumn(const QString &key, int column)
{
    if (!key.isEmpty())
        CSettings::GetInstance()->SetHeaderSortingColumnByKey(key, column);
}

bool TableView::GetSortingOrder(const QString &key)
{
    return !key.isEmpty() && CSettings::GetInstance()->GetHeaderSortingOrderByKey(key);
}

void TableView::SetSortingOrder(const QString &key, bool order)
{
    if (!key.isEmpty())
        CSettings::GetInstance()->SetHeaderSortingOrderByKey(key, order);
}
