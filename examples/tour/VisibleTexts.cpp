#include "VisibleTexts.h"

#include <common/Texts.h>
#include <database/TranslationDB.h>

#include <QAbstractButton>
#include <QAccessible>
#include <QAction>
#include <QComboBox>
#include <QCoreApplication>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenuBar>
#include <QQuickWidget>
#include <QRegularExpression>
#include <QStyleOptionComboBox>
#include <QTabBar>
#include <QTableView>

namespace {

const QString ENGLISH_ID = QStringLiteral("2");

int TextWidth(const QWidget &widget, const QString &text)
{
    return widget.fontMetrics().size(Qt::TextShowMnemonic, text).width();
}

void AddLabel(const QLabel &label, QVector<SVisibleText> &texts)
{
    if (label.wordWrap())
        texts.append({label.text(), label.heightForWidth(label.width()), label.height()});
    else
        texts.append({label.text(), label.sizeHint().width(), label.width()});
}

void AddComboBox(const QComboBox &box, QVector<SVisibleText> &texts)
{
    QStyleOptionComboBox option;
    option.initFrom(&box);
    const QRect field = box.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box);
    for (int i = 0; i < box.count(); ++i)
        texts.append({box.itemText(i), TextWidth(box, box.itemText(i)), field.width()});
}

void AddTabs(const QTabBar &tabs, QVector<SVisibleText> &texts)
{
    for (int i = 0; i < tabs.count(); ++i)
        texts.append({tabs.tabText(i), TextWidth(tabs, tabs.tabText(i)), tabs.tabRect(i).width()});
}

void AddMenus(const QMenuBar &bar, QVector<SVisibleText> &texts)
{
    const QList<QAction *> menus = bar.actions();
    for (QAction *menu : menus) {
        texts.append({menu->text(), TextWidth(bar, menu->text()), bar.actionGeometry(menu).width()});
        const QList<QAction *> entries = menu->menu()->actions();
        for (const QAction *entry : entries)
            texts.append({entry->text()});
    }
}

void AddList(const QListWidget &list, QVector<SVisibleText> &texts)
{
    for (int row = 0; row < list.count(); ++row)
        texts.append({list.item(row)->text(), list.sizeHintForColumn(0), list.viewport()->width(), true});
}

// What a cell has beside its text, with what a style sheet adds.
int GetCellMargins(const QTableView &table)
{
    QStyleOptionViewItem option;
    option.initFrom(&table);
    option.features = QStyleOptionViewItem::HasDisplay;
    option.showDecorationSelected = true; // the text gets all the room then
    option.rect = QRect(0, 0, 1000, 100);
    const QRect room = table.style()->subElementRect(QStyle::SE_ItemViewItemText, &option, &table);
    return option.rect.width() - room.width() + 2 * (table.style()->pixelMetric(QStyle::PM_FocusFrameHMargin) + 1);
}

// The rows out of view too: they may be scrolled to.
void AddTable(const QTableView &table, QVector<SVisibleText> &texts)
{
    const QHeaderView &header = *table.horizontalHeader();
    const int margins = GetCellMargins(table);
    for (int column = 0; column < header.count(); ++column) {
        const QString title = table.model()->headerData(column, Qt::Horizontal).toString();
        texts.append({title, header.sectionSizeHint(column), header.sectionSize(column)});
        for (int row = 0; row < table.model()->rowCount(); ++row) {
            const QModelIndex cell = table.model()->index(row, column);
            const QString text = cell.data().toString();
            texts.append({text, TextWidth(table, text) + margins, table.columnWidth(column), true});
        }
    }
}

void AddWidget(const QWidget &widget, QVector<SVisibleText> &texts)
{
    if (const auto *label = qobject_cast<const QLabel *>(&widget))
        AddLabel(*label, texts);
    else if (const auto *button = qobject_cast<const QAbstractButton *>(&widget))
        texts.append({button->text(), button->sizeHint().width(), button->width()});
    else if (const auto *box = qobject_cast<const QComboBox *>(&widget))
        AddComboBox(*box, texts);
    else if (const auto *line = qobject_cast<const QLineEdit *>(&widget))
        texts.append({line->placeholderText(), TextWidth(*line, line->placeholderText()), line->width()});
    else if (const auto *tabs = qobject_cast<const QTabBar *>(&widget))
        AddTabs(*tabs, texts);
    else if (const auto *bar = qobject_cast<const QMenuBar *>(&widget))
        AddMenus(*bar, texts);
    else if (const auto *list = qobject_cast<const QListWidget *>(&widget))
        AddList(*list, texts);
    else if (const auto *table = qobject_cast<const QTableView *>(&widget))
        AddTable(*table, texts);
    if (widget.isWindow())
        texts.append({widget.windowTitle()});
}

// The English texts that read otherwise in the language in effect.
QSet<QString> ReadForeignTexts()
{
    const QString area = QStringLiteral("TRL_cArea");
    const QString key = QStringLiteral("TRL_cKey");
    const QString text = QStringLiteral("TRL_cTranslation");
    QList<QHash<QString, QVariant>> rows;
    CTranslationDB::GetInstance()->SelectAll(rows, CTranslationDB::strTableNameTranslations, {area, key, text},
                                             {{QStringLiteral("TRL_AVL_iID"), ENGLISH_ID}}, 0);
    QSet<QString> own;
    QSet<QString> english;
    for (const auto &row : qAsConst(rows)) {
        english.insert(row.value(text).toString());
        own.insert(CTranslation::GetInstance()->GetTranslatedString(row.value(key).toString(),
                                                                    row.value(area).toString(), -1));
    }
    return english - own;
}

// The first control that a screen reader can't name. Cells and choices are named by their texts.
QString FindNameless(QAccessibleInterface *item)
{
    if (!item || !item->isValid() || item->state().invisible)
        return QString();
    const QAccessible::Role role = item->role();
    const bool hasCells = role == QAccessible::Table || role == QAccessible::List;
    const bool isRoom = role == QAccessible::Client || role == QAccessible::Pane || role == QAccessible::PageTabList;
    if ((hasCells || (item->state().focusable && !isRoom)) && item->text(QAccessible::Name).isEmpty())
        return QStringLiteral("\"%1\" of role %2 has no name")
            .arg(item->object() ? item->object()->objectName() : QString())
            .arg(role);
    QString fault;
    const int children = hasCells || role == QAccessible::ComboBox ? 0 : item->childCount();
    for (int i = 0; i < children && fault.isEmpty(); ++i)
        fault = FindNameless(item->child(i));
    return fault;
}

} // namespace

void FinishLayout()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::LayoutRequest);
}

QVector<SVisibleText> CollectVisibleTexts(const QWidget &window)
{
    FinishLayout();
    QVector<SVisibleText> texts;
    AddWidget(window, texts);
    const auto widgets = window.findChildren<QWidget *>();
    for (const QWidget *widget : widgets) {
        if (widget->isVisible())
            AddWidget(*widget, texts);
    }
    const auto actions = window.findChildren<QAction *>();
    for (const QAction *action : actions)
        texts.append({action->text()});
    return texts;
}

QString FindNamelessControl(QWidget &window)
{
    const bool wasActive = QAccessible::isActive();
    QAccessible::setActive(true); // as a screen reader does, which lets QML tell of its controls
    FinishLayout();
    QString fault = FindNameless(QAccessible::queryAccessibleInterface(&window));
    const auto views = window.findChildren<QQuickWidget *>();
    for (QQuickWidget *view : views) {
        if (view->isVisible() && QAccessible::queryAccessibleInterface(view)->childCount() == 0)
            fault = QStringLiteral("nothing in ") + view->source().fileName();
    }
    QAccessible::setActive(wasActive);
    return fault;
}

QString FindTextFault(const QVector<SVisibleText> &texts)
{
    static const QRegularExpression rawKey(QStringLiteral("NOT IN TRANSLATION|^[A-Za-z]+/[A-Za-z0-9]+_[A-Za-z0-9_]+$|"
                                                          "^[A-Z0-9]+(_[A-Z0-9]+)+$"));
    const QSet<QString> foreign = ReadForeignTexts();
    for (const SVisibleText &text : texts) {
        if (text.strText.isEmpty())
            continue;
        if (rawKey.match(text.strText).hasMatch())
            return QStringLiteral("\"%1\" is no text").arg(text.strText);
        if (text.iNeeded > text.iAvailable)
            return QStringLiteral("\"%1\" needs %2 pixels and has %3")
                .arg(text.strText)
                .arg(text.iNeeded)
                .arg(text.iAvailable);
        if (!text.bIsContent && foreign.contains(text.strText))
            return QStringLiteral("\"%1\" is still English").arg(text.strText);
    }
    return QString();
}
