#pragma once

#include <QList>
#include <QObject>

/// The widths of the lobby's columns in one view: as the user has dragged them, which is a setting, or as the texts
/// need them, but always as wide as the texts and together as wide as the view.
class CLobbyColumns : public QObject
{
    Q_OBJECT
    /// The widths in pixels; empty until all is known.
    Q_PROPERTY(QList<qreal> widths READ GetWidths NOTIFY signal_WidthsChanged)
    /// The widths that the texts need.
    Q_PROPERTY(QList<qreal> needed READ GetNeeded NOTIFY signal_NeededChanged)
    /// The width of the view.
    Q_PROPERTY(qreal room READ GetRoom WRITE SetRoom NOTIFY signal_RoomChanged)

public:
    explicit CLobbyColumns(QObject *parent);

    const QList<qreal> &GetWidths() const { return m_widths; }
    const QList<qreal> &GetNeeded() const { return m_needed; }
    void SetNeeded(const QList<qreal> &widths);
    qreal GetRoom() const { return m_room; }
    void SetRoom(qreal room);

    /// Changes a width as the user has dragged it, and stores all. The next column gives way, as far as its texts
    /// allow it; a drag beyond that has no effect.
    Q_INVOKABLE void Drag(int column, qreal width);

Q_SIGNALS:
    /// Also emitted when a drag had no effect, for a view that has followed it.
    void signal_WidthsChanged();
    void signal_NeededChanged();
    void signal_RoomChanged();

private:
    void Fit();
    bool AreWideEnough(const QList<qreal> &widths) const;

    QList<qreal> m_widths;
    QList<qreal> m_needed;
    qreal m_room = 0;
    bool m_bStoring = false; // while the program stores the widths that it shows
};
