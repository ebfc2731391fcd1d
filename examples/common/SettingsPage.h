#pragma once

#include <ui/OptionsPage.h>

#include <QPointer>
#include <QStyle>
#include <QVariant>
#include <QVector>

#include <functional>

/// A page of the options dialog that is a list of fields, each of which shows one value.
class CSettingsPage : public COptionsPage
{
    Q_OBJECT

public:
    struct SField
    {
        const char *strKey;  ///< Of its text, in the area of Texts.
        const char *strName; ///< Its object name.
        std::function<QVariant()> get;
        std::function<void(const QVariant &)> set;
        QVariant vDefault;
        /// Makes a slider, or a combo box whose entries have the values as data; one without an entry leaves what is
        /// chosen. Null for a switch.
        QWidget *(*create)(QWidget *parent) = nullptr;
    };

    /// The field of the setting with this key, which is its object name too.
    static SField Setting(const char *textKey, const char *setting, QWidget *(*create)(QWidget *parent) = nullptr);

    /// Registers the page. \a titleKey is as lasting as those of the fields.
    CSettingsPage(const char *titleKey, QStyle::StandardPixmap icon, const QVector<SField> &fields, QObject *parent);

    QString GetTitle() const override;
    QIcon GetIcon() const override;
    QWidget *CreateWidget(QWidget *parent) override;
    void Load() override;
    void Apply() override;
    void RestoreDefaults() override;
    bool IsModified() const override;

private:
    void ForAll(const std::function<void(QWidget &, const SField &)> &action) const;

    const char *m_strTitleKey;
    QStyle::StandardPixmap m_eIcon;
    QVector<SField> m_fields;
    QPointer<QWidget> m_pWidget; // the newest one
};
