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
    , m_pNickname(new QLineEdit(CSettings::GetInstance()->GetLastUserName(), this))
    , m_pPassword(new QLineEdit(this))
    , m_pMessage(new QLabel(this))
{
    Texts::Bind(this, &QWidget::setWindowTitle, "LOGIN_TITLE");
    CreateFields();
    Arrange();
    connect(&m_message, &CTranslationObject::signal_TextChanged, m_pMessage,
            [this] { m_pMessage->setText(m_message.GetTranslatedText()); });
    connect(&host.GetSession(), &CSession::signal_LoggedIn, this, &CLoginDialog::OnLoggedIn);
    connect(&host.GetSession(), &CSession::signal_LoginRefused, this, &CLoginDialog::ShowRefusal);
    connect(&host, &CHost::signal_ConnectionStateChanged, this, &CLoginDialog::ShowLinkState);
    ShowLinkState(host.GetServerLink().GetState());
}

void CLoginDialog::CreateFields()
{
    m_pNickname->setObjectName(QStringLiteral("loginNickname"));
    m_pNickname->setMinimumWidth(fontMetrics().averageCharWidth() * FIELD_CHARACTERS);
    m_pPassword->setObjectName(QStringLiteral("loginPassword"));
    m_pPassword->setEchoMode(QLineEdit::Password);
    m_pMessage->setObjectName(QStringLiteral("loginMessage"));
    m_pMessage->setWordWrap(true);
    m_pMessage->setMinimumHeight(fontMetrics().lineSpacing() * MESSAGE_LINES);
}

void CLoginDialog::Arrange()
{
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    Texts::Bind(buttons->button(QDialogButtonBox::Ok), &QPushButton::setText, "LOGIN_TITLE");
    Texts::Bind(buttons->button(QDialogButtonBox::Cancel), &QPushButton::setText, "LOGIN_CANCEL");
    connect(buttons, &QDialogButtonBox::accepted, this, &CLoginDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CLoginDialog::reject);

    auto *form = new QFormLayout(this);
    AddFormField(form, "LOGIN_NICKNAME", m_pNickname);
    AddFormField(form, "LOGIN_PASSWORD", m_pPassword);
    form->addRow(m_pMessage);
    form->addRow(buttons);
    (m_pNickname->text().isEmpty() ? m_pNickname : m_pPassword)->setFocus();
}

void CLoginDialog::accept()
{
    if (!AccountProtocol::IsNickname(m_pNickname->text())) {
        ShowRefusal(QStringLiteral("LOGIN_BAD_NICKNAME"));
        return;
    }
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
    m_message.SetTranslationKey(key, Texts::Area());
}

void CLoginDialog::ShowRefusal(const QString &key)
{
    setEnabled(true);
    ShowMessage(key);
    m_pPassword->selectAll();
    m_pPassword->setFocus();
}

void CLoginDialog::ShowLinkState(EConnectionState::type state)
{
    if (state == EConnectionState::Connected)
        m_message.SetText(QString());
    else
        ShowMessage(QStringLiteral("LOGIN_NO_LINK"));
}

void CLoginDialog::OnLoggedIn()
{
    CSettings::GetInstance()->SetLastUserName(CUserInfo::GetInstance()->GetNickname(), this);
    QDialog::accept();
}
