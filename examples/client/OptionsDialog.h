#pragma once

#include <QDialog>
#include <QPointer>
#include <QVector>

class COptionsPage;
class QLabel;
class QListWidget;
class QPushButton;

/// Shows the pages that are registered with COptionsDialogManager, and opens with the same width in all languages.
/// The dialog closes when one of them is destroyed.
class COptionsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit COptionsDialog(QWidget *parent = nullptr);

protected:
    bool event(QEvent *e) override;

private:
    QWidget *CreateButtons();
    void Apply();
    void ShowTitles();
    void ShowModified();

    QListWidget *m_pList; // this and the next two are children
    QLabel *m_pHeading;   // the title of the page in view
    QPushButton *m_pApply = nullptr;
    QVector<QPointer<COptionsPage>> m_pages; // in the order of the list
};
