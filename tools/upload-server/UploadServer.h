#pragma once

#include "ServerCertificates.h"

#include <httplib.h>

#include <atomic>
#include <memory>
#include <string>

// HTTPS server that accepts face and document uploads as the toolkit sends them: POST /file
// with a META_INFOS JSON field and one JPEG part per file it names. Each accepted upload is
// stored in a folder of its own and answered with a fresh token.
class UploadServer {
public:
    struct Options {
        std::string host = "127.0.0.1";
        int port = 8443;                     // 0 picks a free port
        std::string key;                     // expected Authorization header, verbatim
        std::string storage = "uploads";     // one folder per upload below this
        std::string certificate, privateKey; // PEM files; made on the spot when empty
        size_t maxBody = 64u << 20;          // larger bodies are answered 413
        int readTimeoutSeconds = 10;         // a client that stalls longer is dropped
        int fixedStatus = 0;                 // when set, every upload is answered with it
        std::string fixedBody;               // body of those answers; a JSON error when empty
        std::string location;                // Location header of those answers, when set
    };

    explicit UploadServer(Options options);

    // Prepares TLS and binds; false with a reason when it cannot.
    bool start(std::string &error);
    // Serves until stop(); call after start().
    void run();
    void stop();

    int port() const { return m_port; }
    // Where the certificate authority was written, when one was made.
    const std::string &authorityPath() const { return m_authorityPath; }

private:
    void handleUpload(const httplib::Request &request, httplib::Response &response);
    void handleStats(const httplib::Request &request, httplib::Response &response);
    bool store(const httplib::Request &request, const std::string &token, std::string &folder);

    Options m_options;
    ServerCertificates m_certificates;
    std::unique_ptr<httplib::SSLServer> m_server;
    std::string m_authorityPath;
    int m_port = 0;
    std::atomic<int> m_requests{0};
    std::atomic<int> m_uploads{0};
};
