#include "LoginDialog.h"

#include "Host.h"

#include <common/FormField.h>
#include <models/UserInfo.h>
#include <settings/Settings.h>

#include <QDialogButtonBox>
#include <QLineEdit>
#include <QPushButton>

namespace {

constexpr int FIELD_CHARACTERS = 40;
constexpr int MESSAGE_LINES = 3;

} // namespace

CLoginDialog::CLoginDialog(CHost &host, QWidget *parent)
    : QDialog(parent)
    , m_host(host)
    , m_pMessage(CreateField<QLabel>(this, "loginMessage"))
{
    auto *form = new QFormLayout(this);
    m_pNickname = AddFormField<QLineEdit>(form, "LOGIN_NICKNAME", "loginNickname");
    m_pNickname->setText(CSettings::GetInstance()->GetLastUserName());
    m_pNickname->setMinimumWidth(fontMetrics().averageCharWidth() * FIELD_CHARACTERS);
    m_pPassword = AddFormField<QLineEdit>(form, "LOGIN_PASSWORD", "loginPassword");
    m_pPassword->setEchoMode(QLineEdit::Password);
    m_pMessage->setWordWrap(true);
    m_pMessage->setMinimumHeight(fontMetrics().lineSpacing() * MESSAGE_LINES);
    form->addRow(m_pMessage);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    form->addRow(buttons);
    Texts::Bind(buttons->button(QDialogButtonBox::Ok), &QPushButton::setText, "LOGIN_TITLE");
    Texts::Bind(buttons->button(QDialogButtonBox::Cancel), &QPushButton::setText, "LOGIN_CANCEL");
    connect(buttons, &QDialogButtonBox::accepted, this, &CLoginDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CLoginDialog::reject);
    (m_pNickname->text().isEmpty() ? m_pNickname : m_pPassword)->setFocus();
    Texts::Bind(this, &QWidget::setWindowTitle, "LOGIN_TITLE");
    Texts::Follow(this, [this] { ShowMessage(m_strMessageKey); });
    const auto showLink = [this] {
        const bool stands = m_host.GetServerLink().GetState() == EConnectionState::Connected;
        ShowMessage(stands ? QString() : QStringLiteral("LOGIN_NO_LINK"));
    };
    connect(&host, &CHost::signal_ConnectionStateChanged, this, showLink);
    showLink();
    connect(&host.GetSession(), &CSession::signal_LoginRefused, this, &CLoginDialog::ShowRefusal);
    connect(&host.GetSession(), &CSession::signal_LoggedIn, this, [this] {
        CSettings::GetInstance()->SetLastUserName(CUserInfo::GetInstance()->GetNickname());
        QDialog::accept();
    });
}

void CLoginDialog::accept()
{
    if (!AccountProtocol::IsNickname(m_pNickname->text()))
        return ShowRefusal(QStringLiteral("LOGIN_BAD_NICKNAME"));
    ShowMessage(QStringLiteral("LOGIN_ASKING"));
    setEnabled(false);
    m_host.GetSession().LogIn(m_pNickname->text(), AccountProtocol::HashPassword(m_pPassword->text()));
}

void CLoginDialog::reject()
{
    if (!isEnabled())
        return;
    QDialog::reject();
    CUserInfo::GetInstance()->EmitLoginCanceled();
}

void CLoginDialog::ShowMessage(const QString &key)
{
    m_strMessageKey = key;
    m_pMessage->setText(key.isEmpty() ? QString() : Texts::Get(key));
}

void CLoginDialog::ShowRefusal(const QString &key)
{
    setEnabled(true);
    ShowMessage(key);
    m_pPassword->selectAll();
    m_pPassword->setFocus();
}
