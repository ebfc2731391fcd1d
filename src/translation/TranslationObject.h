#pragma once

#include <translation/TranslationItem.h>

#include <QObject>

/// A translatable text for QML and for code that needs a signal: it follows the language by itself and emits
/// signal_TextChanged() each time its text was built again. Main thread.
class PLUGININTERFACE_EXPORT CTranslationObject : public QObject, public CTranslationItem
{
    Q_OBJECT

    /// The finished text. Setting it sets the literal template.
    Q_PROPERTY(QString text READ GetTranslatedText WRITE SetText NOTIFY signal_TextChanged)

public:
    /// Constructs an empty text.
    explicit CTranslationObject(QObject *parent = nullptr);
    ~CTranslationObject() override;

Q_SIGNALS:
    /// Emitted when the finished text was built again, whether or not it differs.
    void signal_TextChanged();

protected:
    void TranslationChanged() override;

private Q_SLOTS:
    void slot_TranslationChanged();
};
