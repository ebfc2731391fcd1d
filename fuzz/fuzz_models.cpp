// Data models serialised by QDataStream: a model that was read is written and read again unchanged.

#include "Fuzz.h"

#include <models/PlayerDataModel.h>
#include <models/UserInfoDataModel.h>
#include <money/MoneySpinnerDataModel.h>

#include <QDataStream>

namespace {

template <typename Model>
QByteArray Write(const Model &model)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    stream << model;
    return bytes;
}

template <typename Model>
void ReadModel(const QByteArray &bytes)
{
    Model model;
    QDataStream first(bytes);
    first >> model;
    const QByteArray written = Write(model);
    Model again;
    QDataStream stream(written);
    stream >> again;
    Fuzz::Require(stream.status() == QDataStream::Ok && stream.atEnd(), "what is written can be read");
    Fuzz::Require(Write(again) == written, "what is read is what was written");
}

template <typename Enum>
void ReadEnum(const QByteArray &bytes)
{
    Enum value{};
    QDataStream stream(bytes);
    stream >> value;
}

} // namespace

void FuzzOne(QByteArray bytes)
{
    switch (Fuzz::TakeByte(bytes) % 4) {
    case 0:
        return ReadModel<CPlayerDataModel>(bytes);
    case 1:
        return ReadModel<CUserInfoDataModel>(bytes);
    case 2:
        return ReadModel<CMoneySpinnerDataModel>(bytes);
    default:
        ReadEnum<GlobalDefines::MoneyType>(bytes);
        ReadEnum<GlobalDefines::LimitType>(bytes);
        ReadEnum<GlobalDefines::TableType>(bytes);
        ReadEnum<GlobalDefines::GameType>(bytes);
    }
}
