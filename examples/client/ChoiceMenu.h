#pragma once

class QMenu;
class QWidget;

/// Creates a menu with one checked entry, the user's language or time zone. The user's choice is stored in the
/// settings.
QMenu *CreateLanguageMenu(QWidget *parent);
QMenu *CreateTimezoneMenu(QWidget *parent);
