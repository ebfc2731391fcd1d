#pragma once

#include <protocol/LobbyProtocol.h>
#include <protocol/TableProtocol.h>

#include <QPointer>
#include <QWidget>

class CSeatsView;
class QCheckBox;
class QComboBox;
class QLabel;
class QLayout;
class QLineEdit;
class QMessageBox;
class QPushButton;
class QSpinBox;
class QTextBrowser;

/// A table at which the user has a seat: its facts, who sits around it, the top-up of chips,
/// and the chat. The window closes when the
/// user logs out, and deletes itself.
class CTableWindow : public QWidget
{
    Q_OBJECT

public:
    /// Constructs the window. \a lobby is a widget of the window that becomes its owner; the first table opens beside
    /// it.
    CTableWindow(const LobbyProtocol::STable &table, QWidget *lobby);

    /// Shows the window where it was closed when as many were open, or else beside the lobby, and never just on one
    /// of the \a others.
    void Open(QWidget *lobby, const QList<CTableWindow *> &others);
    /// Closes the window without asking.
    void Leave();
    /// Returns whether the user gives up a seat by closing the window now.
    bool WouldLoseSeat() const;
    /// Creates a dialog with a question about seats, which the caller owns. The button that gives them up has the
    /// role QMessageBox::AcceptRole.
    static QMessageBox *CreateQuestion(const char *key, QWidget *parent);
    /// Sets the place, 0 if the seat is lost. Nothing can be said then.
    void SetPlace(quint16 place);
    bool HasSeat() const { return m_usPlace != 0; }
    /// Shows who has the seats around the table.
    void ShowSeats(const QVector<TableProtocol::SSeat> &seats);
    void AddLine(const TableProtocol::SLine &line);

Q_SIGNALS:
    void signal_Said(const TableProtocol::SLine &line);
    void signal_Closed(quint32 tableID);

protected:
    void closeEvent(QCloseEvent *event) override;

private:
    void AskToLeave();
    QString GetPlaceKey() const;
    QLayout *CreateHeading();
    void CreateTopUp();
    void SayLine();
    void StoreTopUp();
    void ShowTopUp();
    void ShowFacts();
    QString MakeTopUpText() const;

    LobbyProtocol::STable m_table;
    quint16 m_usPlace = 0;
    int m_iNumber = 0; // the least that no other window has, from 1 on
    bool m_bLeaving = false;
    QPointer<QMessageBox> m_pQuestion; // while it is asked
    QLabel *m_pFacts;                  // this and the next ones are children
    QLabel *m_pPlace;
    CSeatsView *m_pSeats;
    QCheckBox *m_pTopUp;
    QSpinBox *m_pLowerLimit;
    QComboBox *m_pTarget;
    QWidget *m_pTopUpChoices;
    QLabel *m_pTopUpText;
    QTextBrowser *m_pChat;
    QLineEdit *m_pLine;
    QPushButton *m_pSend;
};
