#pragma once

class QWidget;

/// Creates a view of the progress and the speed of all HTTP transfers of the client together, with a button that
/// aborts them. The view is hidden while there are none, or only those that have just begun.
///
/// It watches the shared network manager, and so also shows the library's own transfers: synchronisation and
/// pictures.
QWidget *CreateTransferView(QWidget *parent);
