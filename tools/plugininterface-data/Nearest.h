#pragma once

#include <QString>
#include <QStringList>

/// Finds the word that somebody has probably meant.
namespace Nearest {

/// Returns the candidate that takes the fewest letters to add, remove or change; null if that is more than a third of
/// \a word.
QString Find(const QString &word, const QStringList &candidates);

/// Returns ", did you mean "..."?", or an empty text if nothing is near.
QString Suggest(const QString &word, const QStringList &candidates);

} // namespace Nearest
