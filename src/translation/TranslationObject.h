#pragma once

#include <translation/TranslationItem.h>

#include <QObject>

/// A translatable text for QML and for whoever wants to be told: it follows the language by itself and signals each
/// time its text was built anew. Main thread.
class PLUGININTERFACE_EXPORT CTranslationObject : public QObject, public CTranslationItem
{
    Q_OBJECT

    /// The finished text; written, it becomes the literal template.
    Q_PROPERTY(QString text READ GetTranslatedText WRITE SetText NOTIFY signal_TextChanged)

public:
    /// An empty text.
    explicit CTranslationObject(QObject *parent = nullptr);
    ~CTranslationObject() override;

Q_SIGNALS:
    /// The finished text was built anew, to the same letters or not.
    void signal_TextChanged();

protected:
    void TranslationChanged() override;

private Q_SLOTS:
    void slot_TranslationChanged();
};
