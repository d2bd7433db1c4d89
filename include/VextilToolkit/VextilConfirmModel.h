#pragma once

#include <VextilToolkit/VextilConfirmModelDelegate.h>
#include <VextilToolkit/VextilToolkitExport.h>
#include <VextilToolkit/VextilUploadTypes.h>

#include <QObject>
#include <QPointer>

/// The review screen's texts and images, for the selfie or a document side. GUI thread.
class VEXTIL_EXPORT VextilConfirmModel : public QObject {
    Q_OBJECT
public:
    explicit VextilConfirmModel(QObject *parent = nullptr) : QObject(parent) {}

    VextilDocumentSide documentSide() const { return m_documentSide; }
    void setDocumentSide(VextilDocumentSide side) { m_documentSide = side; }
    bool isDocument() const { return m_isDocument; }
    void setIsDocument(bool document) { m_isDocument = document; }
    /// The setter the facade calls (with false).
    void isDocument(bool document) { m_isDocument = document; }
    /// Receives the images (held weakly); must implement VextilConfirmModelDelegate.
    QObject *delegate() const { return m_delegate; }
    void setDelegate(QObject *delegate) { m_delegate = delegate; }

    QString getMessageText() const;
    QString getAcceptButtonText() const;
    QString getCancelButtonText() const;
    QString getNavigationTitle() const;
    /// Pushes the images to show to the delegate: the document side, or the neutral then the
    /// smiling face images.
    void getImages() const;
    /// Drops the reviewed images from the capture store.
    void clearData() const;

private:
    VextilDocumentSide m_documentSide = VextilDocumentSideFront;
    bool m_isDocument = false;
    QPointer<QObject> m_delegate;
};
