#pragma once

#include "widgets/tutorial/VextilTutorialView.h"

/// The selfie tutorial: light, no glasses or hat, smile, automatic capture.
class VextilTutorialFace : public VextilTutorialView {
    Q_OBJECT
public:
    explicit VextilTutorialFace(QWidget *parent = nullptr);

protected:
    void setupViews();
};
