#pragma once

#include <QHash>
#include <QTimer>
#include <QWidget>

class QLabel;
class QNetworkReply;
class QProgressBar;

/// How far the client's transfers over HTTP are, all together, and how fast; a button gives them up. Hidden while
/// there are none, and while those there are have just begun.
///
/// It watches the shared network manager and so sees the library's own transfers too, those of the synchronisation
/// and the pictures.
class CTransferView : public QWidget
{
    Q_OBJECT

public:
    explicit CTransferView(QWidget *parent = nullptr);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    struct SProgress
    {
        qint64 iBytes = 0; // of both ways
        qint64 iTotal = 0; // 0 if nobody knows
    };

    void Watch(QNetworkReply *reply);
    void Forget(QNetworkReply *reply);
    void ShowProgress();
    void Cancel();
    QString GetTitle() const;

    QLabel *m_pText; // this and the next one are children
    QProgressBar *m_pBar;
    QHash<QNetworkReply *, SProgress> m_transfers;
    qint64 m_iPassedBytes = 0; // since the last look
    QTimer m_timer;            // runs while there are transfers
};
