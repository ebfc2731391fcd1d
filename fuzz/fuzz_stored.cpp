// Settings whose texts have formats of their own: packed structures in Base64, and widths of columns.

#include "Fuzz.h"

#include <models/AutoTopUpModel.h>
#include <models/ChatModel.h>
#include <ui/TableView.h>

#include <cmath>

namespace {

void LoadChat(const QByteArray &text)
{
    CSettings::GetInstance()->SetChatOptions(text);
    CChatModel *chat = CChatModel::GetInstance();
    const CChatModel::SSettings loaded = chat->GetSettings();
    chat->SetSettings({!loaded.bOption, 0, 0});
    chat->SetSettings(loaded);
    Fuzz::Require(chat->GetSettings() == loaded, "chat options that were loaded can be set");
}

void LoadTopUp(const QByteArray &text)
{
    CSettings::GetInstance()->SetAutoTopUpSettings(text);
    CAutoTopUpModel *topUp = CAutoTopUpModel::GetInstance();
    const CAutoTopUpModel::SAutoTopUp loaded = topUp->GetAutoTopUp();
    for (const auto limit : {GlobalDefines::LT_FIXED_LIMIT, GlobalDefines::LT_NO_LIMIT}) {
        topUp->GetLowerLimitChips(GlobalDefines::MONEYTYPE_DOLLAR, limit, 1000);
        topUp->GetTargetChips(GlobalDefines::MONEYTYPE_DOLLAR, limit, 3, 4, 5, 6);
    }
    topUp->SetAutoTopUp(loaded, true);
    Fuzz::Require(topUp->IsSaved(), "a top-up that was loaded can be stored");
}

void LoadWidths(const QByteArray &text, double width, int column)
{
    const QString key = QStringLiteral("fuzz");
    CSettings::GetInstance()->SetHeaderSizesByKey(key, QString::fromUtf8(text));
    const QList<double> sizes = TableView::Load(key);
    const QList<double> fitted = TableView::Recalculate(width, sizes, sizes, column);
    Fuzz::Require(fitted.isEmpty() || fitted.size() == sizes.size(), "as many widths as columns");
    double room = 0;
    for (const double size : fitted) {
        Fuzz::Require(std::isfinite(size), "a width is a number");
        room += qMax(0.0, size);
    }
    // Rounding may change the sum by less than a pixel for each column.
    Fuzz::Require(fitted.isEmpty() || column >= 0 || std::abs(room - width) <= fitted.size(),
                  "the widths fill the room");
    TableView::Store(key, fitted);
    Fuzz::Require(TableView::Load(key).size() == fitted.size(), "what was stored can be loaded");
}

} // namespace

void FuzzOne(QByteArray bytes)
{
    Fuzz::Library();
    static unsigned int inputs = 0;
    if (++inputs % 1000 == 0) // no event loop runs to write pending settings, which would all be kept
        CSettings::GetInstance()->slot_SaveSettings(true);
    const unsigned char choice = Fuzz::TakeByte(bytes);
    if (choice % 3 == 2) {
        const double width = 8.0 * Fuzz::TakeByte(bytes);
        return LoadWidths(bytes, width, choice / 3 % 8 - 1);
    }
    const QByteArray text = choice / 3 % 2 == 0 ? bytes.toBase64() : bytes;
    choice % 3 == 0 ? LoadChat(text) : LoadTopUp(text);
}
