#include "camera/VextilVideoDecoder.h"

#include <QFile>
#include <QFileInfo>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/display.h>
}

#include <cmath>
#include <mutex>

struct VextilVideoDecoder::Codec {
    AVFormatContext *format = nullptr;
    AVCodecContext *context = nullptr;
    AVPacket *packet = nullptr;
    int stream = -1;

    ~Codec()
    {
        av_packet_free(&packet);
        avcodec_free_context(&context);
        avformat_close_input(&format);
    }
};

namespace {

QString avError(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE] = {};
    av_strerror(code, text, sizeof text);
    return QString::fromUtf8(text);
}

// FFmpeg writes its complaints about a damaged file to standard error unless told otherwise,
// and the toolkit writes no log. A host that chose a level of its own keeps it.
void quietenCodecLog()
{
    static std::once_flag once;
    std::call_once(once, [] {
        if (av_log_get_level() == AV_LOG_INFO)
            av_log_set_level(AV_LOG_QUIET);
    });
}

// The clockwise quarter turn that the file's display matrix asks for (a phone's recording).
int uprightTurn(const AVStream &stream)
{
    size_t size = 0;
    const uint8_t *matrix = av_stream_get_side_data(&stream, AV_PKT_DATA_DISPLAYMATRIX, &size);
    if (!matrix || size < 9 * sizeof(int32_t))
        return 0;
    const double counterClockwise = av_display_rotation_get(reinterpret_cast<const int32_t *>(matrix));
    if (!std::isfinite(counterClockwise))
        return 0;
    return ((-int(std::lround(counterClockwise / 90.0)) * 90) % 360 + 360) % 360;
}

double statedRate(const AVStream &stream)
{
    for (const AVRational rate : {stream.avg_frame_rate, stream.r_frame_rate})
        if (rate.num > 0 && rate.den > 0)
            return av_q2d(rate);
    return 15.0;
}

int statedFrames(const AVFormatContext &format, const AVStream &stream, double fps)
{
    if (stream.nb_frames > 0)
        return int(std::min<int64_t>(stream.nb_frames, INT32_MAX));
    double seconds = 0;
    if (stream.duration > 0)
        seconds = double(stream.duration) * av_q2d(stream.time_base);
    else if (format.duration > 0)
        seconds = double(format.duration) / AV_TIME_BASE;
    return int(std::min(std::floor(seconds * fps + 0.5), double(INT32_MAX)));
}

}  // namespace

VextilVideoDecoder::VextilVideoDecoder() = default;
VextilVideoDecoder::~VextilVideoDecoder() = default;

bool VextilVideoDecoder::isOpen() const { return m_codec != nullptr; }

bool VextilVideoDecoder::open(const QString &path)
{
    m_codec.reset();
    m_path = path;
    m_error.clear();
    m_nextIndex = m_frameCount = m_rotation = 0;
    m_fps = 15.0;
    m_draining = false;
    if (!QFileInfo(path).isFile()) {
        m_error = QStringLiteral("no such video file: %1").arg(path);
        return false;
    }
    quietenCodecLog();
    auto codec = std::make_unique<Codec>();
    const QString cannot = QStringLiteral("cannot decode video file: %1").arg(path);
    if (avformat_open_input(&codec->format, QFile::encodeName(path).constData(), nullptr, nullptr) < 0
        || avformat_find_stream_info(codec->format, nullptr) < 0) {
        m_error = cannot;
        return false;
    }
    const AVCodec *decoder = nullptr;
    codec->stream = av_find_best_stream(codec->format, AVMEDIA_TYPE_VIDEO, -1, -1, &decoder, 0);
    if (codec->stream < 0 || !decoder) {
        m_error = cannot;
        return false;
    }
    const AVStream &stream = *codec->format->streams[codec->stream];
    codec->context = avcodec_alloc_context3(decoder);
    codec->packet = av_packet_alloc();
    if (!codec->context || !codec->packet || avcodec_parameters_to_context(codec->context, stream.codecpar) < 0
        || stream.codecpar->width <= 0 || stream.codecpar->height <= 0) {
        m_error = cannot;
        return false;
    }
    // Slices, not frames, in parallel: every frame thread would hold pictures of its own.
    codec->context->thread_type = FF_THREAD_SLICE;
    codec->context->thread_count = 0;
    if (avcodec_open2(codec->context, decoder, nullptr) < 0) {
        m_error = cannot;
        return false;
    }
    m_fps = statedRate(stream);
    m_frameCount = statedFrames(*codec->format, stream, m_fps);
    m_rotation = uprightTurn(stream);
    m_codec = std::move(codec);
    return true;
}

QSize VextilVideoDecoder::frameSize() const
{
    if (!isOpen())
        return {};
    const AVCodecParameters &parameters = *m_codec->format->streams[m_codec->stream]->codecpar;
    const QSize stored(parameters.width, parameters.height);
    return m_rotation % 180 ? stored.transposed() : stored;
}

std::optional<VextilVideoDecoder::Frame> VextilVideoDecoder::read()
{
    Frame frame;
    if (!isOpen() || !receive(frame))
        return std::nullopt;
    frame.index = m_nextIndex++;
    frame.seconds = frame.index / m_fps;
    return frame;
}

bool VextilVideoDecoder::receive(Frame &frame)
{
    Codec &codec = *m_codec;
    std::shared_ptr<AVFrame> picture(av_frame_alloc(), [](AVFrame *f) { av_frame_free(&f); });
    if (!picture) {
        fail(QStringLiteral("out of memory"));
        return false;
    }
    for (;;) {
        const int received = avcodec_receive_frame(codec.context, picture.get());
        if (received == 0 && picture->width > 0 && picture->height > 0) {
            frame.picture = VextilDecodedPicture(std::move(picture), m_rotation);
            return true;
        }
        if (received == AVERROR_EOF || (received == AVERROR(EAGAIN) && m_draining))
            return false;
        if (received != 0 && received != AVERROR(EAGAIN)) {
            fail(avError(received));
            return false;
        }
        int read = 0;
        while ((read = av_read_frame(codec.format, codec.packet)) >= 0 && codec.packet->stream_index != codec.stream)
            av_packet_unref(codec.packet);
        if (read < 0) {
            // The end of the file (or of what can be read of it): what the codec still holds comes out.
            m_draining = true;
            avcodec_send_packet(codec.context, nullptr);
            continue;
        }
        const int sent = avcodec_send_packet(codec.context, codec.packet);
        av_packet_unref(codec.packet);
        if (sent < 0 && sent != AVERROR(EAGAIN)) {
            fail(avError(sent));
            return false;
        }
    }
}

void VextilVideoDecoder::fail(const QString &why)
{
    // The file ends at a frame it cannot decode, as a camera that stops does.
    m_error = QStringLiteral("damaged video frame %1: %2").arg(m_nextIndex).arg(why);
    m_codec.reset();
}

bool VextilVideoDecoder::rewind() { return isOpen() && open(m_path); }
