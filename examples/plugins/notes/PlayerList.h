#pragma once

#include <QListWidget>

class CPlayerModel;
class QLineEdit;

/// Returns whether the player is a buddy. A buddy of an earlier login is only in the library's list of buddies.
bool IsBuddy(CPlayerModel *player);

/// Players by their nicknames, each with the colour of the tag, and a buddy with a heart. Main thread.
class CPlayerList : public QListWidget
{
    Q_OBJECT

public:
    /// Shows the players whose nickname or note contains the text of \a search, which outlives the list's use.
    explicit CPlayerList(QLineEdit *search);

    /// Adds a row, which the list owns.
    QListWidgetItem *AddPlayer(const QString &nickname);
    /// Makes a row the current one. A search that hides it ends.
    void Choose(QListWidgetItem *row);
    /// Shows tags and buddies as they are now. The list does so by itself when a signal announces a change.
    void ShowMarks();
    /// Ends the search, and removes all rows.
    void Forget();

private:
    void Search();
    bool IsFound(const QString &nickname) const;
    QListWidgetItem *FindFirst() const;
    void FollowRows();

    QLineEdit *m_pSearch;
    QWidget *m_pNoMatch; // a child, in place of the rows
};
