#pragma once

#include <models/PlayerModel.h>

#include <QDialog>
#include <QPointer>
#include <QSet>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPlainTextEdit;
class QSpinBox;

/// What the user knows of other players: note, tag, buddy, rating and avatar of one of them at a time. What is
/// entered goes to the player's model at once, and what changes there, also on another machine of the user, is shown.
///
/// It belongs to a login and closes with it.
class CPlayersDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CPlayersDialog(QWidget *parent = nullptr);

private:
    void CreateList();
    void CreateFields();
    void ConnectFields();
    void CreateTags();
    void ShowTags();
    void ListPlayers();
    void List(const QString &nickname);
    void AddPlayer();
    void ChoosePlayer(const QString &nickname);
    void ShowPlayer();
    void SetBuddy(bool buddy);
    template <typename Value>
    void Change(void (CPlayerDataModel::*setter)(Value), Value value);

    QListWidget *m_pPlayers; // this and the widgets below are children
    QLineEdit *m_pNickname;
    QWidget *m_pFields;
    QPlainTextEdit *m_pNote;
    QComboBox *m_pTag;
    QCheckBox *m_pBuddy;
    QSpinBox *m_pRating;
    QSpinBox *m_pAvatar;
    QLabel *m_pPicture;
    QPointer<CPlayerModel> m_pPlayer; // the chosen one
    QSet<QString> m_setListed;
    unsigned int m_ulListedTime = 0; // of the newest row that is listed
};
