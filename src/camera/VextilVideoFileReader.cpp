#include <VextilToolkit/VextilVideoFileReader.h>

#include <VextilToolkit/VextilImageBuffer.h>

#include <QFileInfo>

#include <opencv2/imgproc.hpp>
#include <opencv2/videoio.hpp>
#include <opencv2/videoio/registry.hpp>

struct VextilVideoFileReader::Private {
    cv::VideoCapture capture;
    cv::Mat decoded;
    cv::Mat bgrx;  // reused for every frame
    QString error;
    int nextIndex = 0;
    double fps = 15.0;
};

VextilVideoFileReader::VextilVideoFileReader() : d(std::make_unique<Private>()) {}
VextilVideoFileReader::~VextilVideoFileReader() = default;

bool VextilVideoFileReader::open(const QString &path)
{
    d->capture.release();
    d->nextIndex = 0;
    d->error.clear();
    if (!QFileInfo(path).isFile()) {
        d->error = QStringLiteral("no such video file: %1").arg(path);
        return false;
    }
    // FFmpeg wherever OpenCV has it: asked for "any" backend, OpenCV would also try a file it
    // cannot decode as an image-sequence pattern and probe camera backends with it.
    const int backend = cv::videoio_registry::hasBackend(cv::CAP_FFMPEG) ? cv::CAP_FFMPEG : cv::CAP_ANY;
    bool opened = false;
    try {
        opened = d->capture.open(path.toStdString(), backend);
    } catch (const cv::Exception &) {
        opened = false;  // reported below like any file the decoder cannot read
    }
    if (!opened) {
        d->capture.release();
        d->error = QStringLiteral("cannot decode video file: %1").arg(path);
        return false;
    }
    const double stated = d->capture.get(cv::CAP_PROP_FPS);
    d->fps = stated > 0 ? stated : 15.0;
    return true;
}

bool VextilVideoFileReader::isOpen() const { return d->capture.isOpened(); }
QString VextilVideoFileReader::errorString() const { return d->error; }
double VextilVideoFileReader::framesPerSecond() const { return d->fps; }

int VextilVideoFileReader::frameCount() const
{
    return isOpen() ? qMax(0, int(d->capture.get(cv::CAP_PROP_FRAME_COUNT))) : 0;
}

QSize VextilVideoFileReader::frameSize() const
{
    if (!isOpen())
        return {};
    return {int(d->capture.get(cv::CAP_PROP_FRAME_WIDTH)), int(d->capture.get(cv::CAP_PROP_FRAME_HEIGHT))};
}

std::optional<VextilVideoFileFrame> VextilVideoFileReader::readFrame()
{
    if (!isOpen())
        return std::nullopt;
    try {
        if (!d->capture.read(d->decoded) || d->decoded.empty())
            return std::nullopt;
    } catch (const cv::Exception &e) {
        // A damaged frame can make the decoder hand OpenCV an impossible picture: the file
        // ends there.
        d->error = QStringLiteral("damaged video frame %1: %2").arg(d->nextIndex).arg(QString::fromStdString(e.msg));
        d->capture.release();
        return std::nullopt;
    }
    // Decoders give blue, green, red; add the fourth byte a camera frame has, then take the
    // camera's own conversion so that both sources yield identical images.
    if (d->decoded.channels() == 4)
        d->decoded.copyTo(d->bgrx);
    else
        cv::cvtColor(d->decoded, d->bgrx, d->decoded.channels() == 1 ? cv::COLOR_GRAY2BGRA : cv::COLOR_BGR2BGRA);
    const VextilSampleBuffer buffer{d->bgrx.data, qsizetype(d->bgrx.total() * d->bgrx.elemSize()),
                                    d->bgrx.cols, d->bgrx.rows, qsizetype(d->bgrx.step)};
    const int index = d->nextIndex++;
    return VextilVideoFileFrame{VextilImageBuffer::imageFromSampleBuffer(buffer), index, index / d->fps};
}

bool VextilVideoFileReader::rewind()
{
    d->nextIndex = 0;
    return isOpen() && d->capture.set(cv::CAP_PROP_POS_FRAMES, 0);
}
