#include <VextilToolkit/VextilVideoFileReader.h>

#include "camera/VextilVideoDecoder.h"

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
    // Decoders give blue, green, red: the fourth byte a camera frame has is added as the
    // pixels go into the image, so that both sources yield identical images.
    return VextilVideoFileFrame{VextilVideoDecoder::image(frame->pixels), frame->index, frame->seconds};
}

bool VextilVideoFileReader::rewind() { return d->decoder.rewind(); }
