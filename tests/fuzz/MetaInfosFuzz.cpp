// The reference upload server's reading of META_INFOS and of the file names a client sends.
#include "MetaInfos.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    QString problem;
    const QStringList names = MetaInfos::namedFiles(std::string(reinterpret_cast<const char *>(data), size), problem);
    for (const QString &name : names)
        if (!MetaInfos::isSafeName(name) || name.contains(QLatin1Char('/')))
            __builtin_trap();  // a name that could leave the storage folder got through
    return 0;
}
