#pragma once

#include <QString>

/// What somebody says, as HTML: a smiley of CChatModel stands as its picture; whatever else people type is text and
/// nothing more.
QString ToHtml(const QString &text);
