#include "PlayersDialog.h"

#include <common/AccountProtocol.h>
#include <common/FormField.h>
#include <database/PlayerInfoDB.h>
#include <files/Pathes.h>
#include <models/PlayerLists.h>
#include <models/PlayerTaggingModel.h>
#include <models/UserInfo.h>
#include <settings/PlayerInfo.h>

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QTimer>

namespace {

constexpr int PICTURE_PIXELS = 96;
constexpr int BEST_RATING = 5;
constexpr int LAST_AVATAR = 999999;
constexpr int LOOK_MS = 500;

} // namespace

CPlayersDialog::CPlayersDialog(QWidget *parent)
    : QDialog(parent)
    , m_pPlayers(CreateField<QListWidget>(this, "players"))
    , m_pNickname(CreateField<QLineEdit>(this, "newPlayer"))
    , m_pFields(new QWidget(this))
    , m_pNote(CreateField<QPlainTextEdit>(m_pFields, "note"))
    , m_pTag(CreateField<QComboBox>(m_pFields, "tag"))
    , m_pBuddy(CreateField<QCheckBox>(m_pFields, "buddy"))
    , m_pRating(CreateField<QSpinBox>(m_pFields, "rating"))
    , m_pAvatar(CreateField<QSpinBox>(m_pFields, "avatar"))
    , m_pPicture(CreateField<QLabel>(m_pFields, "picture"))
{
    Texts::Bind(this, &QWidget::setWindowTitle, "PLAYERS_TITLE");
    CreateList();
    CreateFields();
    ConnectFields();
    connect(CUserInfo::GetInstance(), &CUserInfo::signal_LoginStateChanged, this, &QWidget::close);
    // Nothing tells of players who come from another machine.
    auto *timer = new QTimer(this);
    connect(timer, &QTimer::timeout, this, &CPlayersDialog::ListPlayers);
    timer->start(LOOK_MS);
    List(CUserInfo::GetInstance()->GetNickname());
    m_pPlayers->setCurrentRow(0);
    ListPlayers();
}

void CPlayersDialog::CreateList()
{
    auto *add = new QPushButton(this);
    add->setAutoDefault(false); // Return in another field isn't meant for it
    Texts::Bind(add, &QPushButton::setText, "PLAYERS_ADD");
    Texts::Bind(m_pNickname, &QLineEdit::setPlaceholderText, "PLAYERS_NICKNAME");
    m_pPlayers->setSortingEnabled(true);
    auto *layout = new QGridLayout(this);
    layout->addWidget(m_pPlayers, 0, 0, 1, 2);
    layout->addWidget(m_pNickname, 1, 0);
    layout->addWidget(add, 1, 1);
    layout->addWidget(m_pFields, 0, 2, 2, 1);
    connect(add, &QPushButton::clicked, this, &CPlayersDialog::AddPlayer);
    connect(m_pNickname, &QLineEdit::returnPressed, this, &CPlayersDialog::AddPlayer);
    connect(m_pPlayers, &QListWidget::currentTextChanged, this, &CPlayersDialog::ChoosePlayer);
}

void CPlayersDialog::CreateFields()
{
    m_pNote->setTabChangesFocus(true);
    CreateTags();
    m_pRating->setMaximum(BEST_RATING);
    m_pAvatar->setMaximum(LAST_AVATAR);
    m_pAvatar->setKeyboardTracking(false); // each value is one picture to fetch
    m_pPicture->setFixedSize(PICTURE_PIXELS, PICTURE_PIXELS);
    m_pPicture->setScaledContents(true);
    Texts::Bind(m_pBuddy, &QCheckBox::setText, "PLAYERS_BUDDY");
    auto *form = new QFormLayout(m_pFields);
    AddFormField(form, "PLAYERS_NOTE", m_pNote);
    AddFormField(form, "PLAYERS_TAG", m_pTag);
    form->addRow(QString(), m_pBuddy);
    AddFormField(form, "PLAYERS_RATING", m_pRating);
    AddFormField(form, "PLAYERS_AVATAR", m_pAvatar);
    form->addRow(QString(), m_pPicture);
}

void CPlayersDialog::CreateTags()
{
    m_pTag->setSizeAdjustPolicy(QComboBox::AdjustToContents);
    for (unsigned int tag = 0; tag < CPlayerTaggingModel::ulMaxPlayerTags; ++tag)
        m_pTag->addItem(QString());
    Texts::Follow(this, [this] { ShowTags(); });
    connect(CPlayerTaggingModel::GetInstance(), &CPlayerTaggingModel::signal_PlayerTagsChanged, this,
            &CPlayersDialog::ShowTags);
}

void CPlayersDialog::ShowTags()
{
    CPlayerTaggingModel *tags = CPlayerTaggingModel::GetInstance();
    for (int tag = 0; tag < m_pTag->count(); ++tag) {
        const auto index = static_cast<unsigned int>(tag);
        m_pTag->setItemText(tag, tags->GetText(index));
        m_pTag->setItemIcon(tag, tags->GetIcon(index));
    }
}

void CPlayersDialog::ConnectFields()
{
    connect(m_pNote, &QPlainTextEdit::textChanged, this,
            [this] { Change(&CPlayerModel::SetNotes, m_pNote->toPlainText()); });
    connect(m_pTag, QOverload<int>::of(&QComboBox::currentIndexChanged), this,
            [this](int tag) { Change(&CPlayerModel::SetTagID, static_cast<unsigned int>(tag)); });
    connect(m_pBuddy, &QCheckBox::toggled, this, &CPlayersDialog::SetBuddy);
    connect(m_pRating, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this](int rating) { Change(&CPlayerModel::SetRating, static_cast<unsigned char>(rating)); });
    connect(m_pAvatar, QOverload<int>::of(&QSpinBox::valueChanged), this,
            [this](int id) { m_pPlayer->SetNewCustomAvatar(static_cast<unsigned int>(id)); });
}

template <typename Value>
void CPlayersDialog::Change(void (CPlayerDataModel::*setter)(Value), Value value)
{
    (m_pPlayer->*setter)(value);
}

void CPlayersDialog::ListPlayers()
{
    const QString user = CUserInfo::GetInstance()->GetNickname();
    const unsigned int newest = PlayerInfo::GetLastTimestamp(user);
    if (newest == m_ulListedTime)
        return;
    m_ulListedTime = newest;
    const QString player = QStringLiteral("PIN_cPlayer");
    QList<QHash<QString, QVariant>> rows;
    CPlayerInfoDB::GetInstance()->SelectAll(rows, CPlayerInfoDB::strTableNameInfo, {player},
                                            {{QStringLiteral("PIN_cUser"), user}}, 0);
    for (const auto &row : qAsConst(rows))
        List(row.value(player).toString());
    ShowPlayer(); // who may be on the buddy list by now
}

void CPlayersDialog::List(const QString &nickname)
{
    if (!m_setListed.contains(nickname))
        m_pPlayers->addItem(nickname);
    m_setListed.insert(nickname);
}

void CPlayersDialog::AddPlayer()
{
    const QString nickname = m_pNickname->text();
    if (!AccountProtocol::IsNickname(nickname))
        return;
    m_pNickname->clear();
    List(nickname);
    m_pPlayers->setCurrentItem(
        m_pPlayers->findItems(nickname, Qt::MatchExactly | Qt::MatchCaseSensitive).constFirst());
    m_pNote->setFocus();
}

void CPlayersDialog::ChoosePlayer(const QString &nickname)
{
    if (m_pPlayer)
        m_pPlayer->disconnect(this);
    m_pPlayer = CPlayerModel::GetInstance(nickname);
    const auto show = [this] { ShowPlayer(); };
    connect(m_pPlayer, &CPlayerModel::signal_NotesChanged, this, show);
    connect(m_pPlayer, &CPlayerModel::signal_TagIDChanged, this, show);
    connect(m_pPlayer, &CPlayerModel::signal_BuddyChanged, this, show);
    connect(m_pPlayer, &CPlayerModel::signal_RatingChanged, this, show);
    connect(m_pPlayer, &CPlayerModel::signal_CustomAvatarChanged, this, show);
    ShowPlayer();
}

// A picture that is still on its way shows the one before.
void CPlayersDialog::ShowPlayer()
{
    const QSignalBlocker blockers[] = {QSignalBlocker(m_pNote), QSignalBlocker(m_pTag), QSignalBlocker(m_pBuddy),
                                       QSignalBlocker(m_pRating), QSignalBlocker(m_pAvatar)};
    if (m_pNote->toPlainText() != m_pPlayer->GetNotes()) // else the cursor would leave its place
        m_pNote->setPlainText(m_pPlayer->GetNotes());
    m_pTag->setCurrentIndex(static_cast<int>(m_pPlayer->GetTagID()));
    // One of an earlier login is a buddy by the list alone.
    m_pBuddy->setChecked(m_pPlayer->GetBuddy() || CPlayerLists::GetInstance()->GetBuddyList()->contains(m_pPlayer));
    m_pRating->setValue(m_pPlayer->GetRating());
    m_pAvatar->setValue(static_cast<int>(m_pPlayer->GetCustomAvatar()));
    m_pPicture->setPixmap(QPixmap(Pathes::CustomAvatar(m_pPlayer->GetCustomAvatar())));
}

void CPlayersDialog::SetBuddy(bool buddy)
{
    CPlayerLists *lists = CPlayerLists::GetInstance();
    if (buddy)
        lists->AddNewBuddy(m_pPlayer);
    // Each time that the notes were loaded the buddies got on the list once more.
    while (!buddy && lists->GetBuddyList()->contains(m_pPlayer))
        lists->RemoveFromBuddyList(m_pPlayer->GetNickname());
    Change(&CPlayerModel::SetBuddy, buddy);
    ShowPlayer();
}
