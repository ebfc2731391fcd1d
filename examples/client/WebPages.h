#pragma once

#include <plugin/WebLinks.h>

#include <QString>

class QUrl;

namespace WebPages {

/// Returns the address that the operator has configured for a page; empty if there is none, or no such page.
QString GetAddress(WebLinks::id page);
/// Lets the desktop open a page or file with the program for it; writes to the console if there is none.
void Open(const QUrl &address);

} // namespace WebPages
