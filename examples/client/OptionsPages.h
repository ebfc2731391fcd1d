#pragma once

class QObject;

/// Registers the host's pages of the options dialog, which belong to \a parent: the general page, and the sound page,
/// which plays a sound when the user chooses a volume.
void AddOptionsPages(QObject *parent);
