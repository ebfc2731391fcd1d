#pragma once

#include <plugin/WebLinks.h>

#include <QString>

namespace WebPages {

/// Returns the address that the operator has configured for a page; empty if there is none, or no such page.
QString GetAddress(WebLinks::id page);

} // namespace WebPages
