#pragma once

#include <VextilToolkit/VextilColorScheme.h>

/// The toolkit's own colours: white surfaces, deep blue and violet accents.
class VEXTIL_EXPORT VextilDefaultColorScheme : public VextilColorScheme {
public:
    /// The built colours of the palette.
    static QColor deepBlue() { return QColor::fromRgbF(0.23f, 0.34f, 0.61f, 1.0f); }
    static QColor violet() { return QColor::fromRgbF(0.4f, 0.34f, 0.95f, 1.0f); }
    static QColor darkGrey() { return QColor::fromRgbF(0.38f, 0.38f, 0.38f, 1.0f); }
    static QColor lightGrey() { return QColor::fromRgbF(0.67f, 0.67f, 0.67f, 1.0f); }
    static QColor green() { return QColor::fromRgbF(0.11f, 0.83f, 0.51f, 1.0f); }

    QColor backgroundColor() const override { return Qt::white; }
    /// Light grey for state 0, black for 1, green for 2; an invalid colour for other states.
    QColor textColorForState(int state) const override;
    QColor iconColorForState(int) const override { return violet(); }
    QColor buttonBackgroundColorForState(int) const override { return deepBlue(); }
    QColor buttonTintColorForState(int) const override { return Qt::white; }
    QColor cancelButtonBackgroundColorForState(int) const override { return Qt::white; }
    QColor cancelButtonTintColorForState(int) const override { return darkGrey(); }
    QColor navigationTitleColor() const override { return deepBlue(); }
    QColor backButtonColor() const override { return deepBlue(); }
    QColor topSplitBackgroundColor() const override { return Qt::white; }
    QColor bottomSplitBackgroundColor() const override { return Qt::white; }
    bool isBackgroundSplited() const override { return false; }
    QColor titleColor() const override { return violet(); }
    QColor subtitleColor() const override { return darkGrey(); }
    QColor topSplitIconColor() const override { return violet(); }
    QColor bottomSplitIconColor() const override { return violet(); }
    QColor popUpBackgroundColor() const override { return Qt::white; }
    QColor popUpTextColor() const override { return Qt::black; }
    QColor popUpButtonTintColorForState(int) const override { return Qt::white; }
    QColor popUpButtonBackgroundColorForState(int) const override { return violet(); }
    QColor popUpIconColorForState(int) const override { return Qt::black; }
    QColor confirmQuestionTextColor() const override { return deepBlue(); }
};
