#include "LoginDialog.h"

#include "Host.h"

#include <common/FormField.h>
#include <models/UserInfo.h>
#include <settings/Settings.h>

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>

namespace {

constexpr int FIELD_CHARACTERS = 40;
constexpr int MESSAGE_LINES = 3;

} // namespace

CLoginDialog::CLoginDialog(CHost &host, QWidget *parent)
    : QDialog(parent)
    , m_host(host)
    , m_pMessage(CreateField<QLabel>(this, "loginMessage"))
    , m_pBusy(CreateField<QProgressBar>(this, "loginBusy"))
{
    auto *form = new QFormLayout(this);
    m_pNickname = AddFormField<QLineEdit>(form, "LOGIN_NICKNAME", "loginNickname");
    m_pNickname->setText(CSettings::GetInstance()->GetLastUserName());
    m_pNickname->setMinimumWidth(fontMetrics().averageCharWidth() * FIELD_CHARACTERS);
    m_pPassword = AddFormField<QLineEdit>(form, "LOGIN_PASSWORD", "loginPassword");
    m_pPassword->setEchoMode(QLineEdit::Password);
    m_pPassword->setMaxLength(AccountProtocol::MAX_PASSWORD_LENGTH);
    m_pRemember = CreateField<QCheckBox>(this, "loginRemember");
    Texts::Bind(m_pRemember, &QCheckBox::setText, "LOGIN_REMEMBER");
    m_pRemember->setChecked(CSettings::GetInstance()->GetRememberPassword());
    form->addRow(m_pRemember);
    m_pMessage->setWordWrap(true);
    m_pMessage->setMinimumHeight(fontMetrics().lineSpacing() * MESSAGE_LINES);
    form->addRow(m_pMessage);
    m_pBusy->setRange(0, 0); // nobody knows how long it takes
    m_pBusy->setTextVisible(false);
    QSizePolicy room = m_pBusy->sizePolicy();
    room.setRetainSizeWhenHidden(true);
    m_pBusy->setSizePolicy(room);
    Texts::Bind(m_pBusy, &QWidget::setAccessibleName, "LOGIN_ASKING");
    form->addRow(m_pBusy);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
    form->addRow(buttons);
    m_pLogIn = buttons->button(QDialogButtonBox::Ok);
    Texts::Bind(m_pLogIn, &QPushButton::setText, "LOGIN_TITLE");
    Texts::Bind(buttons->button(QDialogButtonBox::Cancel), &QPushButton::setText, "LOGIN_CANCEL");
    connect(buttons, &QDialogButtonBox::accepted, this, &CLoginDialog::accept);
    connect(buttons, &QDialogButtonBox::rejected, this, &CLoginDialog::reject);
    SetAsking(false);
    (m_pNickname->text().isEmpty() ? m_pNickname : m_pPassword)->setFocus();
    Texts::Bind(this, &QWidget::setWindowTitle, "LOGIN_TITLE");
    Texts::Follow(this, [this] { ShowMessage(m_strMessageKey); });
    const auto showLink = [this] {
        const CServerLink &link = m_host.GetServerLink();
        const bool stands = link.GetState() == EConnectionState::Connected;
        const char *trouble = link.IsImpostor() ? "LOGIN_IMPOSTOR" : "LOGIN_NO_LINK";
        ShowMessage(stands ? QString() : QString::fromLatin1(trouble));
    };
    connect(&host, &CHost::signal_ConnectionStateChanged, this, showLink);
    connect(&host.GetServerLink(), &CServerLink::signal_ImpostorChanged, this, showLink);
    showLink();
    connect(&host.GetSession(), &CSession::signal_LoginRefused, this, &CLoginDialog::ShowRefusal);
    connect(&host.GetSession(), &CSession::signal_LoggedIn, this, [this] {
        if (!m_pLogIn->isEnabled()) { // it has asked, and it isn't the remembered login
            CSettings::GetInstance()->SetLastUserName(CUserInfo::GetInstance()->GetNickname());
            CSettings::GetInstance()->SetRememberPassword(m_pRemember->isChecked());
        }
        QDialog::accept();
    });
}

void CLoginDialog::accept()
{
    if (!AccountProtocol::IsNickname(m_pNickname->text()))
        return ShowRefusal(QStringLiteral("LOGIN_BAD_NICKNAME"));
    ShowMessage(QStringLiteral("LOGIN_ASKING"));
    SetAsking(true);
    m_host.GetSession().LogIn(m_pNickname->text(), m_pPassword->text(), m_pRemember->isChecked());
}

void CLoginDialog::reject()
{
    m_host.GetSession().CancelLogin();
    QDialog::reject();
    CUserInfo::GetInstance()->EmitLoginCanceled();
}

void CLoginDialog::SetAsking(bool isAsking)
{
    for (QWidget *field : {static_cast<QWidget *>(m_pNickname), static_cast<QWidget *>(m_pPassword),
                           static_cast<QWidget *>(m_pRemember), static_cast<QWidget *>(m_pLogIn)})
        field->setEnabled(!isAsking);
    m_pBusy->setVisible(isAsking);
}

void CLoginDialog::ShowMessage(const QString &key)
{
    m_strMessageKey = key;
    m_pMessage->setText(key.isEmpty() ? QString() : Texts::Get(key));
}

void CLoginDialog::ShowRefusal(const QString &key)
{
    SetAsking(false);
    ShowMessage(key);
    m_pPassword->selectAll();
    m_pPassword->setFocus();
}
