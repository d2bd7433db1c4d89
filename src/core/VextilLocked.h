#pragma once

#include <QMutex>

#include <utility>

// Whole reads and writes of a field that several threads share, under the owner's mutex. The
// capture store, the settings and the face capture model keep their shared fields this way.
template <typename T>
T readLocked(QMutex &mutex, const T &field)
{
    QMutexLocker lock(&mutex);
    return field;
}

template <typename T, typename V>
void writeLocked(QMutex &mutex, T &field, V &&value)
{
    QMutexLocker lock(&mutex);
    field = std::forward<V>(value);
}
