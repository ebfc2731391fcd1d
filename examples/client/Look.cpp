#include "Look.h"

#include "RoomyStyle.h"
#include "SystemColours.h"

#include <common/Note.h>
#include <files/Pathes.h>
#include <settings/Settings.h>
#include <ui/StyleSheet.h>

#include <QApplication>
#include <QPalette>
#include <QStyle>

#include <memory>
#include <optional>

namespace {

// Resources of the brand.
const QString LIGHT_SHEET = QStringLiteral("client/client.css");
const QString DARK_SHEET = QStringLiteral("client/client-dark.css");

constexpr QRgb BRAND_GREEN = 0xff2f7a52; // of the selection
constexpr QRgb DARK_BUTTON = 0xff363c40;
constexpr QRgb DARK_WINDOW = 0xff24282b;
constexpr QRgb DARK_BASE = 0xff1b1e20;
constexpr QRgb DARK_TEXT = 0xffe4e6e8;
constexpr QRgb DARK_DISABLED_TEXT = 0xff8b9196;
constexpr QRgb DARK_LINK = 0xff7cc49d;

QPalette MakeDarkPalette()
{
    QPalette palette{QColor(DARK_BUTTON), QColor(DARK_WINDOW)}; // the other shades are derived from these
    palette.setColor(QPalette::Base, QColor(DARK_BASE));
    palette.setColor(QPalette::AlternateBase, QColor(DARK_WINDOW));
    palette.setColor(QPalette::ToolTipBase, QColor(DARK_BUTTON));
    palette.setColor(QPalette::Link, QColor(DARK_LINK));
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText, QPalette::ToolTipText}) {
        palette.setColor(role, QColor(DARK_TEXT));
        palette.setColor(QPalette::Disabled, role, QColor(DARK_DISABLED_TEXT));
    }
    palette.setColor(QPalette::PlaceholderText, QColor(DARK_DISABLED_TEXT));
    return palette;
}

bool ReadSheet(const QString &file, QString &styleSheet)
{
    const QString path = Pathes::ToCommonRes(file, false);
    return !path.isEmpty() && Globals::GetCssContents(path, styleSheet);
}

void Apply(bool isDark)
{
    const QString file = isDark ? DARK_SHEET : LIGHT_SHEET;
    QString styleSheet;
    if (!ReadSheet(file, styleSheet))
        Note(QStringLiteral("The brand's style sheet %1 can't be read").arg(file), CConsole::MC_General);
    QPalette palette = isDark ? MakeDarkPalette() : QApplication::style()->standardPalette();
    palette.setColor(QPalette::Highlight, QColor(BRAND_GREEN));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    QApplication::setPalette(palette);
    qApp->setStyleSheet(styleSheet);
}

} // namespace

void Look::Follow(QObject *window)
{
    QApplication::setStyle(new CRoomyStyle); // Qt takes it over
    const auto *system = new CSystemColours(window);
    const auto applied = std::make_shared<std::optional<bool>>();
    const auto follow = [=] {
        const int colours = CSettings::GetInstance()->GetThemeGeneral();
        const bool isDark = colours == CO_DARK || (colours != CO_LIGHT && system->IsDark());
        if (*applied != isDark)
            Apply(isDark);
        *applied = isDark;
    };
    QObject::connect(CSettings::GetInstance(), &CSettings::signal_ThemeGeneralChanged, window, follow);
    QObject::connect(system, &CSystemColours::signal_Changed, window, follow);
    follow();
}

QStringList Look::FindUnreadableSheets()
{
    QStringList files;
    QString contents;
    for (const QString &file : {LIGHT_SHEET, DARK_SHEET}) {
        const QString path = Pathes::ToCommonRes(file, false);
        if (!ReadSheet(file, contents))
            files.append(path.isEmpty() ? Pathes::CommonBrand() + QLatin1Char('/') + file : path);
    }
    return files;
}

void Look::FollowScreens()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
#endif
}
