#pragma once

#include <QDialog>
#include <QPointer>
#include <QVector>

class COptionsPage;
class QListWidget;
class QPushButton;

/// Shows the pages that are registered with COptionsDialogManager. The dialog closes when one of them is destroyed.
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
    void ShowModified();

    QListWidget *m_pList;                    // child
    QPushButton *m_pApply = nullptr;         // child
    QVector<QPointer<COptionsPage>> m_pages; // in the order of the list
};
