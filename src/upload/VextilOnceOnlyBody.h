#pragma once

#include <QByteArray>
#include <QIODevice>

/// An upload's body that can be read only once. Qt's HTTP/1.1 layer re-sends a request whose
/// connection closed before an answer by rewinding the body; this body refuses to rewind once a
/// byte of it has been handed out, so such a re-send ends the transfer with an error instead, and
/// the server receives the request at most once. Sequential, so that Qt reads it as it sends
/// (given a Content-Length and no buffering) and keeps no copy of its own to send again.
class VextilOnceOnlyBody : public QIODevice {
public:
    /// An open, read-only body.
    explicit VextilOnceOnlyBody(QByteArray body, QObject *parent = nullptr);

    bool isSequential() const override { return true; }
    /// Succeeds only while nothing has been read.
    bool reset() override;
    qint64 bytesAvailable() const override;

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *, qint64) override { return -1; }

private:
    QByteArray m_body;
    qint64 m_handedOut = 0;
};
