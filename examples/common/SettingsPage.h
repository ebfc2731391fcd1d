#pragma once

#include <ui/OptionsPage.h>

#include <QPointer>
#include <QStyle>
#include <QVariant>
#include <QVector>

#include <functional>

class QFormLayout;

/// A page of the options dialog with a list of fields, each of which shows one value.
class CSettingsPage : public COptionsPage
{
    Q_OBJECT

public:
    struct SField
    {
        const char *strKey;  ///< The key of the label's text, in the area of Texts.
        const char *strName; ///< The object name.
        std::function<QVariant()> get;
        std::function<void(const QVariant &)> set;
        QVariant vDefault;
        /// Creates a slider, or a combo box whose entries have the values as data; without an entry for the value in
        /// effect it shows none, and without one for the default it keeps its current one. The field is a child of \a
        /// parent, or of a row in there that shows something beside it. Null for a check box.
        QWidget *(*create)(QWidget *parent) = nullptr;
        /// The object name of an earlier check box of the page: while it is off, this field is disabled. May be null.
        const char *strSwitch = nullptr;
    };

    /// Returns the field for the setting with this key, which is also its object name.
    static SField Setting(const char *textKey, const char *setting, QWidget *(*create)(QWidget *parent) = nullptr,
                          const char *settingOfSwitch = nullptr);

    /// Registers the page. \a titleKey has to stay valid as long as the keys of the fields. The page's icon is the
    /// resource "options/KEY.svg" with this key in lower case, or \a icon if that can't be read.
    CSettingsPage(const char *titleKey, QStyle::StandardPixmap icon, const QVector<SField> &fields, QObject *parent);

    QString GetTitle() const override;
    QIcon GetIcon() const override;
    QWidget *CreateWidget(QWidget *parent) override;
    void Load() override;
    void Apply() override;
    void RestoreDefaults() override;
    bool IsModified() const override;

private:
    void AddField(QFormLayout *form, const SField &field);
    void ForAll(const std::function<void(QWidget &, const SField &)> &action) const;

    const char *m_strTitleKey;
    QStyle::StandardPixmap m_eIcon;
    QVector<SField> m_fields;
    QPointer<QWidget> m_pWidget; // the newest one
};
