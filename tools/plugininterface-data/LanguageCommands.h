#pragma once

#include <QString>

/// The commands that turn the PO files of the translators into the language file of an installation, and back. Each
/// answers the program's exit code.
namespace LanguageCommands {

int Build(const QString &folder, const QString &out);
/// Replaces PO files that are there already only if told so by \a force.
int Export(const QString &path, const QString &folder, bool force);

} // namespace LanguageCommands
