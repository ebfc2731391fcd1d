#pragma once

#include <QDialog>
#include <QPointer>
#include <QVector>

class COptionsPage;
class QListWidget;

/// Shows the pages that are registered with COptionsDialogManager. The dialog closes when one of them is destroyed.
class COptionsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit COptionsDialog(QWidget *parent = nullptr);

private:
    QWidget *CreateButtons();
    void Apply();

    QListWidget *m_pList;                    // child
    QVector<QPointer<COptionsPage>> m_pages; // in the order of the list
};
