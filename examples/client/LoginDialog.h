#pragma once

#include <QDialog>

class CHost;
class QCheckBox;
class QLabel;
class QLineEdit;
class QProgressBar;
class QPushButton;

/// Asks for nickname and password, and whether the user wants to stay logged in, and logs in. The dialog stays open,
/// with its fields disabled, until the server has answered, and shows the reason of a refusal. Closing it cancels the
/// login, also one that waits for its answer.
class CLoginDialog : public QDialog
{
    Q_OBJECT

public:
    /// Constructs the dialog for a \a host that outlives it.
    explicit CLoginDialog(CHost &host, QWidget *parent = nullptr);

    void accept() override;
    void reject() override;

private:
    void SetAsking(bool isAsking);
    void ShowMessage(const QString &key);
    void ShowRefusal(const QString &key);

    CHost &m_host;
    QLineEdit *m_pNickname; // this and the next ones are children
    QLineEdit *m_pPassword;
    QCheckBox *m_pRemember;
    QLabel *m_pMessage;
    QProgressBar *m_pBusy;
    QPushButton *m_pLogIn;
    QString m_strMessageKey; // empty if there is none
};
