#pragma once

class QComboBox;
class QWidget;

/// Creates a choice of the user's own picture: none, those that the brand offers, and the one that the user has,
/// which may be another one. The data of an entry is the number of the picture, 0 for none. Pictures that aren't on
/// the disk are downloaded from the operator's server.
QComboBox *CreatePictureChooser(QWidget *parent);
