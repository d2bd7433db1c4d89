#include "VextilToolkit/VextilRepository.h"

#include <QCoreApplication>
#include <QThread>

namespace {

template <typename T>
T readLocked(QMutex &mutex, const T &field)
{
    QMutexLocker lock(&mutex);
    return field;
}

template <typename T>
void writeLocked(QMutex &mutex, T &field, T value)
{
    QMutexLocker lock(&mutex);
    field = std::move(value);
}

}  // namespace

VextilRepository *VextilRepository::sharedInstance()
{
    // A function-local static is created once even under concurrent first calls, and the
    // pointer is never deleted, so the store outlives every user.
    static VextilRepository *instance = [] {
        auto *store = new VextilRepository;
        // Whichever thread asks first, the store belongs to the GUI thread, so that its queued
        // work never depends on a worker thread that may have ended.
        if (QCoreApplication *app = QCoreApplication::instance(); app && store->thread() != app->thread())
            store->moveToThread(app->thread());
        return store;
    }();
    return instance;
}

QImage VextilRepository::documentFrontImage() const { return readLocked(m_mutex, m_documentFrontImage); }
void VextilRepository::setDocumentFrontImage(const QImage &image) { writeLocked(m_mutex, m_documentFrontImage, image); }
QImage VextilRepository::documentBackImage() const { return readLocked(m_mutex, m_documentBackImage); }
void VextilRepository::setDocumentBackImage(const QImage &image) { writeLocked(m_mutex, m_documentBackImage, image); }
VextilDocumentType VextilRepository::documentType() const { return readLocked(m_mutex, m_documentType); }
void VextilRepository::setDocumentType(VextilDocumentType type) { writeLocked(m_mutex, m_documentType, type); }
VextilRepository::ImageArray VextilRepository::faceImages() const { return readLocked(m_mutex, m_faceImages); }
void VextilRepository::setFaceImages(ImageArray images) { writeLocked(m_mutex, m_faceImages, std::move(images)); }
VextilRepository::ImageArray VextilRepository::faceSmileImages() const { return readLocked(m_mutex, m_faceSmileImages); }
void VextilRepository::setFaceSmileImages(ImageArray images) { writeLocked(m_mutex, m_faceSmileImages, std::move(images)); }
std::optional<QString> VextilRepository::authKey() const { return readLocked(m_mutex, m_authKey); }
void VextilRepository::setAuthKey(std::optional<QString> key) { writeLocked(m_mutex, m_authKey, std::move(key)); }
double VextilRepository::progress() const { return readLocked(m_mutex, m_progress); }
void VextilRepository::setProgress(double progress) { writeLocked(m_mutex, m_progress, progress); }
std::optional<QVariantMap> VextilRepository::resultData() const { return readLocked(m_mutex, m_resultData); }
void VextilRepository::setResultData(std::optional<QVariantMap> data) { writeLocked(m_mutex, m_resultData, std::move(data)); }
std::optional<VextilError> VextilRepository::error() const { return readLocked(m_mutex, m_error); }
void VextilRepository::setError(std::optional<VextilError> error) { writeLocked(m_mutex, m_error, std::move(error)); }

bool VextilRepository::hasDocumentFrontImage() const { return !documentFrontImage().isNull(); }
bool VextilRepository::hasDocumentBackImage() const { return !documentBackImage().isNull(); }
bool VextilRepository::hasAllDocument() const { return hasDocumentBackImage() && hasDocumentFrontImage(); }

void VextilRepository::resetDocumentFront() { setDocumentFrontImage(QImage()); }
void VextilRepository::resetDocumentBack() { setDocumentBackImage(QImage()); }

void VextilRepository::resetDocumentImages()
{
    resetDocumentBack();
    resetDocumentFront();
}

void VextilRepository::resetFaceImages()
{
    setFaceSmileImages(nullptr);
    setFaceImages(nullptr);
}

void VextilRepository::resetAllImages()
{
    resetDocumentImages();
    resetFaceImages();
}
