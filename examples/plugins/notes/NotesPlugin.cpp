//! [includes]
#include <files/Pathes.h>
#include <models/PlayerLists.h>
#include <models/PlayerTaggingModel.h>
#include <models/UserInfo.h>
#include <plugin/PluginInterface.h>
#include <settings/PlayerInfo.h>
#include <translation/Translation.h>

#include <QtWidgets>

#include <algorithm>

namespace {

//! [includes] [texts]
// Calls a function now and each time that the user chooses another language, while the object exists.
template <typename Function>
void FollowLanguage(QObject *object, const Function &function)
{
    QObject::connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, object, function);
    function();
}

// Passes a text of the catalogue to a setter of the widget, in the user's language.
template <typename Widget, typename Setter>
void BindText(Widget *widget, Setter setter, const char *key)
{
    FollowLanguage(widget, [=] {
        const QString area = QStringLiteral("EXAMPLE");
        (widget->*setter)(CTranslation::GetInstance()->GetTranslatedString(QLatin1String(key), area, -1));
    });
}

// Adds a field to a form, with a label, and with an object name, by which tests find it.
template <typename Field>
Field *AddField(QFormLayout *form, const char *key, const char *name)
{
    auto *field = new Field;
    field->setObjectName(QLatin1String(name));
    auto *label = new QLabel;
    label->setBuddy(field);
    BindText(label, &QLabel::setText, key);
    form->addRow(label, field);
    return field;
}

//! [texts] [payload]
// Returns the speaker of a line that somebody has said, or an empty text if the payload isn't such a line. It has a
// tag, the table's number in 32 bits, the line and the speaker, and more. A text has its number of bytes in 16 bits.
QString GetSpeaker(const QByteArray &payload)
{
    QDataStream stream(payload);
    stream.setByteOrder(QDataStream::LittleEndian);
    quint16 length = 0;
    stream.skipRawData(8);
    stream >> length;
    stream.skipRawData(length);
    stream >> length;
    QByteArray nickname(length, '\0');
    stream.readRawData(nickname.data(), length);
    return stream.status() == QDataStream::Ok ? QString::fromUtf8(nickname) : QString();
}

// Returns whether a text can be a nickname: 1 to 32 printable characters, without a space at either end.
bool IsNickname(const QString &text)
{
    return !text.isEmpty() && text.size() <= 32 && text == text.trimmed() &&
           std::all_of(text.begin(), text.end(), [](QChar character) { return character.isPrint(); });
}

} // namespace

//! [payload] [plugin]
// Shows notes on players: those about whom the user has noted something, and those who have spoken at the user's
// table.
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
        if (m_pPlayers && e.HasTags("TABL", "SAID"))
            Add(GetSpeaker(e.data));
    }

    //! [plugin] [view]
    QWidget *CreateView(QWidget *parent) override
    {
        auto *view = new QWidget(parent);
        BindText(view, &QWidget::setWindowTitle, "PLAYERS_TITLE");
        m_pPlayers = new QListWidget;
        m_pPlayers->setObjectName(QStringLiteral("players"));
        m_pPlayers->setSortingEnabled(true);
        auto *nickname = new QLineEdit;
        nickname->setObjectName(QStringLiteral("newPlayer"));
        BindText(nickname, &QLineEdit::setPlaceholderText, "PLAYERS_NICKNAME");
        BindText(nickname, &QLineEdit::setAccessibleName, "PLAYERS_NICKNAME");
        BindText(m_pPlayers.data(), &QListWidget::setAccessibleName, "PLAYERS_TITLE");
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
        FollowLanguage(view, showChosen);
        connect(nickname, &QLineEdit::returnPressed, view,
                [this, nickname] { m_pPlayers->setCurrentItem(Add(nickname->text())); });
        connect(nickname, &QLineEdit::returnPressed, nickname, &QLineEdit::clear);
        connect(CUserInfo::GetInstance(), &CUserInfo::signal_LoginStateChanged, view, [this] { ListPlayers(); });
        connect(&m_look, &QTimer::timeout, view, [this, view] { view->isVisible() ? ListPlayers() : void(); });
        ListPlayers();
        return view;
    }

    //! [view] [list]
private:
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
        if (!m_items.contains(nickname) && m_pPlayers->isEnabled() && IsNickname(nickname))
            m_items.insert(nickname, new QListWidgetItem(nickname, m_pPlayers));
        return m_items.value(nickname, m_pPlayers->currentItem());
    }

    //! [list] [form]
    static void FillForm(QFormLayout *form, CPlayerModel *player)
    {
        auto *note = AddField<QPlainTextEdit>(form, "PLAYERS_NOTE", "note");
        note->setTabChangesFocus(true);
        auto *tag = AddField<QComboBox>(form, "PLAYERS_TAG", "tag");
        CPlayerTaggingModel *tags = CPlayerTaggingModel::GetInstance();
        for (unsigned int id = 0; id < CPlayerTaggingModel::ulMaxPlayerTags; ++id)
            tag->addItem(tags->GetIcon(id), tags->GetText(id));
        auto *buddy = AddField<QCheckBox>(form, "PLAYERS_BUDDY", "buddy");
        auto *rating = AddField<QSpinBox>(form, "PLAYERS_RATING", "rating");
        rating->setMaximum(5);
        auto *avatar = AddField<QSpinBox>(form, "PLAYERS_AVATAR", "avatar");
        avatar->setMaximum(999999);
        avatar->setKeyboardTracking(false); // each value is one picture to download
        auto *picture = AddField<QLabel>(form, "PLAYERS_PICTURE", "picture");
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
};

#include "NotesPlugin.moc"
//! [bindings]
