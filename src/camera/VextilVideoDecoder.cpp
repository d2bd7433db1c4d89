#include "camera/VextilVideoDecoder.h"

#include <QFileInfo>

#include <opencv2/imgproc.hpp>
#include <opencv2/videoio/registry.hpp>

namespace {

// Blue, green, red (or grey) into the four bytes of Format_RGB32; `to` has its size already.
void toBgrx(const cv::Mat &from, cv::Mat &to)
{
    if (from.channels() == 4)
        from.copyTo(to);
    else
        cv::cvtColor(from, to, from.channels() == 1 ? cv::COLOR_GRAY2BGRA : cv::COLOR_BGR2BGRA);
}

QImage converted(const cv::Mat &from)
{
    QImage image(from.cols, from.rows, QImage::Format_RGB32);
    if (image.isNull())
        return {};
    cv::Mat to(image.height(), image.width(), CV_8UC4, image.bits(), size_t(image.bytesPerLine()));
    toBgrx(from, to);
    return image;
}

// A buffer only the decoder holds: every frame over it has gone.
bool isFree(const cv::Mat &buffer) { return !buffer.u || __atomic_load_n(&buffer.u->refcount, __ATOMIC_ACQUIRE) == 1; }

}  // namespace

bool VextilVideoDecoder::open(const QString &path)
{
    m_capture.release();
    m_nextIndex = 0;
    m_error.clear();
    if (!QFileInfo(path).isFile()) {
        m_error = QStringLiteral("no such video file: %1").arg(path);
        return false;
    }
    // FFmpeg wherever OpenCV has it: asked for "any" backend, OpenCV would also try a file it
    // cannot decode as an image-sequence pattern and probe camera backends with it.
    const int backend = cv::videoio_registry::hasBackend(cv::CAP_FFMPEG) ? cv::CAP_FFMPEG : cv::CAP_ANY;
    bool opened = false;
    try {
        opened = m_capture.open(path.toStdString(), backend);
    } catch (const cv::Exception &) {
        opened = false;  // reported below like any file the decoder cannot read
    }
    if (!opened) {
        m_capture.release();
        m_error = QStringLiteral("cannot decode video file: %1").arg(path);
        return false;
    }
    const double stated = m_capture.get(cv::CAP_PROP_FPS);
    m_fps = stated > 0 ? stated : 15.0;
    return true;
}

int VextilVideoDecoder::frameCount() const { return isOpen() ? qMax(0, int(m_capture.get(cv::CAP_PROP_FRAME_COUNT))) : 0; }

QSize VextilVideoDecoder::frameSize() const
{
    if (!isOpen())
        return {};
    return {int(m_capture.get(cv::CAP_PROP_FRAME_WIDTH)), int(m_capture.get(cv::CAP_PROP_FRAME_HEIGHT))};
}

cv::Mat &VextilVideoDecoder::freeBuffer()
{
    for (cv::Mat &buffer : m_buffers)
        if (isFree(buffer))
            return buffer;
    m_spare = cv::Mat();  // its earlier frame keeps its own pixels
    return m_spare;
}

std::optional<VextilVideoDecoder::Frame> VextilVideoDecoder::read()
{
    if (!isOpen())
        return std::nullopt;
    cv::Mat &buffer = freeBuffer();
    try {
        if (!m_capture.read(buffer) || buffer.empty())
            return std::nullopt;
    } catch (const cv::Exception &e) {
        // A damaged frame can make the decoder hand OpenCV an impossible picture: the file
        // ends there.
        m_error = QStringLiteral("damaged video frame %1: %2").arg(m_nextIndex).arg(QString::fromStdString(e.msg));
        m_capture.release();
        return std::nullopt;
    }
    const int index = m_nextIndex++;
    return Frame{buffer, index, index / m_fps};
}

bool VextilVideoDecoder::rewind()
{
    m_nextIndex = 0;
    return isOpen() && m_capture.set(cv::CAP_PROP_POS_FRAMES, 0);
}

QImage VextilVideoDecoder::image(const cv::Mat &pixels) { return converted(pixels); }

VextilCameraFrame VextilVideoDecoder::cameraFrame(const cv::Mat &pixels)
{
    const auto region = [pixels](QRect region, QSize size) -> QImage {
        const QRect inside = region & QRect(0, 0, pixels.cols, pixels.rows);
        if (inside.isEmpty())
            return {};
        const cv::Mat part = pixels(cv::Rect(inside.x(), inside.y(), inside.width(), inside.height()));
        if (inside.size() == size)
            return converted(part);
        // Scaled first, then widened to four bytes: OpenCV scales each channel alike in integers,
        // so the result is the one the whole image would give, for a fraction of the conversion.
        // The scaled copy's buffer stays with the thread (the capture's), as the camera's do.
        thread_local cv::Mat scaled;
        cv::resize(part, scaled, cv::Size(size.width(), size.height()), 0, 0, cv::INTER_LINEAR);
        return converted(scaled);
    };
    return VextilCameraFrame(QSize(pixels.cols, pixels.rows), [pixels] { return converted(pixels); }, region);
}
