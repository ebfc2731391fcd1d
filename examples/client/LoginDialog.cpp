#include "LoginDialog.h"

#include "Host.h"

#include <models/UserInfo.h>
#include <settings/Settings.h>

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

const QLatin1String TEXT_TITLE("Log in");
const QLatin1String TEXT_NICKNAME("&Nickname");
const QLatin1String TEXT_PASSWORD("&Password");
const QLatin1String TEXT_NO_LINK("There is no link to the game server.");
const QLatin1String TEXT_ASKING("Asking the game server ...");
const QLatin1String TEXT_NO_NICKNAME("A nickname has 1 to 32 letters, digits or other signs, with no space around.");
constexpr int FIELD_CHARACTERS = 40;

} // namespace

CLoginDialog::CLoginDialog(CHost &host, QWidget *parent)
    : QDialog(parent)
    , m_host(host)
    , m_pNickname(new QLineEdit(CSettings::GetInstance()->GetLastUserName(), this))
    , m_pPassword(new QLineEdit(this))
    , m_pMessage(new QLabel(this))
{
    setWindowTitle(TEXT_TITLE);
    CreateFields();
    Arrange();
    connect(&host.GetSession(), &CSession::signal_LoggedIn, this, &CLoginDialog::OnLoggedIn);
    connect(&host.GetSession(), &CSession::signal_LoginRefused, this, &CLoginDialog::ShowMessage);
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
    m_pMessage->setTextFormat(Qt::PlainText); // it may be the server's
    m_pMessage->setWordWrap(true);
    m_pMessage->setMinimumHeight(fontMetrics().lineSpacing() * 2);
}

void CLoginDialog::Arrange()
{
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    buttons->button(QDialogButtonBox::Ok)->setText(TEXT_TITLE);
    connect(buttons, &QDialogButtonBox::accepted, this, &CLoginDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CLoginDialog::reject);

    auto *form = new QFormLayout(this);
    form->addRow(TEXT_NICKNAME, m_pNickname);
    form->addRow(TEXT_PASSWORD, m_pPassword);
    form->addRow(m_pMessage);
    form->addRow(buttons);
    (m_pNickname->text().isEmpty() ? m_pNickname : m_pPassword)->setFocus();
}

void CLoginDialog::accept()
{
    if (!AccountProtocol::IsNickname(m_pNickname->text())) {
        ShowMessage(TEXT_NO_NICKNAME);
        return;
    }
    m_pMessage->setText(TEXT_ASKING);
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

void CLoginDialog::ShowMessage(const QString &message)
{
    setEnabled(true);
    m_pMessage->setText(message);
    m_pPassword->selectAll();
    m_pPassword->setFocus();
}

void CLoginDialog::ShowLinkState(EConnectionState::type state)
{
    m_pMessage->setText(state == EConnectionState::Connected ? QString() : TEXT_NO_LINK);
}

void CLoginDialog::OnLoggedIn()
{
    CSettings::GetInstance()->SetLastUserName(CUserInfo::GetInstance()->GetNickname(), this);
    QDialog::accept();
}
