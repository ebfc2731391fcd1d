#include "PictureChooser.h"

#include <common/FormField.h>
#include <common/Note.h>
#include <files/Pathes.h>
#include <models/PlayerModel.h>
#include <settings/Settings.h>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

namespace {

const QString OFFER = QStringLiteral("client/pictures.json"); // a resource of the brand
constexpr int ICON_SIZE = 40;

// Returns the numbers of the pictures that the brand offers.
QVector<int> ReadOffer()
{
    QFile file(Pathes::ToCommonRes(OFFER, false));
    const QByteArray json = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    const QJsonArray offer = QJsonDocument::fromJson(json).array();
    QVector<int> numbers;
    for (const QJsonValue &number : offer)
        numbers.append(number.toInt());
    if (numbers.isEmpty())
        Note(QStringLiteral("The brand's list %1 has no pictures").arg(OFFER), CConsole::MC_General);
    return numbers;
}

void AddPicture(QComboBox *box, int number)
{
    const int entry = box->count();
    box->addItem(box->itemIcon(0), QString(), number);
    Texts::Follow(box, [=] {
        box->setItemText(entry, Texts::Get("OPTIONS_PICTURE", {{"#n#", QString::number(entry)}}));
    });
    // Whoever has a picture downloads it. This player isn't in the table of players, and so isn't stored.
    auto *owner = new CPlayerModel(QString());
    owner->setParent(box);
    QObject::connect(owner, &CPlayerModel::signal_CustomAvatarChanged, box,
                     [=](unsigned int id) { box->setItemIcon(entry, QIcon(Pathes::CustomAvatar(id))); });
    owner->SetNewCustomAvatar(static_cast<unsigned int>(number));
}

} // namespace

QComboBox *CreatePictureChooser(QWidget *parent)
{
    auto *box = new QComboBox(parent);
    box->setIconSize(QSize(ICON_SIZE, ICON_SIZE));
    AddTextItem(box, "OPTIONS_NO_PICTURE", 0);
    QPixmap room(box->iconSize()); // for pictures that come later
    room.fill(Qt::transparent);
    box->setItemIcon(0, room);
    const CSettings *settings = CSettings::GetInstance();
    const auto add = [=](int number) {
        if (number > 0 && box->findData(number) < 0)
            AddPicture(box, number);
    };
    for (const int number : ReadOffer())
        add(number);
    const auto addOwn = [=] { add(settings->GetCustomCurrent()); };
    addOwn();
    QObject::connect(settings, &CSettings::signal_CustomCurrentChanged, box, addOwn); // by another machine
    return box;
}
