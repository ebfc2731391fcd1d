#pragma once

#include <QString>
#include <QVector>
#include <QWidget>

/// A text that a user can read, and the room that it needs and has: pixels, both 0 where there is no telling.
struct SVisibleText
{
    QString strText;
    int iNeeded = 0;
    int iAvailable = 0;
    bool bIsContent = false; ///< A cell of a table, which may hold names.
};

/// What is new may still wait to be shown, and a changed text for its layout.
void FinishLayout();

/// What can be read in \a window and its open dialogs, the menus' entries included.
QVector<SVisibleText> CollectVisibleTexts(const QWidget &window);

/// A control in \a window that a screen reader has no name for, or that it doesn't find; empty if there is none.
QString FindNamelessControl(QWidget &window);

/// What is wrong with the texts, empty if nothing: one that the catalogue doesn't have, one that is clipped, or one
/// that is still English though the language in effect has another for it.
QString FindTextFault(const QVector<SVisibleText> &texts);
