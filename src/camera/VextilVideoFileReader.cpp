#include <VextilToolkit/VextilVideoFileReader.h>

#include "camera/VextilVideoDecoder.h"

#include <QTransform>

struct VextilVideoFileReader::Private {
    VextilVideoDecoder decoder;
};

VextilVideoFileReader::VextilVideoFileReader() : d(std::make_unique<Private>()) {}
VextilVideoFileReader::~VextilVideoFileReader() = default;

bool VextilVideoFileReader::open(const QString &path) { return d->decoder.open(path); }
bool VextilVideoFileReader::isOpen() const { return d->decoder.isOpen(); }
QString VextilVideoFileReader::errorString() const { return d->decoder.errorString(); }
double VextilVideoFileReader::framesPerSecond() const { return d->decoder.framesPerSecond(); }
int VextilVideoFileReader::frameCount() const { return d->decoder.frameCount(); }
QSize VextilVideoFileReader::frameSize() const { return d->decoder.frameSize(); }

std::optional<VextilVideoFileFrame> VextilVideoFileReader::readFrame()
{
    const auto frame = d->decoder.read();
    if (!frame)
        return std::nullopt;
    // Upright, as the file asks it to be shown (a phone's recording may be stored on its side).
    QImage image = frame->picture.image();
    if (const int turn = frame->picture.rotation(); turn && !image.isNull())
        image = image.transformed(QTransform().rotate(turn));
    return VextilVideoFileFrame{image, frame->index, frame->seconds};
}

bool VextilVideoFileReader::rewind() { return d->decoder.rewind(); }
