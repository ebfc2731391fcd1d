#pragma once

#include <common/Texts.h>

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QShortcut>

/// Creates a widget with an object name, by which tests and the tour find it.
template <typename Widget>
Widget *CreateField(QWidget *parent, const char *name)
{
    auto *widget = new Widget(parent);
    widget->setObjectName(QLatin1String(name));
    return widget;
}

/// Creates a label with the text of \a key, whose mnemonic focuses \a field.
inline QLabel *CreateLabel(const char *key, QWidget *field)
{
    auto *label = new QLabel(field->parentWidget());
    label->setBuddy(field);
    Texts::Bind(label, &QLabel::setText, key);
    return label;
}

inline void AddFormField(QFormLayout *form, const char *key, QWidget *field)
{
    form->addRow(CreateLabel(key, field), field);
}

/// Creates a field with an object name and adds it with a label, as the function above does.
template <typename Widget>
Widget *AddFormField(QFormLayout *form, const char *key, const char *name)
{
    auto *field = CreateField<Widget>(form->parentWidget(), name);
    AddFormField(form, key, field);
    return field;
}

/// Shows the text of \a key in a line while it is empty. Screen readers call the line so, too.
inline void BindHint(QLineEdit *line, const char *key)
{
    Texts::Bind(line, &QLineEdit::setPlaceholderText, key);
    Texts::Bind(line, &QWidget::setAccessibleName, key);
}

/// Lets Esc and Ctrl+W close a \a window.
inline void CloseByKeys(QWidget *window)
{
    for (const QKeySequence &keys : {QKeySequence(Qt::Key_Escape), QKeySequence(QStringLiteral("Ctrl+W"))})
        QObject::connect(new QShortcut(keys, window), &QShortcut::activated, window, &QWidget::close);
}

/// Adds an entry with the text of \a key, and with \a data.
inline void AddTextItem(QComboBox *box, const char *key, const QVariant &data)
{
    const int item = box->count();
    box->addItem(QString(), data);
    Texts::Bind(
        box, [item](QComboBox *changed, const QString &text) { changed->setItemText(item, text); }, key);
}
