#pragma once

class CHost;
class QMainWindow;

/// Adds the menu with the operator's pages, as far as they are configured, and with what the client consists of, to
/// the menu bar. \a window owns the entries; \a host outlives it.
void CreateHelpMenu(QMainWindow *window, CHost &host);
