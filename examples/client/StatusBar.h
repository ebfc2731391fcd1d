#pragma once

class CHost;
class QMainWindow;
class QWidget;

/// Fills the window's status bar: the state of the connection, transfers, and the clock. Returns the line with the
/// user, the money and the jackpot, or with a button to log in, which the caller places elsewhere.
QWidget *CreateStatus(QMainWindow *window, CHost &host);

/// Creates a banner that says that there is no connection, as long as that is so, with a button to connect at once.
QWidget *CreateOfflineBanner(QWidget *parent, CHost &host);
