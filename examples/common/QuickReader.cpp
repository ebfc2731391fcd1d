#include "QuickReader.h"

#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)

void LetReadersIntoQuickWidgets() {}

#else

#include <QAccessibleWidget>
#include <QQuickItem>
#include <QQuickWidget>

namespace {

/// A QQuickWidget, whose children are the items that have something to tell.
class CQuickReader : public QAccessibleWidget
{
public:
    explicit CQuickReader(QQuickWidget *widget)
        : QAccessibleWidget(widget, QAccessible::Pane)
        , m_pWidget(widget)
    {
    }

    int childCount() const override { return int(FindItems().size()); }
    QAccessibleInterface *child(int index) const override
    {
        return QAccessible::queryAccessibleInterface(FindItems().value(index));
    }
    int indexOfChild(const QAccessibleInterface *child) const override
    {
        return int(FindItems().indexOf(qobject_cast<QQuickItem *>(child->object())));
    }

private:
    QList<QQuickItem *> FindItems() const
    {
        QList<QQuickItem *> items;
        if (QQuickItem *root = m_pWidget->rootObject())
            Collect(root, items);
        return items;
    }

    // An item that tells nothing stands for those in it.
    static void Collect(QQuickItem *item, QList<QQuickItem *> &items)
    {
        if (QAccessible::queryAccessibleInterface(item)) {
            items.append(item);
            return;
        }
        const auto children = item->childItems();
        for (QQuickItem *child : children)
            Collect(child, items);
    }

    QQuickWidget *m_pWidget; // which outlives this
};

QAccessibleInterface *CreateReader(const QString &, QObject *object)
{
    auto *widget = qobject_cast<QQuickWidget *>(object);
    return widget ? new CQuickReader(widget) : nullptr;
}

} // namespace

void LetReadersIntoQuickWidgets()
{
    static const bool once = (QAccessible::installFactory(&CreateReader), true);
    Q_UNUSED(once)
}

#endif
