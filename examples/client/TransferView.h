#pragma once

class QWidget;

/// How far the client's transfers over HTTP are, all together, and how fast; a button gives them up. Hidden while
/// there are none, and while those there are have just begun.
///
/// It watches the shared network manager and so sees the library's own transfers too, those of the synchronisation
/// and the pictures.
QWidget *CreateTransferView(QWidget *parent);
