// The upload service's answer decoding on arbitrary bytes.
#include "upload/VextilUploadAnswer.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const auto answer = VextilUploadAnswer::decode(QByteArray(reinterpret_cast<const char *>(data), qsizetype(size)));
    if (answer)
        (void)answer->value(QStringLiteral("token")).toString();
    return 0;
}
