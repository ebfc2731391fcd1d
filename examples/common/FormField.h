#pragma once

#include <common/Texts.h>

#include <QComboBox>
#include <QFormLayout>
#include <QLabel>

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

/// Adds an entry with the text of \a key, and with \a data.
inline void AddTextItem(QComboBox *box, const char *key, const QVariant &data)
{
    const int item = box->count();
    box->addItem(QString(), data);
    Texts::Bind(
        box, [item](QComboBox *changed, const QString &text) { changed->setItemText(item, text); }, key);
}
