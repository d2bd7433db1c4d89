#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QString>
#include <QTemporaryDir>

#include <glib.h>

// Sets up the GStreamer fake camera (tools/fake-camera) for this process: what it films, in
// which formats and sizes, and how it fails. Call before the first use of Qt Multimedia: the
// camera list is read once per process. Qt's GStreamer backend is used, the fake camera's
// folder is on the plugin path, and a registry of the build's keeps the user's cache out of it.
struct FakeCamera {
    QString source;               // a video or a photo; empty: no camera at all
    QByteArray formats = "YUY2";  // GStreamer format names or JPEG
    QByteArray sizes = "1280x720";
    QByteArray fault;                         // see FakeCameraSettings.h
    QByteArray names = "Vextil fake camera";  // one camera each, comma-separated
    int startDelayMs = 0;                     // from opening to the first frame

    void install() const
    {
        qputenv("QT_MEDIA_BACKEND", "gstreamer");
        qputenv("GST_PLUGIN_PATH", VEXTIL_FAKE_CAMERA_DIR);
        qputenv("GST_REGISTRY", VEXTIL_GST_REGISTRY);
        // Plugins load in this process, not in GStreamer's scanner: a sanitized build's plugin
        // cannot load into the scanner, which then leaves it out of the registry for good.
        qputenv("GST_REGISTRY_FORK", "no");
        qputenv("VEXTIL_FAKE_CAMERA_SOURCE", source.toUtf8());
        qputenv("VEXTIL_FAKE_CAMERA_FORMATS", formats);
        qputenv("VEXTIL_FAKE_CAMERA_SIZES", sizes);
        qputenv("VEXTIL_FAKE_CAMERA_FAULT", fault);
        qputenv("VEXTIL_FAKE_CAMERA_NAMES", names);
        qputenv("VEXTIL_FAKE_CAMERA_STATE", stateFile().toUtf8());
        qputenv("VEXTIL_FAKE_CAMERA_START_DELAY_MS", QByteArray::number(startDelayMs));
        qputenv("VEXTIL_FAKE_CAMERA_GRANTED", "0");
        QFile::remove(opensFile());
        qputenv("VEXTIL_FAKE_CAMERA_OPENS", opensFile().toUtf8());
    }
    // The user allows the camera: a camera with the fault "until-granted" opens from now on.
    static void grant() { qputenv("VEXTIL_FAKE_CAMERA_GRANTED", "1"); }
    // GStreamer's streaming threads outlive their pipelines, parked in GLib's thread pools, and
    // end on their own up to seconds later. One that ends while the process exits races the leak
    // checker of sanitized builds (its thread-stopping tracer crashes), so a test binary lets
    // them go before it returns: with no idle thread kept, each ends within half a second.
    static void endParkedThreads()
    {
        g_thread_pool_set_max_unused_threads(0);
        for (int waitedMs = 0; waitedMs < 3000; waitedMs += 10) {
            g_thread_pool_stop_unused_threads();
            if (g_thread_pool_get_num_unused_threads() == 0 && streamingThreads() == 0)
                return;
            g_usleep(10 * 1000);
        }
    }
    // Threads named after a pad ("element:pad"), as GStreamer names the ones it streams on.
    static int streamingThreads()
    {
        int count = 0;
        for (const QString &task : QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot)) {
            QFile name(QStringLiteral("/proc/self/task/%1/comm").arg(task));
            count += name.open(QIODevice::ReadOnly) && name.readAll().contains(':');
        }
        return count;
    }
    // How often a camera has been started since install(), whether it opened or not.
    static int opens()
    {
        QFile file(opensFile());
        return file.open(QIODevice::ReadOnly) ? int(file.readAll().count('\n')) : 0;
    }
    static QString opensFile()
    {
        static QTemporaryDir dir;
        return dir.filePath(QStringLiteral("camera-opens"));
    }
    // "open" while a camera films, "closed" once it has been let go.
    static QByteArray state()
    {
        QFile file(stateFile());
        return file.open(QIODevice::ReadOnly) ? file.readAll().trimmed() : QByteArray();
    }
    static QString stateFile()
    {
        static QTemporaryDir dir;
        return dir.filePath(QStringLiteral("camera-state"));
    }
};
