#pragma once

#include <VextilToolkit/VextilBaseViewController.h>
#include <VextilToolkit/VextilConfirmControllerDelegate.h>
#include <VextilToolkit/VextilConfirmModel.h>
#include <VextilToolkit/VextilConfirmModelDelegate.h>
#include <VextilToolkit/VextilToolkitExport.h>

#include <QPointer>

class NavigationBarView;
class VextilConfirmView;

/// The review screen: the captured images with a question; accept or take again. Reports the
/// answer to its delegate once the screen has gone. GUI thread only.
class VEXTIL_WIDGETS_EXPORT VextilConfirmController : public VextilBaseViewController, public VextilConfirmModelDelegate {
    Q_OBJECT
public:
    explicit VextilConfirmController(QWidget *parent = nullptr);

    /// Receives the answer (held weakly); must implement VextilConfirmControllerDelegate.
    void setDelegate(QObject *delegate) { m_delegate = delegate; }
    QObject *delegate() const { return m_delegate; }
    /// Texts and images; set before the screen loads.
    VextilConfirmModel *model() const { return m_model; }
    void setModel(VextilConfirmModel *model);
    /// The screen's parts (their classes are internal).
    NavigationBarView *navigationBar() const { return m_navigationBar; }
    VextilConfirmView *confirmView() const { return m_confirmView; }

    /// Accept: the screen goes and the delegate hears true.
    void didConfirm() { dismissController(true); }
    /// Retake (also the back button): the images are dropped, the screen goes, the delegate hears false.
    void didCancel();
    /// Dismisses the screen without animation, then reports.
    void dismissController(bool success);

    void setDocumentImage(const QImage &image) override;
    void setFaceImages(std::shared_ptr<QList<QImage>> images) override;

protected:
    void viewDidLoad() override;
    void viewWillAppear(bool animated) override;
    void viewDidAppear(bool animated) override;
    void resizeEvent(QResizeEvent *) override { setupConstraints(); }

private:
    void setupViews();
    void setupConstraints();
    void setupColor();

    QPointer<QObject> m_delegate;
    QPointer<VextilConfirmModel> m_model;
    NavigationBarView *m_navigationBar = nullptr;
    VextilConfirmView *m_confirmView = nullptr;
};
