#pragma once

#include <QCommandLineParser>
#include <QSize>
#include <QString>

// The options both demo hosts take, and what they set in the toolkit, as a host would in code:
//   [--key KEY] [--upload-host HOST:PORT] [--upload-ca PEM] [--camera-file CLIP] [--locale NAME]
//   [--scheme] [--no-tutorial] [--size WxH] [--unattended --screenshots DIR]
class DemoOptions {
public:
    explicit DemoOptions(const QString &description);
    // Parses the command line (exits on --help or a bad option) and applies the key, language,
    // upload host and authority and colour scheme. False, with the reason printed, on failure.
    bool apply(const QCoreApplication &app);

    bool isSet(const QString &name) const { return m_parser.isSet(name); }
    QString value(const QString &name) const { return m_parser.value(name); }
    // The video file standing in for the camera (the sample clip when unattended), empty for
    // the camera itself.
    QString clip() const { return m_clip; }
    // The host window's size: a phone's, 390x844, unless --size says otherwise.
    QSize windowSize() const { return m_size; }

private:
    QCommandLineParser m_parser;
    QString m_clip;
    QSize m_size{390, 844};
};
