#pragma once

#include <QString>

namespace LanguageCheck {

/// Compares the PO files of a folder and returns the program's exit code. The others have to have the markers of the
/// language \a reference, given by its short form, or of the language with the lowest id if it is empty.
int Run(const QString &folder, const QString &reference);

} // namespace LanguageCheck
