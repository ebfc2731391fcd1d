#include "Nearest.h"

#include <QVector>

#include <algorithm>
#include <numeric>

namespace {

// Returns the number of letters to add, remove or change, computed by rows of the usual matrix.
int EditDistance(const QString &from, const QString &to)
{
    QVector<int> row(to.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 0; i < from.size(); ++i) {
        int diagonal = row[0];
        row[0] = i + 1;
        for (int j = 0; j < to.size(); ++j) {
            const int changed = diagonal + (from.at(i) == to.at(j) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, row[j + 1] + 1});
        }
    }
    return row.last();
}

} // namespace

QString Nearest::Find(const QString &word, const QStringList &candidates)
{
    const QString lower = word.toLower();
    auto least = word.size() / 3 + 1;
    QString nearest;
    for (const QString &candidate : candidates) {
        const int distance = EditDistance(lower, candidate.toLower());
        if (distance < least) {
            least = distance;
            nearest = candidate;
        }
    }
    return nearest;
}

QString Nearest::Suggest(const QString &word, const QStringList &candidates)
{
    const QString nearest = Find(word, candidates);
    return nearest.isNull() ? QString() : QLatin1String(", did you mean \"") + nearest + QLatin1String("\"?");
}
