#include "PlayerDataModel.h"

namespace {

constexpr int LABEL_WIDTH = 37;

} // namespace

CPlayerDataModel::CPlayerDataModel(QObject *parent)
    : QObject(parent)
{
    CPlayerDataModel::Reset();
}

DATA_MODEL_DEFINE(CPlayerDataModel, PLAYER_DATA_TABLE, LABEL_WIDTH);
