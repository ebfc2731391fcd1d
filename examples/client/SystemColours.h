#pragma once

#include <QObject>

/// Whether the desktop's user wants dark colours. The desktop's portal says so; without one, or without a wish of the
/// user, the colours of the platform's own palette do.
///
/// The portal is asked without waiting for its answer, so what is true at first may change soon.
class CSystemColours : public QObject
{
    Q_OBJECT

public:
    /// Follows the desktop. \a window, the parent, is told when the platform's palette changes. The program has set
    /// no palette of its own yet.
    explicit CSystemColours(QObject *window);

    bool IsDark() const;

Q_SIGNALS:
    /// Emitted when IsDark() may have changed.
    void signal_Changed();

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    unsigned int m_uiWish = 0; // the portal's word for it
    bool m_bDarkPlatform;
};
