#pragma once

#include <QString>

/// Returns what somebody says as HTML: smileys of CChatModel as pictures, everything else as escaped text.
QString ToHtml(const QString &text);
