#pragma once

class CHost;
class QMainWindow;
class QWidget;

/// Fills the window's status bar: the state of the link, transfers, the jackpot, the user and the clock. Answers the
/// line with the user's money, to be shown elsewhere; in QML that has jackpot and user too, and the status bar
/// hasn't.
QWidget *CreateStatus(QMainWindow *window, CHost &host);
