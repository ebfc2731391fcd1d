#pragma once

#include <translation/Translation.h>

#include <QtWidgets>

/// Returns a text of the catalogue in the user's language.
inline QString GetText(const char *key)
{
    return CTranslation::GetInstance()->GetTranslatedString(QLatin1String(key), QStringLiteral("EXAMPLE"), -1);
}

/// Calls a function now and each time that the user chooses another language, while the object exists.
template <typename Function>
void FollowLanguage(QObject *object, const Function &function)
{
    QObject::connect(CTranslation::GetInstance(), &CTranslation::signal_TranslationChanged, object, function);
    function();
}

/// Passes a text of the catalogue to a setter of the widget, in the user's language.
template <typename Widget, typename Setter>
void BindText(Widget *widget, Setter setter, const char *key)
{
    FollowLanguage(widget, [=] { (widget->*setter)(GetText(key)); });
}

/// Creates a line with an object name, by which tests find it. Its text is shown while the line is empty, and read by
/// screen readers.
inline QLineEdit *CreateLine(const char *key, const char *name)
{
    auto *line = new QLineEdit;
    line->setObjectName(QLatin1String(name));
    BindText(line, &QLineEdit::setPlaceholderText, key);
    BindText(line, &QWidget::setAccessibleName, key);
    return line;
}

/// Adds a field to a form, with a label and an object name.
template <typename Field>
Field *AddField(QFormLayout *form, const char *key, const char *name)
{
    auto *field = new Field;
    field->setObjectName(QLatin1String(name));
    auto *label = new QLabel;
    label->setBuddy(field);
    BindText(label, &QLabel::setText, key);
    form->addRow(label, field);
    return field;
}

/// Opens a message about a player, and doesn't wait for the answer. Its texts are given by their keys.
inline QMessageBox *OpenMessage(QWidget *parent, const QString &nickname, const char *key,
                                const QVector<QPair<QMessageBox::StandardButton, const char *>> &buttons)
{
    auto *message = new QMessageBox(parent);
    message->setAttribute(Qt::WA_DeleteOnClose);
    message->setWindowTitle(nickname);
    BindText(message, &QMessageBox::setText, key);
    for (const auto &[button, text] : buttons)
        BindText(message->addButton(button), &QPushButton::setText, text);
    message->open();
    return message;
}
