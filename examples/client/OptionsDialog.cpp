#include "OptionsDialog.h"

#include <common/FormField.h>
#include <ui/OptionsDialogManager.h>

#include <QDialogButtonBox>
#include <QEvent>
#include <QGridLayout>
#include <QListWidget>
#include <QPushButton>
#include <QStackedWidget>
#include <QStyle>

#include <algorithm>

namespace {

// Room for the texts of the example's pages in its languages, in characters.
constexpr int LIST_WIDTH = 20;
constexpr int PAGE_WIDTH = 60;

} // namespace

COptionsDialog::COptionsDialog(QWidget *parent)
    : QDialog(parent)
    , m_pList(CreateField<QListWidget>(this, "optionsPages"))
    , m_pHeading(CreateField<QLabel>(this, "optionsHeading"))
{
    setObjectName(QStringLiteral("options"));
    m_pList->setIconSize(QSize(1, 1) * style()->pixelMetric(QStyle::PM_ListViewIconSize));
    m_pHeading->setTextFormat(Qt::RichText);
    m_pHeading->setIndent(style()->pixelMetric(QStyle::PM_LayoutLeftMargin)); // as the fields of a page
    Texts::Bind(this, &QWidget::setWindowTitle, "OPTIONS_TITLE");
    Texts::Bind(m_pList, &QWidget::setAccessibleName, "OPTIONS_TITLE");
    auto *widgets = new QStackedWidget(this);
    const QList<COptionsPage *> pages = COptionsDialogManager::GetInstance()->GetPages();
    for (COptionsPage *page : pages) {
        m_pages.append(page);
        widgets->addWidget(page->CreateWidget(widgets));
        page->Load();
        const QIcon icon = page->GetIcon();
        new QListWidgetItem(icon.isNull() ? style()->standardIcon(QStyle::SP_FileIcon) : icon, QString(), m_pList);
        connect(page, &QObject::destroyed, this, &QWidget::close);
    }
    auto *layout = new QGridLayout(this);
    layout->addWidget(m_pList, 0, 0, 2, 1);
    layout->addWidget(m_pHeading, 0, 1);
    layout->addWidget(widgets, 1, 1);
    layout->addWidget(CreateButtons(), 2, 0, 1, 2);
    layout->setColumnMinimumWidth(1, PAGE_WIDTH * fontMetrics().averageCharWidth());
    layout->setRowStretch(1, 1);
    connect(m_pList, &QListWidget::currentRowChanged, widgets, &QStackedWidget::setCurrentIndex);
    connect(m_pList, &QListWidget::currentRowChanged, this, &COptionsDialog::ShowTitles);
    m_pList->setCurrentRow(0);
    Texts::Follow(this, [this] { ShowTitles(); });
    ShowModified();
}

void COptionsDialog::ShowTitles()
{
    for (int i = 0; i < m_pages.size(); ++i)
        m_pList->item(i)->setText(m_pages.at(i) ? m_pages.at(i)->GetTitle() : QString());
    m_pList->setFixedWidth(qMax(LIST_WIDTH * fontMetrics().averageCharWidth(),
                                m_pList->sizeHintForColumn(0) + 3 * m_pList->frameWidth()));
    const QListWidgetItem *chosen = m_pList->currentItem();
    const QString title = chosen ? chosen->text().toHtmlEscaped() : QString();
    m_pHeading->setText(QStringLiteral("<big><b>%1</b></big>").arg(title));
}

// A page has no signal for edits, and some widgets of a plugin's page may have none either. But the user sees each
// edit, whatever has caused it, so the pages are asked each time that something in the dialog was painted again.
bool COptionsDialog::event(QEvent *e)
{
    const bool isPainted = e->type() == QEvent::UpdateRequest;
    const bool isRecognised = QDialog::event(e);
    if (isPainted)
        ShowModified();
    return isRecognised;
}

QWidget *COptionsDialog::CreateButtons()
{
    auto *buttons = new QDialogButtonBox(this);
    const auto add = [buttons](QDialogButtonBox::StandardButton role, const char *key) {
        QPushButton *button = buttons->addButton(role);
        button->setObjectName(QLatin1String(key));
        Texts::Bind(button, &QPushButton::setText, key);
        return button;
    };
    connect(add(QDialogButtonBox::Ok, "OPTIONS_OK"), &QPushButton::clicked, this, [this] {
        Apply();
        accept();
    });
    connect(add(QDialogButtonBox::Cancel, "LOGIN_CANCEL"), &QPushButton::clicked, this, &COptionsDialog::reject);
    m_pApply = add(QDialogButtonBox::Apply, "OPTIONS_APPLY");
    connect(m_pApply, &QPushButton::clicked, this, &COptionsDialog::Apply);
    connect(add(QDialogButtonBox::RestoreDefaults, "OPTIONS_DEFAULTS"), &QPushButton::clicked, this, [this] {
        if (COptionsPage *page = m_pages.value(m_pList->currentRow()))
            page->RestoreDefaults();
    });
    return buttons;
}

void COptionsDialog::Apply()
{
    for (const QPointer<COptionsPage> &page : qAsConst(m_pages)) {
        if (page && page->IsModified())
            page->Apply();
    }
    ShowModified();
}

void COptionsDialog::ShowModified()
{
    m_pApply->setEnabled(
        std::any_of(m_pages.begin(), m_pages.end(), [](const auto &page) { return page && page->IsModified(); }));
}
