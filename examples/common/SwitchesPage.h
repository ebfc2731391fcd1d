#pragma once

#include <ui/OptionsPage.h>

#include <QCheckBox>
#include <QPointer>
#include <QVector>

#include <functional>

/// A page of the options dialog that is nothing but switches, which a plugin lists. It is registered at once.
class CSwitchesPage : public COptionsPage
{
    Q_OBJECT

public:
    struct SSwitch
    {
        const char *pKey; ///< Of its text, and its object name; lasting.
        bool bDefault;
        std::function<bool()> isOn; ///< What is in force.
        std::function<void(bool)> set;
    };

    /// \a title is a key of the catalogue; lasting.
    CSwitchesPage(const char *title, const QVector<SSwitch> &switches, QObject *parent);

    QString GetTitle() const override;
    QIcon GetIcon() const override { return QIcon(); }
    QWidget *CreateWidget(QWidget *parent) override;
    void Load() override;
    void Apply() override;
    void RestoreDefaults() override;
    bool IsModified() const override;

private:
    void ForAll(const std::function<void(QCheckBox &, const SSwitch &)> &operation) const;

    const char *m_pTitle;
    QVector<SSwitch> m_switches;
    QPointer<QWidget> m_pWidget; // the newest one
};
