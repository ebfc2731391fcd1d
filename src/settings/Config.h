#pragma once

#include <settings/ConfigBase.h>

#include <QSharedPointer>

/// The operator's configuration of this installation: the built-in defaults, overridden by the rows of CConfigDB.
///
/// The rows are read once, when the object is created, so CConfigDB must be initialised before. Without its file all
/// values keep their defaults.
class PLUGININTERFACE_EXPORT CConfig : public CConfigBase
{
    Q_OBJECT

public:
    /// Returns the object, creating it on first use; the library owns it.
    static CConfig *GetInstance();
    /// Returns whether the object exists; doesn't create it.
    static bool IsExisting();
    /// Destroys the object at the next turn of the event loop.
    static void DestroyInstance();

private:
    CConfig();

    void Init();

    static QSharedPointer<CConfig> m_Instance;
};
