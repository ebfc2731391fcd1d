#pragma once

#include <QTabWidget>

class CHost;

/// A page with the messages of the console, and one with the events of the bus.
class CConsoleWindow : public QTabWidget
{
public:
    /// \a host outlives the window.
    CConsoleWindow(CHost &host, QWidget *parent);
};
