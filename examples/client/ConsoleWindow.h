#pragma once

#include <QTabWidget>

class CHost;

/// A window with a page for the messages of the console, and one for the events of the bus.
class CConsoleWindow : public QTabWidget
{
public:
    /// Constructs the window for a \a host that outlives it.
    CConsoleWindow(CHost &host, QWidget *parent);
};
