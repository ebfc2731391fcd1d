#pragma once

class CHost;
class QMainWindow;
class QWidget;

/// Fills the window's status bar: the state of the connection, transfers, the jackpot, the user and the clock.
/// Returns the line with the user's money, or with a button to log in, which the caller places elsewhere; in QML that
/// line also shows jackpot and user, and the status bar doesn't.
QWidget *CreateStatus(QMainWindow *window, CHost &host);
