#pragma once

#include <QString>

/// The commands that build the language file of an installation from the PO files of the translators, and export it
/// again. Each returns the program's exit code.
namespace LanguageCommands {

int Build(const QString &folder, const QString &out);
/// Exports a language file to PO files; replaces existing files only with \a force.
int Export(const QString &path, const QString &folder, bool force);

} // namespace LanguageCommands
