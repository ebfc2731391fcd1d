#pragma once

#include <ui/OptionsPage.h>

#include <QPointer>
#include <QStyle>
#include <QVector>

/// A page of the options dialog whose fields show a setting each.
class CSettingsPage : public COptionsPage
{
    Q_OBJECT

public:
    struct SField
    {
        const char *strKey;     ///< Of its text, in the area of Texts.
        const char *strSetting; ///< Key of the setting, and object name.
        /// Makes a slider, or a combo box whose entries have the setting's values as data; one without an entry
        /// leaves what is chosen. Null for a switch.
        QWidget *(*create)(QWidget *parent) = nullptr;
    };

    CSettingsPage(const char *titleKey, QStyle::StandardPixmap icon, const QVector<SField> &fields, QObject *parent);

    QString GetTitle() const override;
    QIcon GetIcon() const override;
    QWidget *CreateWidget(QWidget *parent) override;
    void Load() override;
    void Apply() override;
    void RestoreDefaults() override;
    bool IsModified() const override;

private:
    template <typename Action>
    void ForAll(const Action &action) const;

    const char *m_strTitleKey;
    QStyle::StandardPixmap m_eIcon;
    QVector<SField> m_fields;
    QPointer<QWidget> m_pWidget; // the newest one
};

/// Language and animations.
COptionsPage *CreateGeneralPage(QObject *parent);
/// Which sounds there are, and how loud; the user hears a volume when it is chosen.
COptionsPage *CreateSoundsPage(QObject *parent);
