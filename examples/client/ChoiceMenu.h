#pragma once

#include <QActionGroup>
#include <QMenu>

/// A menu of which one entry holds. What the user chooses is stored by whoever listens.
class CChoiceMenu : public QMenu
{
    Q_OBJECT

public:
    explicit CChoiceMenu(QWidget *parent = nullptr);

    QAction *AddChoice(const QString &text, int value);
    /// Without signal_Chosen(); does nothing if no entry has the value.
    void SetChosen(int value);

Q_SIGNALS:
    void signal_Chosen(int value);

private:
    QActionGroup m_group;
};

/// The languages of the catalogue; checked is the one in effect.
CChoiceMenu *CreateLanguageMenu(QWidget *parent);
/// The time zones of the clock; checked is the one of the settings.
CChoiceMenu *CreateTimezoneMenu(QWidget *parent);
