#include "TransferView.h"

#include <common/FormField.h>
#include <network/Download.h>
#include <network/NetworkAccessManager.h>
#include <settings/Config.h>

#include <QChildEvent>
#include <QHBoxLayout>
#include <QHash>
#include <QNetworkReply>
#include <QPointer>
#include <QProgressBar>
#include <QTimer>
#include <QToolButton>

namespace {

constexpr int LOOK_MS = 500;
constexpr int SECOND_MS = 1000;
constexpr int BAR_CHARACTERS = 12;

class CTransferView : public QWidget
{
public:
    explicit CTransferView(QWidget *parent);

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    struct SProgress
    {
        qint64 iBytes = 0; // sent and received
        qint64 iTotal = 0; // 0 if it is unknown
    };

    void Watch(QNetworkReply *reply);
    void Forget(QNetworkReply *reply);
    void ShowProgress();
    void Cancel();
    QString GetTitle() const;

    QLabel *m_pText; // this and the next one are children
    QProgressBar *m_pBar;
    QHash<QNetworkReply *, SProgress> m_transfers;
    qint64 m_iPassedBytes = 0; // at the last update
    QTimer m_timer;            // runs while there are transfers
};

CTransferView::CTransferView(QWidget *parent)
    : QWidget(parent)
    , m_pText(CreateField<QLabel>(this, "transferText"))
    , m_pBar(CreateField<QProgressBar>(this, "transferBar"))
{
    m_pText->setTextFormat(Qt::PlainText); // a file's name is the server's choice
    m_pBar->setTextVisible(false);
    m_pBar->setFixedWidth(fontMetrics().averageCharWidth() * BAR_CHARACTERS);
    auto *cancel = CreateField<QToolButton>(this, "transferCancel");
    Texts::Bind(cancel, &QToolButton::setText, "TRANSFER_CANCEL");
    connect(cancel, &QToolButton::clicked, this, &CTransferView::Cancel);
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(QMargins());
    layout->addWidget(m_pText);
    layout->addWidget(m_pBar);
    layout->addWidget(cancel);
    m_timer.setInterval(LOOK_MS);
    connect(&m_timer, &QTimer::timeout, this, &CTransferView::ShowProgress);
    CNetworkAccessManager::GetInstance()->installEventFilter(this);
    hide();
}

// QNetworkAccessManager adds each reply as a child before it is fully constructed, so it is looked at later.
bool CTransferView::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::ChildAdded) {
        const QPointer<QObject> child = static_cast<QChildEvent *>(event)->child();
        const auto watch = [this, child] {
            if (auto *reply = qobject_cast<QNetworkReply *>(child.data()))
                Watch(reply);
        };
        QMetaObject::invokeMethod(this, watch, Qt::QueuedConnection);
    }
    return QWidget::eventFilter(object, event);
}

void CTransferView::Watch(QNetworkReply *reply)
{
    if (reply->isFinished() || m_transfers.contains(reply))
        return;
    m_transfers.insert(reply, {});
    const auto advance = [this, reply](qint64 bytes, qint64 total) {
        const auto progress = m_transfers.find(reply);
        if (progress == m_transfers.end())
            return;
        m_iPassedBytes += qMax<qint64>(0, bytes - progress->iBytes);
        *progress = {bytes, total};
    };
    connect(reply, &QNetworkReply::downloadProgress, this, advance);
    connect(reply, &QNetworkReply::uploadProgress, this, advance);
    connect(reply, &QNetworkReply::finished, this, [this, reply] { Forget(reply); });
    connect(reply, &QObject::destroyed, this, [this, reply] { Forget(reply); });
    if (!m_timer.isActive()) {
        m_iPassedBytes = 0;
        m_timer.start();
    }
}

void CTransferView::Forget(QNetworkReply *reply)
{
    m_transfers.remove(reply);
    if (m_transfers.isEmpty()) {
        m_timer.stop();
        hide();
    }
}

void CTransferView::ShowProgress()
{
    SProgress sum;
    bool isKnown = true;
    for (const SProgress &progress : qAsConst(m_transfers)) {
        isKnown = isKnown && progress.iTotal > 0;
        sum.iBytes += progress.iBytes;
        sum.iTotal += progress.iTotal;
    }
    const QString speed = CDownload::FormatBytes(m_iPassedBytes * SECOND_MS / LOOK_MS);
    m_iPassedBytes = 0;
    m_pText->setText(
        Texts::Get("TRANSFER_PROGRESS",
                   {{"#what#", GetTitle()}, {"#done#", CDownload::FormatBytes(sum.iBytes)}, {"#speed#", speed}}));
    // The bar counts in kilobytes because its range is 31 bits. Without a range it shows that it is busy.
    m_pBar->setRange(0, isKnown ? int(sum.iTotal >> 10) : 0);
    m_pBar->setValue(int(sum.iBytes >> 10));
    show();
}

QString CTransferView::GetTitle() const
{
    if (m_transfers.size() > 1)
        return Texts::Get("TRANSFER_MANY", {{"#n#", m_transfers.size()}});
    const QUrl url = m_transfers.constBegin().key()->url();
    const QUrl sync(CConfig::GetInstance()->GetLinkSettingsSync(), QUrl::StrictMode);
    return url.matches(sync, QUrl::RemoveQuery) ? Texts::Get("TRANSFER_SYNC") : url.fileName();
}

void CTransferView::Cancel()
{
    const QList<QNetworkReply *> replies = m_transfers.keys();
    for (QNetworkReply *reply : replies) {
        if (m_transfers.contains(reply)) // a slot may have removed another one
            reply->abort();
    }
}

} // namespace

QWidget *CreateTransferView(QWidget *parent)
{
    return new CTransferView(parent);
}
