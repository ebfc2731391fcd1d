#pragma once

#include <QUrl>
#include <QVariantMap>
#include <QWidget>

/// Texts and amounts in the user's language for QML, where it is `texts`. A binding asks `texts.current`, and so is
/// evaluated anew with each change of the language.
class CQuickTexts : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *current READ GetCurrent NOTIFY signal_LanguageChanged)

public:
    explicit CQuickTexts(QObject *parent);

    QObject *GetCurrent() { return this; }
    /// The text of a key, with values in place of the markers that they have as names.
    Q_INVOKABLE QString Get(const QString &key, const QVariantMap &values = QVariantMap()) const;
    /// \a type is a GlobalDefines::MoneyType.
    Q_INVOKABLE QString Money(int type, uint amount) const;

Q_SIGNALS:
    void signal_LanguageChanged();
};

class CQuickWidget;

/// Shows the same in either of two ways, as the user's setting `pokerlobbytype` says, or the operator's where the
/// user has none: by QML if that is "qml", else by widgets. It changes with the setting.
///
/// QML knows the singletons CCasinoInfo, CConfig, CSettings and CUserInfo by their names, CQuickTexts as `texts` and
/// its widget as `view`, and has the palette of the application. What is wrong with it is told in the console, and
/// the widgets stay.
class CQuickView : public QWidget
{
    Q_OBJECT

public:
    /// Takes \a widgets over. \a objects are what else QML knows by name; they outlive the view.
    CQuickView(QWidget *widgets, const QUrl &file, const QVariantMap &objects, QWidget *parent);

    /// Whether the user has chosen QML, even if it can't be shown.
    static bool IsChosen();
    bool IsQuickShown() const { return m_bQuickShown; }

Q_SIGNALS:
    void signal_QuickShown(bool isShown);

private:
    void OnLobbyTypeChanged();
    CQuickWidget *CreateQuick();
    void Read(int piece);
    void SetQuickShown(bool isShown);

    QWidget *m_pWidgets;              // this and the next one are children
    CQuickWidget *m_pQuick = nullptr; // as long as QML is chosen
    bool m_bQuickShown = false;
    const QUrl m_file;
    const QVariantMap m_objects;
};
