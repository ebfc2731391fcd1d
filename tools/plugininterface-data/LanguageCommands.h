#pragma once

#include <QStringList>

/// The commands that build the language file of an installation from the PO files of the translators, and export it
/// again. Each returns the program's exit code.
namespace LanguageCommands {

int Build(const QString &folder, const QString &out);

struct SExportOptions
{
    bool bForce = false;  ///< replace existing files
    QStringList patterns; ///< PO files whose order and comments the new ones are to have
};

/// Exports a language file to PO files, each like the pattern of the same language, else like the first one.
int Export(const QString &path, const QString &folder, const SExportOptions &options);

} // namespace LanguageCommands
