#pragma once

#include <QDialog>

class CHost;
class QLabel;
class QLineEdit;

/// Asks for nickname and password and logs in. It stays open, and takes no input, until the server has answered, and
/// shows why it was refused. A dialog that is given up cancels the login.
class CLoginDialog : public QDialog
{
    Q_OBJECT

public:
    /// \a host outlives the dialog.
    explicit CLoginDialog(CHost &host, QWidget *parent = nullptr);

    void accept() override;
    void reject() override;

private:
    void ShowMessage(const QString &key);
    void ShowRefusal(const QString &key);

    CHost &m_host;
    QLineEdit *m_pNickname; // this and the next ones are children
    QLineEdit *m_pPassword;
    QLabel *m_pMessage;
    QString m_strMessageKey; // empty if there is none
};
