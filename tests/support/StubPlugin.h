#pragma once

#include <plugin/PluginInterface.h>

/// A plugin that does nothing; a test's plugin overrides what it cares about.
class CStubPlugin : public CPluginInterface
{
public:
    QString GetName() const override { return QStringLiteral("stub"); }
    QString GetVersion() const override { return QStringLiteral("1.0"); }
    QStringList GetDependencies() const override { return {}; }
    bool Initialize() override { return true; }
    void Start() override {}
    bool CanClose() override { return true; }
    void Shutdown() override {}
    QWidget *CreateView(QWidget *) override { return nullptr; }
};
