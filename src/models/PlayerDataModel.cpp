#include "PlayerDataModel.h"

#include <DataModel_p.h>

CPlayerDataModel::CPlayerDataModel(QObject *parent)
    : QObject(parent)
{
    CPlayerDataModel::Reset();
}

CPlayerDataModel::~CPlayerDataModel() = default;

void CPlayerDataModel::FieldChanged(EField) {}

DATA_MODEL_DEFINE(CPlayerDataModel, PLAYER_DATA_TABLE, 37);
