#pragma once

#include <VextilToolkit/VextilDefaultColorScheme.h>

// A host's own colours for the reviewed pictures: every colour a screen reads differs from the
// default, dark where the default is light, so that a colour read from the wrong entry shows.
class PictureScheme : public VextilDefaultColorScheme {
public:
    QColor backgroundColor() const override { return QColor("#0b2b26"); }
    QColor buttonBackgroundColorForState(int) const override { return QColor("#00796b"); }
    QColor buttonTintColorForState(int) const override { return QColor("#fff8e1"); }
    QColor cancelButtonBackgroundColorForState(int) const override { return QColor("#263238"); }
    QColor cancelButtonTintColorForState(int) const override { return QColor("#ffab91"); }
    QColor navigationTitleColor() const override { return QColor("#ffb300"); }
    QColor backButtonColor() const override { return QColor("#4dd0e1"); }
    QColor popUpBackgroundColor() const override { return QColor("#101820"); }
    QColor popUpTextColor() const override { return QColor("#fee715"); }
    QColor popUpButtonTintColorForState(int) const override { return QColor("#101820"); }
    QColor popUpButtonBackgroundColorForState(int) const override { return QColor("#ff5733"); }
    QColor confirmQuestionTextColor() const override { return QColor("#c5e1a5"); }
};
