#pragma once

#include <QString>

namespace LanguageCheck {

/// Compares the PO files of a folder and answers the program's exit code. The markers of the language \a reference,
/// by its short form, are those that the others have to have; if it is empty, the one with the lowest id is asked.
int Run(const QString &folder, const QString &reference);

} // namespace LanguageCheck
