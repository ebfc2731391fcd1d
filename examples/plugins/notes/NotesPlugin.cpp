#include <common/FormField.h>
#include <files/Pathes.h>
#include <models/PlayerLists.h>
#include <models/PlayerTaggingModel.h>
#include <models/UserInfo.h>
#include <plugin/PluginInterface.h>
#include <protocol/AccountProtocol.h>
#include <protocol/TableProtocol.h>
#include <settings/PlayerInfo.h>

#include <QtWidgets> //! [plugin]

/// Shows notes on players: those about whom the user has noted something, and those who have spoken at the user's
/// table.
class CNotesPlugin : public CPluginInterface
{
    Q_OBJECT
    Q_PLUGIN_METADATA(IID CPluginInterface_iid)

public:
    QString GetName() const override { return QStringLiteral("notes"); }
    QString GetVersion() const override { return QStringLiteral("1.0"); }
    QStringList GetDependencies() const override { return {}; }
    bool Initialize() override { return true; }
    void Start() override { m_look.start(1000); } // ms
    bool CanClose() override { return true; }
    void Shutdown() override {}

    void RegisterForEvents() override
    {
        RegisterForEvent(QStringLiteral("TABL"), QStringLiteral("SAID")); // said where the user has a seat
    }
    void ReceiveEvent(CEvent e) override
    {
        TableProtocol::SLine line;
        if (m_pPlayers && Payload::Decode(e.data, line, TableProtocol::SAID))
            Add(line.strNickname);
    }

    //! [plugin] [view]
    QWidget *CreateView(QWidget *parent) override
    {
        auto *view = new QWidget(parent);
        Texts::Bind(view, &QWidget::setWindowTitle, "PLAYERS_TITLE");
        m_pPlayers = CreateField<QListWidget>(view, "players");
        m_pPlayers->setSortingEnabled(true);
        auto *nickname = CreateField<QLineEdit>(view, "newPlayer");
        Texts::Bind(nickname, &QLineEdit::setPlaceholderText, "PLAYERS_NICKNAME");
        auto *layout = new QGridLayout(view);
        layout->addWidget(m_pPlayers, 0, 0);
        layout->addWidget(nickname, 1, 0);
        const auto showChosen = [this, layout] {
            delete m_pForm;
            layout->addWidget(m_pForm = new QWidget, 0, 1, 2, 1);
            if (const QListWidgetItem *chosen = m_pPlayers->currentItem())
                FillForm(new QFormLayout(m_pForm), CPlayerModel::GetInstance(chosen->text()));
        };
        connect(m_pPlayers, &QListWidget::currentItemChanged, view, showChosen);
        Texts::Follow(view, showChosen);
        connect(nickname, &QLineEdit::returnPressed, view,
                [this, nickname] { m_pPlayers->setCurrentItem(Add(nickname->text())); });
        connect(nickname, &QLineEdit::returnPressed, nickname, &QLineEdit::clear);
        connect(CUserInfo::GetInstance(), &CUserInfo::signal_LoginStateChanged, view, [this] { ListPlayers(); });
        connect(&m_look, &QTimer::timeout, view, [this, view] { view->isVisible() ? ListPlayers() : void(); });
        ListPlayers();
        return view;
    }

private: //! [view] [list]
    void ListPlayers()
    {
        const CUserInfo *user = CUserInfo::GetInstance();
        m_pPlayers->parentWidget()->setEnabled(user->IsLoggedIn());
        if (!user->IsLoggedIn()) {
            m_items.clear();
            m_pPlayers->clear(); // removes the current player, which deletes the form
        }
        Add(user->GetNickname());
        const auto rows = PlayerInfo::GetSyncList(user->GetNickname(), 0);
        for (const auto &row : rows)
            Add(row.strPlayer);
    }

    QListWidgetItem *Add(const QString &nickname)
    {
        if (!m_items.contains(nickname) && m_pPlayers->isEnabled() && AccountProtocol::IsNickname(nickname))
            m_items.insert(nickname, new QListWidgetItem(nickname, m_pPlayers));
        return m_items.value(nickname, m_pPlayers->currentItem());
    }

    //! [list] [form]
    static void FillForm(QFormLayout *form, CPlayerModel *player)
    {
        auto *note = AddFormField<QPlainTextEdit>(form, "PLAYERS_NOTE", "note");
        note->setTabChangesFocus(true);
        auto *tag = AddFormField<QComboBox>(form, "PLAYERS_TAG", "tag");
        CPlayerTaggingModel *tags = CPlayerTaggingModel::GetInstance();
        for (unsigned int id = 0; id < CPlayerTaggingModel::ulMaxPlayerTags; ++id)
            tag->addItem(tags->GetIcon(id), tags->GetText(id));
        auto *buddy = AddFormField<QCheckBox>(form, "PLAYERS_BUDDY", "buddy");
        auto *rating = AddFormField<QSpinBox>(form, "PLAYERS_RATING", "rating");
        rating->setMaximum(5);
        auto *avatar = AddFormField<QSpinBox>(form, "PLAYERS_AVATAR", "avatar");
        avatar->setMaximum(999999);
        avatar->setKeyboardTracking(false); // each value is one picture to download
        auto *picture = AddFormField<QLabel>(form, "PLAYERS_PICTURE", "picture");

        //! [form] [bindings]
        CPlayerLists *lists = CPlayerLists::GetInstance();
        const auto show = [=] {
            const QSignalBlocker blockers[] = {QSignalBlocker(note), QSignalBlocker(rating), QSignalBlocker(avatar)};
            if (note->toPlainText() != player->GetNotes()) // otherwise the cursor would move
                note->setPlainText(player->GetNotes());
            tag->setCurrentIndex(static_cast<int>(player->GetTagID()));
            buddy->setChecked(player->GetBuddy() || lists->GetBuddyList()->contains(player));
            rating->setValue(player->GetRating());
            avatar->setValue(static_cast<int>(player->GetCustomAvatar()));
            picture->setPixmap(QPixmap(Pathes::CustomAvatar(player->GetCustomAvatar())));
        };
        show();
        connect(player, &CPlayerModel::signal_NotesChanged, form, show);
        connect(player, &CPlayerModel::signal_TagIDChanged, form, show);
        connect(player, &CPlayerModel::signal_BuddyChanged, form, show);
        connect(player, &CPlayerModel::signal_RatingChanged, form, show);
        connect(player, &CPlayerModel::signal_CustomAvatarChanged, form, show);
        connect(note, &QPlainTextEdit::textChanged, player, [=] { player->SetNotes(note->toPlainText()); });
        connect(tag, qOverload<int>(&QComboBox::activated), player, [=](int id) { player->SetTagID(uint(id)); });
        connect(rating, &QSpinBox::textChanged, player, [=] { player->SetRating(uchar(rating->value())); });
        connect(avatar, &QSpinBox::textChanged, player, [=] { player->SetCustomAvatar(uint(avatar->value())); });
        connect(buddy, &QCheckBox::clicked, player, [=](bool on) {
            if (on)
                lists->AddNewBuddy(player);
            else
                lists->RemoveFromBuddyList(player->GetNickname());
        });
    }

    QPointer<QListWidget> m_pPlayers;          // the list of the view, which the host owns
    QPointer<QWidget> m_pForm;                 // a child of the view
    QHash<QString, QListWidgetItem *> m_items; // of the list, by nickname
    QTimer m_look;                             // finds players from another machine, whom no signal announces
    //! [bindings]
};

#include "NotesPlugin.moc"
