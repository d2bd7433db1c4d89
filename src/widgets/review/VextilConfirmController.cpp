#include <VextilToolkit/VextilConfirmController.h>

#include "widgets/review/VextilConfirmView.h"
#include "widgets/ui/NavigationBarView.h"
#include "widgets/ui/VextilFrame.h"
#include "core/VextilSchemeAccess.h"

VextilConfirmController::VextilConfirmController(QWidget *parent) : VextilBaseViewController(parent) {}

void VextilConfirmController::setModel(VextilConfirmModel *model)
{
    m_model = model;
    if (model && !model->parent())
        model->setParent(this);
}

void VextilConfirmController::viewDidLoad()
{
    if (!m_model)
        setModel(new VextilConfirmModel(this));
    m_model->setDelegate(this);
    QPalette palette = this->palette();
    palette.setColor(QPalette::Window, Qt::white);
    setPalette(palette);
    setupViews();
    setupConstraints();
    setupColor();
}

void VextilConfirmController::setupViews()
{
    setAccessibleName(m_model->getNavigationTitle());
    m_navigationBar = new NavigationBarView(m_model->getNavigationTitle(), false, this);
    connect(m_navigationBar->backButton(), &QAbstractButton::pressed, this, &VextilConfirmController::didCancel);
    m_confirmView = new VextilConfirmView(this);
    m_confirmView->setMessageText(m_model->getMessageText());
    m_confirmView->setAcceptButtonText(m_model->getAcceptButtonText());
    m_confirmView->setCancelButtonText(m_model->getCancelButtonText());
    // Both act as the finger lands.
    connect(m_confirmView->acceptButton(), &QAbstractButton::pressed, this, &VextilConfirmController::didConfirm);
    connect(m_confirmView->cancelButton(), &QAbstractButton::pressed, this, &VextilConfirmController::didCancel);
}

void VextilConfirmController::setupConstraints()
{
    if (!m_navigationBar)
        return;
    const QRectF view = portraitRect();
    const QRectF bar = VextilFrame().top(view.top()).width(view.width()).centerX(view.center().x()).height(view.height() * 0.1).rect();
    m_navigationBar->setGeometry(bar.toRect());
    m_confirmView->setGeometry(VextilFrame().top(bar.bottom()).width(view.width()).centerX(view.center().x()).height(view.height() * 0.9).pixels());
}

void VextilConfirmController::setupColor()
{
    const auto scheme = currentColorScheme();
    m_navigationBar->setBackButtonTintColor(scheme->backButtonColor());
    m_navigationBar->setTitleLabelTintColor(scheme->navigationTitleColor());
}

void VextilConfirmController::viewWillAppear(bool animated)
{
    VextilBaseViewController::viewWillAppear(animated);
    m_model->getImages();  // fresh images on every appearance
}

void VextilConfirmController::didCancel()
{
    m_model->clearData();
    dismissController(false);
}

void VextilConfirmController::dismissController(bool success)
{
    QPointer<VextilConfirmController> self(this);
    // Without animation, so that the camera screen is visible again at once.
    dismissViewControllerAnimated(false, [self, success] {
        if (!self)
            return;
        if (auto *delegate = dynamic_cast<VextilConfirmControllerDelegate *>(self->m_delegate.data()))
            delegate->didFinishedConfirmWithSuccess(success);
    });
}

void VextilConfirmController::setDocumentImage(const QImage &image) { m_confirmView->setDocumentImage(image); }

void VextilConfirmController::setFaceImages(std::shared_ptr<QList<QImage>> images)
{
    m_confirmView->setFaceImages(std::move(images));
}

void VextilConfirmController::viewDidAppear(bool animated)
{
    VextilBaseViewController::viewDidAppear(animated);
    // Keyboard users start on the answer most of them give; Tab reaches the other one.
    m_confirmView->acceptButton()->setFocus(Qt::OtherFocusReason);
}
