#include <models/UserInfoDataModel.h>
#include <money/MoneySpinnerDataModel.h>

#include <support/Literal.h>
#include <support/Singletons.h>

#include <QMetaProperty>
#include <QtTest>

namespace {

const QString NAME = "Nick"_s;

const QList<QMetaProperty> Properties(const QMetaObject &type)
{
    QList<QMetaProperty> properties;
    for (int index = type.propertyOffset(); index < type.propertyCount(); ++index)
        properties.append(type.property(index));
    return properties;
}

// A value that is nobody's default: for a text the property's name, for a number 1.
QVariant OtherValue(const QMetaProperty &property)
{
    if (property.userType() == qMetaTypeId<CPlayerModel *>())
        return QVariant::fromValue(CPlayerModel::GetInstance(NAME));
    return property.userType() == QMetaType::QString ? QVariant(QLatin1String(property.name())) : QVariant(1);
}

// The fields that a stream carries, as texts.
QStringList Values(const QObject &model, const QMetaObject &type)
{
    QStringList values;
    for (const QMetaProperty &property : Properties(type)) {
        if (property.userType() != qMetaTypeId<CPlayerModel *>())
            values.append(property.isEnumType() ? QString::number(property.read(&model).toInt())
                                                : property.read(&model).toString());
    }
    return values;
}

template <typename Model>
class CLoadable : public Model
{
public:
    void LoadedFromStream() override { ++m_iLoads; }

    int m_iLoads = 0;
};

template <typename... Fields>
QByteArray ToBytes(const Fields &...fields)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    (stream << ... << fields);
    return bytes;
}

// A set field signals once with its value, an equal one never, and so does Reset().
template <typename Model>
void CheckFields()
{
    const QMetaObject &type = Model::staticMetaObject;
    Model model(nullptr);
    const QStringList defaults = Values(model, type);
    for (const QMetaProperty &property : Properties(type)) {
        const QSignalSpy spy(&model, "2" + property.notifySignal().methodSignature());
        for (int time = 0; time < 2; ++time)
            QVERIFY(property.write(&model, OtherValue(property)));
        QCOMPARE(spy.size(), 1);
        QCOMPARE(spy.at(0).at(0).toString(), property.read(&model).toString());
        for (int time = 0; time < 2; ++time)
            model.Reset();
        QCOMPARE(spy.size(), 2);
        QCOMPARE(Values(model, type), defaults);
    }
}

// Whole, and cut at each byte: what isn't there whole has its default, and the status tells.
template <typename Model>
void CheckStream(const QByteArray &expectedBytes)
{
    const QMetaObject &type = Model::staticMetaObject;
    Model source(nullptr);
    const QStringList defaults = Values(source, type);
    for (const QMetaProperty &property : Properties(type))
        property.write(&source, OtherValue(property));
    QCOMPARE(ToBytes(source), expectedBytes);
    const QStringList others = Values(source, type);
    int known = 0;
    for (int length = 0; length <= expectedBytes.size(); ++length) {
        CLoadable<Model> target;
        for (const QMetaProperty &property : Properties(type)) // nothing of it stays
            property.write(&target, OtherValue(property));
        const QSignalSpy first(&target, "2" + Properties(type).at(0).notifySignal().methodSignature());
        QDataStream stream(expectedBytes.left(length));
        stream >> target;
        QCOMPARE(stream.status(), length == expectedBytes.size() ? QDataStream::Ok : QDataStream::ReadPastEnd);
        QCOMPARE(std::pair(target.m_iLoads, int(first.size())), std::pair(1, 0)); // that is the only word of it
        const QStringList values = Values(target, type);
        known += known < others.size() && values.at(known) == others.at(known);
        QCOMPARE(values, others.mid(0, known) + defaults.mid(known));
    }
    QCOMPARE(known, others.size());
}

} // namespace

class tst_players : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void cleanup() { DestroySingletons(); }

    void Fields()
    {
        CheckFields<CPlayerDataModel>();
        CheckFields<CUserInfoDataModel>();
        CheckFields<CMoneySpinnerDataModel>();
        QCOMPARE(CUserInfoDataModel(nullptr).GetAccountCurrency(), GlobalDefines::MONEYTYPE_UNKNOWN);
    }

    void Streams()
    {
        const auto text = [](const char *name) { return QString::fromLatin1(name); };
        CheckStream<CPlayerDataModel>(ToBytes(text("strNickname"), true, text("strInfoText"), quint8(1), quint32(1),
                                              quint16(1), quint32(1), quint8(1), text("strNotes"), true, true, true,
                                              quint32(1)));
        CheckStream<CUserInfoDataModel>(ToBytes(text("strUsername"), text("strPasswordHashed"), qint32(1), quint32(1),
                                                quint32(1), quint32(1), quint32(1), true, true, quint8(1), true,
                                                quint8(1), quint32(1), quint32(1), quint32(1), quint32(1), true));
        CheckStream<CMoneySpinnerDataModel>(ToBytes(
            text("strC2"), text("strC1"), text("strDS"), text("strD1"), text("strD2"), text("strD3"), text("strTS"),
            text("strD4"), text("strD5"), text("strD6"), text("strD7"), text("strCurrency"), true));
    }

    void Lines()
    {
        CUserInfoDataModel user;
        CPlayerModel player(NAME);
        user.SetPlayerModel(&player);
        QString text;
        QDebug(&text) << &user;
        QCOMPARE(text.count(QLatin1Char('\n')), 17 + 12); // the player's in place of the pointer
        QVERIFY(text.contains("\nm_mtAccountCurrency                       : 45 \n"_s));
        user.SetPlayerModel(nullptr);
        QDebug(&text) << user;
        QVERIFY(text.contains("\nm_pPlayerModel                            : none \n"_s));
    }

    void OneModelForANickname()
    {
        QPointer<CPlayerModel> model = CPlayerModel::GetInstance(NAME);
        QCOMPARE(CPlayerLists::GetInstance()->GetPlayerModel(NAME), model.data());
        QVERIFY(CPlayerModel::GetInstance(NAME.toLower()) != model);
        model->SetNickname("renamed"_s); // the key stays
        QVERIFY(CPlayerModel::IsExisting(model));
        CPlayerModel::DestroyInstance(model);
        QVERIFY(!CPlayerModel::IsExisting(NAME));
        QVERIFY(!CPlayerModel::IsExisting(model));
        QVERIFY(model); // until the event loop turns
        QTRY_VERIFY(!model);
        CPlayerModel::DestroyInstance(static_cast<CPlayerModel *>(nullptr));
        QVERIFY(CPlayerModel::IsExisting(NAME.toLower()));
        CPlayerModel::DestroyInstance(NAME.toLower());
        QVERIFY(!CPlayerModel::IsExisting(NAME.toLower()));
    }

    void Buddies()
    {
        CPlayerLists &lists = *CPlayerLists::GetInstance();
        CPlayerModel *buddy = lists.GetPlayerModel(NAME);
        CPlayerModel *other = lists.GetPlayerModel("other"_s);
        lists.AddToBuddyList(buddy);
        QVERIFY(!buddy->GetBuddy());
        lists.AddNewBuddy(buddy);
        lists.AddNewBuddy(other);
        lists.AddToBuddyList(nullptr);
        lists.AddToBuddyList(buddy);
        other->SetOnline(true);
        QCOMPARE(std::pair(lists.GetOnlineBuddiesCount(), lists.GetOfflineBuddiesCount()), std::pair(1, 3));
        lists.RemoveFromBuddyList("nobody"_s);
        QVERIFY(!CPlayerModel::IsExisting("nobody"_s));
        lists.RemoveFromBuddyList(NAME); // the second of two neighbours is passed over
        QCOMPARE(*lists.GetBuddyList(), (QList<CPlayerModel *>{buddy, other, nullptr}));
        QCOMPARE(std::pair(buddy->GetBuddy(), other->GetBuddy()), std::pair(false, true));
        lists.ResetBuddyList();
        QCOMPARE(lists.GetBuddyList()->size(), 0);
        QVERIFY(other->GetBuddy());
    }
};

QTEST_GUILESS_MAIN(tst_players)
#include "tst_players.moc"
