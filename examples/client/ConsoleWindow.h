#pragma once

#include <QTabWidget>
#include <QTimer>

class CHost;

/// A window with a page for the messages of the console, and one for the events of the bus. It opens where it was
/// last.
class CConsoleWindow : public QTabWidget
{
public:
    /// Constructs the window for a \a host that outlives it.
    CConsoleWindow(CHost &host, QWidget *parent);
    ~CConsoleWindow() override;

protected:
    bool event(QEvent *event) override;

private:
    void RememberPlace();

    QTimer m_placeTimer; // runs while the window is being moved
};
