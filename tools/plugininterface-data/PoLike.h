#pragma once

#include "PoCatalogue.h"
#include "PoFile.h"

/// A PO file whose order and comments another one is to have.
struct SPoPattern
{
    SPoFile file;
    SPoCatalogue catalogue; ///< what was read from the file
};

namespace PoLike {

/// Reads the pattern. Errors are added to the report; false if there are any.
bool Read(const QString &path, SPoPattern &pattern, CReport &report);

/// Returns the PO file of a catalogue, which differs as little as possible from the pattern.
///
/// Entries with the same text are the pattern's, byte for byte. Finished entries that the catalogue lacks are left
/// out. Texts that the pattern lacks follow its last entry, in the order of the catalogue. If the pattern is of the
/// same language, its unfinished and obsolete entries are kept.
QByteArray Render(const SPoPattern &pattern, const SPoCatalogue &catalogue);

} // namespace PoLike
