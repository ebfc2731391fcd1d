#pragma once

class QMenu;
class QWidget;

/// Menus of which one entry holds: the language of the user, and the time zone. What is chosen goes to the settings.
QMenu *CreateLanguageMenu(QWidget *parent);
QMenu *CreateTimezoneMenu(QWidget *parent);
