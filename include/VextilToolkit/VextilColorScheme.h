#pragma once

#include <VextilToolkit/VextilToolkitExport.h>

#include <QColor>

/// The themed colours of the review screen, its navigation bar and the tutorial. A host may
/// supply its own through VextilToolkitSettings. State getters take a control state (0 normal,
/// 1 highlighted, 2 disabled, 4 selected); the toolkit always asks for 1. All calls come on the
/// GUI thread.
class VEXTIL_EXPORT VextilColorScheme {
public:
    virtual ~VextilColorScheme();

    virtual QColor backgroundColor() const = 0;
    virtual QColor textColorForState(int state) const = 0;
    virtual QColor iconColorForState(int state) const = 0;
    virtual QColor buttonBackgroundColorForState(int state) const = 0;
    virtual QColor buttonTintColorForState(int state) const = 0;
    virtual QColor cancelButtonBackgroundColorForState(int state) const = 0;
    virtual QColor cancelButtonTintColorForState(int state) const = 0;
    virtual QColor navigationTitleColor() const = 0;
    virtual QColor backButtonColor() const = 0;
    virtual QColor topSplitBackgroundColor() const = 0;
    virtual QColor bottomSplitBackgroundColor() const = 0;
    /// Whether the background is split in two colours (spelled so).
    virtual bool isBackgroundSplited() const = 0;
    virtual QColor titleColor() const = 0;
    virtual QColor subtitleColor() const = 0;
    virtual QColor topSplitIconColor() const = 0;
    virtual QColor bottomSplitIconColor() const = 0;
    virtual QColor popUpBackgroundColor() const = 0;
    virtual QColor popUpTextColor() const = 0;
    virtual QColor popUpButtonTintColorForState(int state) const = 0;
    virtual QColor popUpButtonBackgroundColorForState(int state) const = 0;
    virtual QColor popUpIconColorForState(int state) const = 0;
    virtual QColor confirmQuestionTextColor() const = 0;
};
