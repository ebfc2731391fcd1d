#pragma once

#include <QUrl>
#include <QVariantMap>
#include <QWidget>

/// Texts and amounts in the user's language for QML, as `texts`. A binding that reads `texts.current` is evaluated
/// again at each change of the language.
class CQuickTexts : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QObject *current READ GetCurrent NOTIFY signal_LanguageChanged)

public:
    explicit CQuickTexts(QObject *parent);

    QObject *GetCurrent() { return this; }
    /// Returns the text of a key in which each marker that \a values names is replaced by its value.
    Q_INVOKABLE QString Get(const QString &key, const QVariantMap &values = QVariantMap()) const;
    /// Returns an amount as text. \a type is a GlobalDefines::MoneyType.
    Q_INVOKABLE QString Money(int type, uint amount) const;

Q_SIGNALS:
    void signal_LanguageChanged();
};

class CQuickWidget;

/// Shows the same content in widgets or in QML: in QML if the setting `pokerlobbytype` of the user, or of the
/// operator if the user has none, is "qml", else in widgets. It follows the setting.
///
/// QML knows the singletons CCasinoInfo, CConfig, CSettings and CUserInfo by their names, CQuickTexts as `texts` and
/// its widget as `view`, and has the palette of the application. Its errors are written to the console, and the
/// widgets stay visible.
class CQuickView : public QWidget
{
    Q_OBJECT

public:
    /// Takes ownership of \a widgets. \a objects are further objects for QML by name; they outlive the view.
    CQuickView(QWidget *widgets, const QUrl &file, const QVariantMap &objects, QWidget *parent);

    /// Returns whether the user has chosen QML, even if it can't be shown.
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
    CQuickWidget *m_pQuick = nullptr; // while QML is chosen
    bool m_bQuickShown = false;
    const QUrl m_file;
    const QVariantMap m_objects;
};
