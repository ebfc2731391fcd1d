#pragma once

/// Lets screen readers find what QML shows in a QQuickWidget. Qt 6 does so by itself. Main thread; further calls do
/// nothing.
void LetReadersIntoQuickWidgets();
