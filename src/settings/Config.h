#pragma once

#include <settings/ConfigBase.h>

#include <QSharedPointer>

/// The operator's configuration of this installation: the built-in defaults, and over them the rows of CConfigDB.
///
/// The rows are read once, when the object is created, so CConfigDB has to be initialised before. Without its file
/// all values stay at their defaults.
class PLUGININTERFACE_EXPORT CConfig : public CConfigBase
{
    Q_OBJECT

public:
    /// Creates the object on first use; the library owns it.
    static CConfig *GetInstance();
    /// Whether it exists; creates nothing.
    static bool IsExisting();
    /// The object ends at the next turn of the event loop.
    static void DestroyInstance();

private:
    CConfig();

    void Init();

    static QSharedPointer<CConfig> m_Instance;
};
