#pragma once

#include <QObject>

/// The application's look: light or dark as the user's setting `themegeneral` says, now and whenever that changes,
/// with the brand's style sheet of that kind on top.
class CLook : public QObject
{
    Q_OBJECT

public:
    /// Values of the setting; others count as light.
    enum EColours { CO_LIGHT, CO_DARK };

    CLook();

private:
    static void Apply();
};
