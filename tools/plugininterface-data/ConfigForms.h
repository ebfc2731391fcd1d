#pragma once

#include <QString>
#include <QStringList>

/// The forms of values that are more than a text, as the library reads them.
namespace ConfigForms {

/// What is wrong with a value. The library ignores what has an error, in whole or in part.
struct SFindings
{
    QStringList errors;
    QStringList notes; ///< on values that are of use only in some clients
};

/// Returns whether the value of a key, in lower case, is the text of a JSON object.
bool IsObject(const QString &key);

/// Checks the text of a key in lower case; finds nothing for a key without a form of its own, or an empty text, which
/// stands for the built-in value.
SFindings Check(const QString &key, const QString &text);

} // namespace ConfigForms
