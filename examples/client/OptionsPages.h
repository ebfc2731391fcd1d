#pragma once

class QObject;

/// Registers the host's pages of the options dialog: the general one, and that of the sounds, on which the user hears
/// a volume when it is chosen. They belong to \a parent.
void AddOptionsPages(QObject *parent);
