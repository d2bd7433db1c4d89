// Upload request figures for a full capture (five neutral and two smiling portrait 720x1280
// frames): time to build the request, the share of it outside JPEG encoding, and the extra
// memory the body takes.

#include <VextilToolkit/VextilRepository.h>
#include <VextilToolkit/VextilVideoFileReader.h>

#include <QCoreApplication>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdio>
#include <malloc.h>
#include <vector>

namespace {

double since(const QElapsedTimer &timer) { return double(timer.nsecsElapsed()) / 1e6; }

size_t heapInUse()
{
    const struct mallinfo2 info = mallinfo2();
    return info.uordblks + info.hblkhd;
}

// Seven frames of the sample clip, spread over its neutral and smiling parts.
bool loadCapture(VextilRepository *store)
{
    VextilVideoFileReader reader;
    if (!reader.open(QStringLiteral(VEXTIL_SELFIE_CLIP)))
        return false;
    auto neutral = std::make_shared<QList<QImage>>(), smiling = std::make_shared<QList<QImage>>();
    while (auto frame = reader.readFrame()) {
        if (frame->index >= 15 && frame->index < 90 && frame->index % 15 == 0)
            neutral->append(frame->image);
        if (frame->index == 110 || frame->index == 130)
            smiling->append(frame->image);
    }
    store->setFaceImages(neutral);
    store->setFaceSmileImages(smiling);
    return neutral->size() == 5 && smiling->size() == 2;
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    VextilRepository *store = VextilRepository::sharedInstance();
    if (!loadCapture(store)) {
        std::fprintf(stderr, "cannot read the sample clip %s\n", VEXTIL_SELFIE_CLIP);
        return 1;
    }
    std::vector<double> total, encoding, rest;
    size_t bodyBytes = 0, jpegBytes = 0, bodyHeap = 0;
    for (int run = 0; run < 5; ++run) {
        QElapsedTimer timer;
        timer.start();
        const auto files = store->mountImagesDataWithDataType(VextilDataTypeFace);
        const double encoded = since(timer);
        const size_t before = heapInUse();
        const QString boundary = VextilRepository::generateBoundary();
        const VextilMetadataField metadata{QStringLiteral("META_INFOS"),
                                           VextilRepository::jsonStringFromDict(store->mountMetaInfoWithDataType(VextilDataTypeFace))};
        const QByteArray body = VextilRepository::mountBodyDataWithMetadata(metadata, *files, boundary);
        const auto headers = VextilRepository::generateHeaderWithAuthKey(QStringLiteral("key"), boundary);
        const double built = since(timer);
        bodyHeap = heapInUse() - before;
        total.push_back(built);
        encoding.push_back(encoded);
        rest.push_back(built - encoded);
        bodyBytes = size_t(body.size());
        jpegBytes = 0;
        for (const VextilFilePart &file : *files)
            jpegBytes += size_t(file.data.size());
        Q_UNUSED(headers);
    }
    const auto median = [](std::vector<double> v) {
        std::sort(v.begin(), v.end());
        return v[v.size() / 2];
    };
    std::printf("VextilToolkit upload request benchmark (5 + 2 portrait 720x1280 images, median of 5)\n");
    std::printf("build the request:          %8.2f ms\n", median(total));
    std::printf("  JPEG encoding (quality 100): %6.2f ms\n", median(encoding));
    std::printf("  everything else:          %8.3f ms  (%.2f%% of the total; aim < 10%%)\n", median(rest),
                100.0 * median(rest) / median(total));
    std::printf("body: %zu bytes for %zu bytes of JPEG (framing %zu bytes); extra heap while built: %.1f MiB\n",
                bodyBytes, jpegBytes, bodyBytes - jpegBytes, double(bodyHeap) / (1 << 20));
    return 0;
}
