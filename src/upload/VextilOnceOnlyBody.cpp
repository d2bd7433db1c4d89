#include "upload/VextilOnceOnlyBody.h"

#include <cstring>

VextilOnceOnlyBody::VextilOnceOnlyBody(QByteArray body, QObject *parent) : QIODevice(parent), m_body(std::move(body))
{
    // Unbuffered: QIODevice would otherwise read ahead into a buffer of its own.
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool VextilOnceOnlyBody::reset() { return m_handedOut == 0; }

qint64 VextilOnceOnlyBody::bytesAvailable() const { return m_body.size() - m_handedOut + QIODevice::bytesAvailable(); }

qint64 VextilOnceOnlyBody::readData(char *data, qint64 maxSize)
{
    const qint64 left = m_body.size() - m_handedOut;
    if (left == 0)
        return -1;  // the end: a sequential device has no more to come
    const qint64 count = std::min(left, maxSize);
    std::memcpy(data, m_body.constData() + m_handedOut, size_t(count));
    m_handedOut += count;
    return count;
}
