// The error-text table parser on arbitrary text: it must never crash or read out of bounds.
#include "core/VextilStringsTable.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const VextilStringsTable table =
        VextilStringsTable::parse(QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size)));
    (void)table.value(QStringLiteral("420-description"));
    return 0;
}
