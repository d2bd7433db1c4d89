// The video file reader on damaged files: open and read a few frames of whatever the bytes are.
#include <VextilToolkit/VextilVideoFileReader.h>

#include <QDir>
#include <QCoreApplication>
#include <QFile>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const QString path = QDir::temp().filePath(QStringLiteral("vextil-fuzz-%1.avi").arg(QCoreApplication::applicationPid()));
    {
        QFile file(path);
        if (!file.open(QIODevice::WriteOnly))
            return 0;
        file.write(reinterpret_cast<const char *>(data), qint64(size));
    }
    VextilVideoFileReader reader;
    if (reader.open(path))
        for (int i = 0; i < 4 && reader.readFrame(); ++i) {
        }
    QFile::remove(path);
    return 0;
}
