#pragma once

#include <QSortFilterProxyModel>
#include <QStandardItemModel>
#include <QTableView>

#include <functional>

/// A table of rows in the order of time, the newest last, below fields that filter, copy and clear them. While it is
/// scrolled to the end, it follows new rows. It remembers the widths of its columns for each user.
class CLogTable : public QWidget
{
    Q_OBJECT

public:
    using TFields = QVector<QPair<const char *, QWidget *>>; ///< Each with the key of its label, or null.
    using TChoice = std::function<bool(const QVariantList &values)>;

    /// Constructs the table. \a widths are in characters; the first column is the time, and the last one takes up
    /// what room there is. Other widths of the user's are stored under \a storageKey. Rows for which \a isChosen
    /// returns false are hidden.
    CLogTable(const QString &storageKey, const QVector<const char *> &titleKeys, const QVector<int> &widths,
              const char *searchKey, const TFields &fields, const TChoice &isChosen);
    /// Adds a row. The search field searches \a searched; \a values are returned by GetValues().
    void AddRow(const QDateTime &time, const QStringList &texts, const QString &searched, const QVariantList &values);
    void RemoveOldest(int count) { m_pRows->removeRows(0, count); }
    int GetRowCount() const { return m_pRows->rowCount(); }
    QVariantList GetValues(int row) const { return m_pRows->item(row)->data().toList(); }
    void Refilter() { m_shown.invalidate(); }
    /// Returns a stored width or height, which anybody may have written, as far as a window may have it.
    static int ToPixels(double stored) { return int(qBound(0.0, stored, double(QWIDGETSIZE_MAX))); }

Q_SIGNALS:
    void signal_Cleared();

protected:
    struct SShownRows : QSortFilterProxyModel
    {
        bool filterAcceptsRow(int row, const QModelIndex &parent) const override
        {
            const QVariantList values = sourceModel()->index(row, 0).data(Qt::UserRole + 1).toList();
            return QSortFilterProxyModel::filterAcceptsRow(row, parent) && (!isChosen || isChosen(values));
        }
        TChoice isChosen;
    } m_shown;
    QStandardItemModel *m_pRows; // this and the next one are children
    QTableView *m_pView;

private:
    void SetUpView(const QVector<const char *> &titleKeys);
    void LoadWidths();
    void StoreWidths();
    void Copy() const;

    const QString m_strStorageKey;
    const QVector<int> m_widths; // in characters
    bool m_bAtEnd = true;
    bool m_bOwnWidths = false; // while they are not the user's doing
};
