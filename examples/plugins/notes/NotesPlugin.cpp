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

// Opens a message about a player, and doesn't wait for the answer. Its texts are given by their keys.
QMessageBox *OpenMessage(QWidget *parent, const QString &nickname, const char *key,
                         const QVector<QPair<QMessageBox::StandardButton, const char *>> &buttons)
{
    auto *message = new QMessageBox(parent);
    message->setAttribute(Qt::WA_DeleteOnClose);
    message->setWindowTitle(nickname);
    BindText(message, &QMessageBox::setText, key);
    for (const auto &[button, text] : buttons)
        BindText(message->addButton(button), &QPushButton::setText, text);
    message->open();
    return message;
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

// Returns whether it is the nickname of the logged-in user, which the server may spell in another case.
bool IsUser(const QString &nickname)
{
    return nickname.compare(CUserInfo::GetInstance()->GetNickname(), Qt::CaseInsensitive) == 0;
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
        m_pView = new QStackedWidget(parent);
        BindText(m_pView.data(), &QWidget::setWindowTitle, "PLAYERS_TITLE");
        auto *loggedOut = new QLabel;
        loggedOut->setAlignment(Qt::AlignCenter);
        BindText(loggedOut, &QLabel::setText, "PLAYERS_LOG_IN");
        m_pView->addWidget(loggedOut);
        m_pView->addWidget(CreatePlayers());
        connect(CUserInfo::GetInstance(), &CUserInfo::signal_LoginStateChanged, m_pView, [this] { ListPlayers(); });
        connect(&m_look, &QTimer::timeout, m_pView, [this] { m_pView->isVisible() ? ListPlayers() : void(); });
        ListPlayers();
        return m_pView;
    }

private:
    QWidget *CreatePlayers()
    {
        auto *page = new QWidget;
        m_pPlayers = new QListWidget;
        m_pPlayers->setObjectName(QStringLiteral("players"));
        m_pPlayers->setSortingEnabled(true);
        BindText(m_pPlayers.data(), &QWidget::setAccessibleName, "PLAYERS_TITLE");
        auto *nickname = new QLineEdit;
        nickname->setObjectName(QStringLiteral("newPlayer"));
        BindText(nickname, &QLineEdit::setPlaceholderText, "PLAYERS_NICKNAME");
        BindText(nickname, &QWidget::setAccessibleName, "PLAYERS_NICKNAME");
        auto *remove = new QPushButton;
        BindText(remove, &QPushButton::setText, "PLAYERS_REMOVE");
        auto *deleteKey = new QShortcut(QKeySequence(Qt::Key_Delete), m_pPlayers);
        deleteKey->setContext(Qt::WidgetShortcut); // in all other widgets the key deletes text
        auto *layout = new QGridLayout(page);
        layout->setColumnStretch(0, 1);
        layout->setColumnStretch(1, 2);
        layout->addWidget(m_pPlayers, 0, 0);
        layout->addWidget(remove, 1, 0);
        layout->addWidget(nickname, 2, 0);
        const auto showChosen = [this, layout, remove] {
            delete m_pForm;
            layout->addWidget(m_pForm = new QWidget, 0, 1, 3, 1);
            const QListWidgetItem *chosen = m_pPlayers->currentItem();
            remove->setEnabled(chosen != nullptr);
            if (chosen)
                FillForm(new QFormLayout(m_pForm), CPlayerModel::GetInstance(chosen->text()));
        };
        connect(m_pPlayers, &QListWidget::currentItemChanged, page, showChosen);
        FollowLanguage(page, showChosen);
        connect(nickname, &QLineEdit::returnPressed, page, [this, nickname] { AddTyped(nickname); });
        connect(remove, &QPushButton::clicked, page, [this] { AskToRemove(m_pPlayers->currentItem()->text()); });
        connect(deleteKey, &QShortcut::activated, remove, &QPushButton::click);
        return page;
    }

    //! [view] [list]
    void ListPlayers()
    {
        const CUserInfo *user = CUserInfo::GetInstance();
        m_pView->setCurrentIndex(user->IsLoggedIn() ? 1 : 0);
        if (!user->IsLoggedIn()) {
            m_items.clear();
            m_pPlayers->clear(); // removes the current player, which deletes the form
            return;
        }
        const auto rows = PlayerInfo::GetSyncList(user->GetNickname(), 0);
        for (const auto &row : rows) {
            if (!m_items.contains(row.strPlayer) && IsNoted(CPlayerModel::GetInstance(row.strPlayer)))
                Add(row.strPlayer);
        }
    }

    QListWidgetItem *Add(const QString &nickname)
    {
        const bool isAllowed = CUserInfo::GetInstance()->IsLoggedIn() && IsNickname(nickname) && !IsUser(nickname);
        if (isAllowed && !m_items.contains(nickname))
            m_items.insert(nickname, new QListWidgetItem(nickname, m_pPlayers));
        return m_items.value(nickname);
    }

    void AddTyped(QLineEdit *field)
    {
        QListWidgetItem *player = Add(field->text());
        if (!player) {
            const char *reason = IsUser(field->text()) ? "PLAYERS_YOURSELF" : "LOGIN_BAD_NICKNAME";
            OpenMessage(m_pView, field->text(), reason, {{QMessageBox::Ok, "OPTIONS_OK"}});
            return;
        }
        m_pPlayers->setCurrentItem(player);
        field->clear();
    }

    //! [list] [removal]
    void AskToRemove(const QString &nickname)
    {
        if (!IsNoted(CPlayerModel::GetInstance(nickname)))
            return Remove(nickname);
        QMessageBox *question =
            OpenMessage(m_pForm, nickname, "PLAYERS_REMOVE_NOTED",
                        {{QMessageBox::Yes, "PLAYERS_REMOVE"}, {QMessageBox::Cancel, "LOGIN_CANCEL"}});
        question->setDefaultButton(QMessageBox::Cancel);
        // Queued, because it deletes the form, and with it the question that emits the signal.
        const auto remove = [this, nickname] { Remove(nickname); };
        connect(question, &QDialog::accepted, m_pView, remove, Qt::QueuedConnection);
    }

    // The library stores that nothing is noted, and tells the user's other machines.
    void Remove(const QString &nickname)
    {
        CPlayerModel *player = CPlayerModel::GetInstance(nickname);
        player->SetNotes(QString());
        player->SetTagID(0);
        player->SetRating(0);
        player->SetNewCustomAvatar(0); // and not the one that is being downloaded
        SetBuddy(player, false);
        delete m_items.take(nickname);
    }

    static bool IsNoted(CPlayerModel *player)
    {
        return !player->GetNotes().isEmpty() || player->GetTagID() != 0 || player->GetRating() != 0 ||
               player->GetCustomAvatar() != 0 || IsBuddy(player);
    }

    //! [removal] [form]
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
        const auto show = [=] {
            const QSignalBlocker blockers[] = {QSignalBlocker(note), QSignalBlocker(rating), QSignalBlocker(avatar)};
            if (note->toPlainText() != player->GetNotes()) // otherwise the cursor would move
                note->setPlainText(player->GetNotes());
            tag->setCurrentIndex(static_cast<int>(player->GetTagID()));
            buddy->setChecked(IsBuddy(player));
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
        connect(buddy, &QCheckBox::clicked, player, [=](bool on) { SetBuddy(player, on); });
    }

    // A buddy of an earlier login is only in the list.
    static bool IsBuddy(CPlayerModel *player)
    {
        return player->GetBuddy() || CPlayerLists::GetInstance()->GetBuddyList()->contains(player);
    }

    static void SetBuddy(CPlayerModel *player, bool on)
    {
        CPlayerLists *lists = CPlayerLists::GetInstance();
        while (lists->GetBuddyList()->contains(player))
            lists->RemoveFromBuddyList(player->GetNickname());
        if (on)
            lists->AddNewBuddy(player);
        else
            player->SetBuddy(false);
    }

    QPointer<QStackedWidget> m_pView;          // which the host owns
    QPointer<QListWidget> m_pPlayers;          // a child of the view
    QPointer<QWidget> m_pForm;                 // a child of the view
    QHash<QString, QListWidgetItem *> m_items; // of the list, by nickname
    QTimer m_look;                             // finds players from another machine, whom no signal announces
};

#include "NotesPlugin.moc"
//! [bindings]
