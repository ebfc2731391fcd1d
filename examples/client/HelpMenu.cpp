#include "HelpMenu.h"

#include "Host.h"
#include "WebPages.h"

#include <common/Texts.h>
#include <settings/Config.h>
#include <ui/Action.h>
#include <ui/MenuManager.h>

#include <QMainWindow>
#include <QMessageBox>
#include <QUrl>

namespace {

const QString MENU = QStringLiteral("MENU_HELP");

CAction *AddEntry(QObject *owner, const char *key)
{
    auto *entry = new CAction(QString::fromLatin1(key), Texts::Area());
    CMenuManager::GetInstance()->GetMenu(MENU)->AddAction(entry);
    entry->setParent(owner); // the menu outlives it
    entry->setObjectName(QLatin1String(key));
    return entry;
}

void ShowAbout(QWidget *parent, const CHost &host)
{
    const QString product = CConfig::GetInstance()->GetProductname();
    QStringList parts{product, QStringLiteral("plugininterface " PLUGININTERFACE_VERSION),
                      QStringLiteral("Qt %1").arg(QLatin1String(qVersion()))};
    for (CPluginInterface *plugin : host.GetPluginManager().GetPlugins())
        parts.append(
            Texts::Get("ABOUT_PLUGIN", {{"#name#", plugin->GetName()}, {"#version#", plugin->GetVersion()}}));
    auto *box = new QMessageBox(QMessageBox::Information, product, parts.join(QLatin1Char('\n')),
                                QMessageBox::NoButton, parent);
    box->setTextFormat(Qt::PlainText); // operators and authors of plugins choose the names
    box->setObjectName(QStringLiteral("about"));
    box->addButton(Texts::Get("OPTIONS_OK"), QMessageBox::AcceptRole);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

} // namespace

void CreateHelpMenu(QMainWindow *window, CHost &host)
{
    CMenuManager *manager = CMenuManager::GetInstance();
    manager->AddToMenuBar(manager->GetMenu(MENU, MENU, Texts::Area()));
    for (const auto &[key, page] : {std::pair{"ACTION_FAQ", WebLinks::Faq},
                                    {"ACTION_SIGN_UP", WebLinks::SignUp},
                                    {"ACTION_CASHIER", WebLinks::Cashier}}) {
        const QString address = WebPages::GetAddress(page);
        if (!address.isEmpty())
            QObject::connect(AddEntry(window, key), &QAction::triggered, window,
                             [address] { WebPages::Open(QUrl(address)); });
    }
    QObject::connect(AddEntry(window, "ACTION_ABOUT"), &QAction::triggered, window,
                     [window, &host] { ShowAbout(window, host); });
}
