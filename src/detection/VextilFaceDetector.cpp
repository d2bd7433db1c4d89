#include <VextilToolkit/VextilFaceDetector.h>

#include "detection/VextilCascadeFaceDetector.h"
#include "detection/VextilLearnedFaceDetector.h"

#include <QLoggingCategory>
#include <QMutex>
#include <QSet>

#include <opencv2/core.hpp>

#include <atomic>
#include <typeinfo>

Q_DECLARE_LOGGING_CATEGORY(lcVextilDetector)  // defined with the cascade detector

namespace {

std::atomic<VextilFaceDetectorKind> preferred{VextilFaceDetectorKind::Learned};

// A detector that fails on one frame usually fails on the next ones the same way: each kind of
// failure is logged once per process.
void reportOnce(const QString &kind, const char *what)
{
    static QMutex mutex;
    static QSet<QString> reported;
    QMutexLocker lock(&mutex);
    if (reported.contains(kind))
        return;
    reported.insert(kind);
    qCWarning(lcVextilDetector).noquote() << "face detection failed, frames are taken as showing no face:" << kind
                                          << what;
}

}  // namespace

VextilFaceDetector::~VextilFaceDetector() = default;

void VextilFaceDetector::setStreamMode(bool stream) { m_streamMode = stream; }

void VextilFaceDetector::releaseResources() {}

void VextilFaceDetector::setFacesFoundHandler(FacesFoundHandler handler) { m_facesFound = std::move(handler); }

void VextilFaceDetector::facesFound(const QList<VextilFaceFeature> &faces) const
{
    if (m_facesFound)
        m_facesFound(faces);
}

void VextilFaceDetector::setPreferredKind(VextilFaceDetectorKind kind) { preferred = kind; }
VextilFaceDetectorKind VextilFaceDetector::preferredKind() { return preferred; }

std::shared_ptr<VextilFaceDetector> VextilFaceDetector::createDefault()
{
    if (preferred == VextilFaceDetectorKind::Cascade)
        return std::make_shared<VextilCascadeFaceDetector>();
    return VextilLearnedFaceDetector::createOrFallBack(std::make_shared<VextilLearnedFaceDetector>());
}

QList<VextilFaceFeature> VextilFaceDetector::detect(const QImage &image) noexcept
{
    try {
        return featuresInImage(image);
    } catch (const cv::Exception &e) {
        reportOnce(QStringLiteral("OpenCV error %1").arg(e.code), e.what());
    } catch (const std::exception &e) {
        reportOnce(QString::fromLatin1(typeid(e).name()), e.what());
    } catch (...) {
        reportOnce(QStringLiteral("unknown exception"), "");
    }
    return {};
}
