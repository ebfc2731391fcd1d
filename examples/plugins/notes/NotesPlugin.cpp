//! [includes]
#include "Fields.h"
#include "PlayerList.h"
#include "StarField.h"

#include <files/Pathes.h>
#include <models/PlayerLists.h>
#include <models/PlayerTaggingModel.h>
#include <models/UserInfo.h>
#include <plugin/PluginInterface.h>
#include <settings/PlayerInfo.h>

#include <QtWidgets>

#include <algorithm>

namespace {

//! [includes] [payload]
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
        QLineEdit *search = CreateLine("PLAYERS_SEARCH", "playerSearch");
        search->setClearButtonEnabled(true);
        m_pPlayers = new CPlayerList(search);
        m_pPlayers->setObjectName(QStringLiteral("players"));
        BindText(m_pPlayers.data(), &QWidget::setAccessibleName, "PLAYERS_TITLE");
        QLineEdit *nickname = CreateLine("PLAYERS_NICKNAME", "newPlayer");
        auto *remove = new QPushButton;
        BindText(remove, &QPushButton::setText, "PLAYERS_REMOVE");
        auto *deleteKey = new QShortcut(QKeySequence(Qt::Key_Delete), m_pPlayers);
        deleteKey->setContext(Qt::WidgetShortcut); // in all other widgets the key deletes text
        auto *findKey = new QShortcut(QKeySequence::Find, page);
        auto *layout = new QGridLayout(page);
        layout->setColumnStretch(0, 1);
        layout->setColumnStretch(1, 2);
        layout->addWidget(search, 0, 0);
        layout->addWidget(m_pPlayers, 1, 0);
        layout->addWidget(remove, 2, 0);
        layout->addWidget(nickname, 3, 0);
        const auto showChosen = [this, layout, remove] {
            delete m_pForm;
            layout->addWidget(m_pForm = new QWidget, 0, 1, -1, 1);
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
        connect(findKey, &QShortcut::activated, search, [search] { search->setFocus(Qt::ShortcutFocusReason); });
        return page;
    }

    //! [view] [list]
    void ListPlayers()
    {
        const CUserInfo *user = CUserInfo::GetInstance();
        m_pView->setCurrentIndex(user->IsLoggedIn() ? 1 : 0);
        if (!user->IsLoggedIn()) {
            m_items.clear();
            m_pPlayers->Forget(); // removes the current player, which deletes the form
            return;
        }
        const auto rows = PlayerInfo::GetSyncList(user->GetNickname(), 0);
        for (const auto &row : rows) {
            if (!m_items.contains(row.strPlayer) && IsNoted(CPlayerModel::GetInstance(row.strPlayer)))
                Add(row.strPlayer);
        }
        m_pPlayers->ShowMarks(); // no signal announces a buddy from another machine
    }

    QListWidgetItem *Add(const QString &nickname)
    {
        const bool isAllowed = CUserInfo::GetInstance()->IsLoggedIn() && IsNickname(nickname) && !IsUser(nickname);
        if (isAllowed && !m_items.contains(nickname))
            m_items.insert(nickname, m_pPlayers->AddPlayer(nickname));
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
        m_pPlayers->Choose(player);
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
    // Returns the label for the picture.
    static QLabel *AddHeading(QFormLayout *form, const QString &nickname)
    {
        auto *picture = new QLabel;
        picture->setObjectName(QStringLiteral("picture"));
        picture->setFixedSize(64, 64); // whatever the file has
        picture->setScaledContents(true);
        BindText(picture, &QWidget::setAccessibleName, "PLAYERS_PICTURE");
        auto *name = new QLabel(nickname);
        name->setTextFormat(Qt::PlainText); // another user chooses it
        name->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
        QFont font = name->font();
        font.setPointSizeF(1.5 * QFontInfo(font).pointSizeF());
        name->setFont(font);
        auto *heading = new QHBoxLayout;
        heading->addWidget(picture);
        heading->addWidget(name, 1);
        form->addRow(heading);
        return picture;
    }

    void FillForm(QFormLayout *form, CPlayerModel *player)
    {
        form->setContentsMargins(form->contentsMargins().left(), 0, 0, 0);
        QLabel *picture = AddHeading(form, player->GetNickname());
        auto *tag = AddField<QComboBox>(form, "PLAYERS_TAG", "tag");
        CPlayerTaggingModel *tags = CPlayerTaggingModel::GetInstance();
        for (unsigned int id = 0; id < CPlayerTaggingModel::ulMaxPlayerTags; ++id)
            tag->addItem(tags->GetIcon(id), tags->GetText(id));
        auto *buddy = AddField<QCheckBox>(form, "PLAYERS_BUDDY", "buddy");
        auto *rating = AddField<CStarField>(form, "PLAYERS_RATING", "rating");
        auto *note = AddField<QPlainTextEdit>(form, "PLAYERS_NOTE", "note");
        note->setTabChangesFocus(true);
        //! [form] [bindings]
        const auto showBuddy = [=] { buddy->setChecked(IsBuddy(player)); };
        const auto show = [=] {
            const QSignalBlocker blockers[] = {QSignalBlocker(note), QSignalBlocker(rating)};
            if (note->toPlainText() != player->GetNotes()) // otherwise the cursor would move
                note->setPlainText(player->GetNotes());
            tag->setCurrentIndex(static_cast<int>(player->GetTagID()));
            rating->setValue(player->GetRating());
            const QPixmap pixmap(Pathes::CustomAvatar(player->GetCustomAvatar()));
            picture->setPixmap(pixmap);
            picture->setVisible(!pixmap.isNull());
            showBuddy();
        };
        show();
        connect(player, &CPlayerModel::signal_NotesChanged, form, show);
        connect(player, &CPlayerModel::signal_TagIDChanged, form, show);
        connect(player, &CPlayerModel::signal_BuddyChanged, form, show);
        connect(player, &CPlayerModel::signal_RatingChanged, form, show);
        connect(player, &CPlayerModel::signal_CustomAvatarChanged, form, show);
        connect(&m_look, &QTimer::timeout, form, showBuddy); // from another machine, as above
        connect(note, &QPlainTextEdit::textChanged, player, [=] { player->SetNotes(note->toPlainText()); });
        connect(tag, qOverload<int>(&QComboBox::activated), player, [=](int id) { player->SetTagID(uint(id)); });
        connect(rating, &CStarField::valueChanged, player, [=](int stars) { player->SetRating(uchar(stars)); });
        connect(buddy, &QCheckBox::clicked, player, [this, player](bool on) { SetBuddy(player, on); });
    }

    void SetBuddy(CPlayerModel *player, bool on)
    {
        CPlayerLists *lists = CPlayerLists::GetInstance();
        while (lists->GetBuddyList()->contains(player))
            lists->RemoveFromBuddyList(player->GetNickname());
        if (on)
            lists->AddNewBuddy(player);
        else
            player->SetBuddy(false);
        m_pPlayers->ShowMarks(); // a buddy of an earlier login ends without a signal
    }

    QPointer<QStackedWidget> m_pView;          // which the host owns
    QPointer<CPlayerList> m_pPlayers;          // a child of the view
    QPointer<QWidget> m_pForm;                 // a child of the view
    QHash<QString, QListWidgetItem *> m_items; // of the list, by nickname
    QTimer m_look;                             // finds players from another machine, whom no signal announces
};

#include "NotesPlugin.moc"
//! [bindings]
