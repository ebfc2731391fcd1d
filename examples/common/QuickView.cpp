#include "QuickView.h"

#include "Note.h"
#include "QuickReader.h"
#include "Texts.h"

#include <models/CasinoInfo.h>
#include <models/UserInfo.h>
#include <money/MoneyStrings.h>
#include <settings/Config.h>
#include <settings/Settings.h>

#include <QEvent>
#include <QMetaEnum>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlError>
#include <QQmlProperty>
#include <QQuickItem>
#include <QQuickStyle>
#include <QQuickWidget>
#include <QQuickWindow>
#include <QTimer>
#include <QVBoxLayout>

#include <iterator>

namespace {

const QString BACKEND = QStringLiteral("software"); // needs no OpenGL, which lists don't need
const QString STYLE = QStringLiteral("Fusion");     // uses the palette
// The modules and types that the QML files consist of and that take long to load.
constexpr const char *PIECES[] = {
    "import QtQuick 2.15; Item {}",
    "import QtQuick 2.15; import QtQuick.Layouts 1.15; Item {}",
    "import QtQuick.Templates 2.15; Pane {}",
    "import QtQuick.Controls 2.15; Pane {}",
    "import QtQuick.Controls 2.15; TextField {}",
    "import QtQuick.Controls 2.15; ComboBox {}",
    "import QtQuick.Controls 2.15; Button {}",
    "import QtQuick.Controls 2.15; ToolTip {}",
    "import QtQuick.Controls 2.15; ScrollBar {}",
};

} // namespace

/// A widget as large as its content requests, in the colours of the widgets around it.
class CQuickWidget : public QQuickWidget
{
public:
    using QQuickWidget::QQuickWidget;

    void Load(const QUrl &file)
    {
        setResizeMode(SizeRootObjectToView);
        setSource(file);
        if (!rootObject())
            return;
        TakePalette();
        for (const auto signal : {&QQuickItem::implicitWidthChanged, &QQuickItem::implicitHeightChanged})
            connect(rootObject(), signal, this, &QWidget::updateGeometry);
    }

    QSize sizeHint() const override { return minimumSizeHint(); }
    QSize minimumSizeHint() const override
    {
        const QQuickItem *root = rootObject();
        return root ? QSizeF(root->implicitWidth(), root->implicitHeight()).toSize() : QSize();
    }

protected:
    void changeEvent(QEvent *event) override
    {
        QQuickWidget::changeEvent(event);
        if (event->type() == QEvent::PaletteChange && rootObject())
            TakePalette();
    }

private:
    void TakePalette()
    {
        setClearColor(palette().color(QPalette::Window));
        // Each by its name, because the palette is a value in Qt 5, and an object in Qt 6.
        const auto roles = QMetaEnum::fromType<QPalette::ColorRole>();
        for (int i = 0; i < roles.keyCount(); ++i) {
            QString name = QString::fromLatin1(roles.key(i));
            name[0] = name.at(0).toLower();
            QQmlProperty(rootObject(), QStringLiteral("palette.") + name)
                .write(palette().color(static_cast<QPalette::ColorRole>(roles.value(i))));
        }
    }
};

CQuickTexts::CQuickTexts(QObject *parent)
    : QObject(parent)
{
    connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, this,
            &CQuickTexts::signal_LanguageChanged);
}

QString CQuickTexts::Get(const QString &key, const QVariantMap &values) const
{
    CTranslationItem item;
    for (auto value = values.begin(); value != values.end(); ++value)
        item.SetPlaceholder(value.key(), value.value());
    item.SetTranslationKey(key, Texts::Area());
    return item.GetTranslatedText();
}

QString CQuickTexts::Money(int type, uint amount) const
{
    return Globals::MoneyToString(static_cast<GlobalDefines::MoneyType>(type), amount, true);
}

CQuickView::CQuickView(QWidget *widgets, const QUrl &file, const QVariantMap &objects, QWidget *parent)
    : QWidget(parent)
    , m_pWidgets(widgets)
    , m_file(file)
    , m_objects(objects)
{
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(widgets);
    setFocusProxy(widgets);
    connect(CSettings::GetInstance(), &CSettings::signal_PokerLobbyTypeChanged, this,
            &CQuickView::OnLobbyTypeChanged);
    OnLobbyTypeChanged();
}

bool CQuickView::IsChosen()
{
    const QString type = CSettings::GetInstance()->GetPokerLobbyType();
    return (type.isEmpty() ? CConfig::GetInstance()->GetPokerLobbyType() : type) == QLatin1String("qml");
}

// The widgets stay visible until QML is loaded.
void CQuickView::OnLobbyTypeChanged()
{
    if (IsChosen() == (m_pQuick != nullptr))
        return;
    delete m_pQuick;
    m_pQuick = IsChosen() ? CreateQuick() : nullptr;
    SetQuickShown(false);
    if (m_pQuick)
        Read(0);
}

// Loading all at once would block the user, so each type is loaded in an event of its own. Errors in one show when
// the file itself is loaded.
void CQuickView::Read(int piece)
{
    if (piece < int(std::size(PIECES))) {
        QQmlComponent(m_pQuick->engine()).setData(PIECES[piece], QUrl());
        QTimer::singleShot(0, m_pQuick, [this, piece] { Read(piece + 1); });
        return;
    }
    m_pQuick->Load(m_file);
    if (m_pQuick->status() == QQuickWidget::Ready)
        QTimer::singleShot(0, m_pQuick, [this] { SetQuickShown(true); });
    const QList<QQmlError> errors = m_pQuick->errors();
    for (const QQmlError &error : errors)
        Note(error.toString(), CConsole::MC_General, CConsole::ML_Error);
}

void CQuickView::SetQuickShown(bool isShown)
{
    m_pWidgets->setHidden(isShown);
    setFocusProxy(isShown ? m_pQuick : m_pWidgets);
    if (m_pQuick)
        m_pQuick->setVisible(isShown);
    m_bQuickShown = isShown;
    Q_EMIT signal_QuickShown(isShown);
}

// Backend and style have to be chosen before any module creates the first one.
CQuickWidget *CQuickView::CreateQuick()
{
    if (QQuickWindow::sceneGraphBackend() != BACKEND)
        QQuickWindow::setSceneGraphBackend(BACKEND);
    if (QQuickStyle::name() != STYLE)
        QQuickStyle::setStyle(STYLE);
    LetReadersIntoQuickWidgets();
    auto *view = new CQuickWidget(this);
    view->hide();
    layout()->addWidget(view);
    QQmlContext *context = view->rootContext();
    context->setContextProperty(QStringLiteral("CCasinoInfo"), CCasinoInfo::GetInstance());
    context->setContextProperty(QStringLiteral("CConfig"), CConfig::GetInstance());
    context->setContextProperty(QStringLiteral("CSettings"), CSettings::GetInstance());
    context->setContextProperty(QStringLiteral("CUserInfo"), CUserInfo::GetInstance());
    context->setContextProperty(QStringLiteral("texts"), new CQuickTexts(view));
    context->setContextProperty(QStringLiteral("view"), view);
    for (auto object = m_objects.begin(); object != m_objects.end(); ++object)
        context->setContextProperty(object.key(), object.value());
    return view;
}
