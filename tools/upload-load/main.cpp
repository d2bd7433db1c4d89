// vextil_upload_load: puts the reference upload server under load on loopback and checks that
// nothing is lost. 100 uploads in a row, then 8 clients in parallel, then a client that sends its
// body too slowly and one that hangs up halfway; after each of those the server must still answer.
// Every stored upload must be byte-identical to what was sent. Bounded: each step has a deadline.
//
//   vextil_upload_load --server https://127.0.0.1:PORT --key KEY --ca CA.pem --storage DIR
//                      [--sequential 100] [--parallel 8] [--slow-seconds 3]

#include <QByteArray>
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QRandomGenerator>
#include <QUrl>

#include <openssl/ssl.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

namespace {

struct Target {
    std::string host;
    int port = 0;
    std::string key, ca;
};

// One upload as the toolkit builds it: META_INFOS naming one JPEG-sized file of random bytes.
struct Upload {
    std::string file;
    std::string body, boundary;
};

Upload makeUpload(int seed)
{
    Upload u;
    QRandomGenerator random(quint32(seed) * 2654435761u);
    u.file.resize(size_t(20000 + random.bounded(40000)));
    for (char &c : u.file)
        c = char(random.bounded(256));
    u.boundary = "----Boundary" + std::to_string(seed);
    const std::string meta = R"({"files":[{"name":"file_1.jpeg"}]})";
    u.body = "--" + u.boundary + "\r\nContent-Disposition: form-data; name=\"META_INFOS\"\r\n\r\n" + meta + "\r\n--" + u.boundary
             + "\r\nContent-Disposition: form-data; name=\"file_1.jpeg\"; filename=\"file_1.jpeg\"\r\n"
               "Content-Type: image/jpeg\r\n\r\n"
             + u.file + "\r\n--" + u.boundary + "--\r\n";
    return u;
}

// A raw TLS connection: what each client here speaks, well-behaved or not on purpose.
class RawClient {
public:
    explicit RawClient(const Target &t)
    {
        m_context = SSL_CTX_new(TLS_client_method());
        m_socket = ::socket(AF_INET, SOCK_STREAM, 0);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(quint16(t.port));
        inet_pton(AF_INET, t.host.c_str(), &address.sin_addr);
        timeval timeout{15, 0};  // no read waits for ever
        setsockopt(m_socket, SOL_SOCKET, SO_RCVTIMEO, &timeout, sizeof timeout);
        if (::connect(m_socket, reinterpret_cast<sockaddr *>(&address), sizeof address) != 0)
            return;
        m_ssl = SSL_new(m_context);
        SSL_set_fd(m_ssl, m_socket);
        m_connected = SSL_connect(m_ssl) == 1;
    }
    ~RawClient()
    {
        if (m_ssl)
            SSL_free(m_ssl);
        ::close(m_socket);
        SSL_CTX_free(m_context);
    }
    bool write(const std::string &data) { return m_connected && SSL_write(m_ssl, data.data(), int(data.size())) > 0; }
    // Whether the server closed the connection (or answered) before `seconds` passed.
    bool closedWithin(double seconds)
    {
        char buffer[256];
        const auto deadline = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
        while (std::chrono::steady_clock::now() < deadline)
            if (SSL_read(m_ssl, buffer, sizeof buffer) <= 0)
                return true;
        return false;
    }
    bool connected() const { return m_connected; }
    // Everything the server sends until it closes the connection.
    std::string readAll()
    {
        std::string answer;
        char buffer[4096];
        for (int n; (n = SSL_read(m_ssl, buffer, sizeof buffer)) > 0;)
            answer.append(buffer, size_t(n));
        return answer;
    }

private:
    SSL_CTX *m_context = nullptr;
    SSL *m_ssl = nullptr;
    int m_socket = -1;
    bool m_connected = false;
};

std::string requestHead(const Target &t, const Upload &u)
{
    return "POST /file HTTP/1.1\r\nHost: " + t.host + "\r\nConnection: close\r\nAuthorization: " + t.key
           + "\r\nContent-Type: multipart/form-data; boundary=" + u.boundary
           + "\r\nContent-Length: " + std::to_string(u.body.size()) + "\r\n\r\n";
}

// Sends one upload; the token of the answer, or empty on any failure.
std::string send(const Target &t, const Upload &u)
{
    RawClient client(t);
    if (!client.write(requestHead(t, u) + u.body))
        return {};
    const std::string answer = client.readAll();
    const size_t body = answer.find("\r\n\r\n");
    if (answer.rfind("HTTP/1.1 200", 0) != 0 || body == std::string::npos) {
        std::fprintf(stderr, "upload failed: %s\n", answer.substr(0, answer.find("\r\n")).c_str());
        return {};
    }
    const QByteArray json = QByteArray::fromStdString(answer.substr(body + 4));
    return QJsonDocument::fromJson(json).object().value(QStringLiteral("token")).toString().toStdString();
}

// Whether the stored upload with this token holds exactly the file that was sent.
bool storedIntact(const QString &storage, const std::string &token, const Upload &u)
{
    const QStringList folders = QDir(storage).entryList({QStringLiteral("*-") + QString::fromStdString(token).left(8)}, QDir::Dirs);
    if (folders.size() != 1)
        return false;
    QFile file(QDir(storage).filePath(folders.first() + QStringLiteral("/file_1.jpeg")));
    return file.open(QIODevice::ReadOnly) && file.readAll() == QByteArray::fromStdString(u.file);
}

}  // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser options;
    options.addHelpOption();
    for (const auto &[name, fallback] : {std::pair{"server", ""}, {"key", ""}, {"ca", ""}, {"storage", ""},
                                         {"sequential", "100"}, {"parallel", "8"}, {"slow-seconds", "3"}})
        options.addOption({QString::fromLatin1(name), QString::fromLatin1(name), QStringLiteral("value"), QString::fromLatin1(fallback)});
    options.process(app);
    const QUrl url(options.value(QStringLiteral("server")));
    const Target target{url.host().toStdString(), url.port(), options.value(QStringLiteral("key")).toStdString(),
                        options.value(QStringLiteral("ca")).toStdString()};
    const QString storage = options.value(QStringLiteral("storage"));
    const int sequential = options.value(QStringLiteral("sequential")).toInt();
    const int parallel = options.value(QStringLiteral("parallel")).toInt();
    const double slowSeconds = options.value(QStringLiteral("slow-seconds")).toDouble();

    std::mutex mutex;
    std::vector<std::pair<std::string, Upload>> sent;  // token, upload
    int failures = 0;
    // Called with the token already in hand: the upload is moved in only afterwards.
    const auto record = [&](const std::string &token, Upload u) {
        std::lock_guard lock(mutex);
        if (token.empty())
            ++failures;
        else
            sent.emplace_back(token, std::move(u));
    };

    const auto started = std::chrono::steady_clock::now();
    for (int i = 0; i < sequential; ++i) {
        Upload u = makeUpload(i);
        const std::string token = send(target, u);
        record(token, std::move(u));
    }
    const double sequentialSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    std::printf("sequential: %d uploads in %.2f s, %d failed\n", sequential, sequentialSeconds, failures);

    std::vector<std::thread> clients;
    for (int c = 0; c < parallel; ++c)
        clients.emplace_back([&, c] {
            for (int i = 0; i < 4; ++i) {
                Upload u = makeUpload(1000 + c * 10 + i);
                const std::string token = send(target, u);
                record(token, std::move(u));
            }
        });
    for (std::thread &client : clients)
        client.join();
    std::printf("parallel: %d clients x 4 uploads, %d failed in all\n", parallel, failures);

    // A client that stops sending halfway through its body and waits: the server must give up on
    // it within its read timeout, and answer others meanwhile.
    bool slowDropped = false, truncatedDropped = false;
    {
        const Upload u = makeUpload(5000);
        RawClient slow(target);
        slow.write(requestHead(target, u)) && slow.write(u.body.substr(0, u.body.size() / 2));
        Upload meanwhile = makeUpload(5001);
        const std::string token = send(target, meanwhile);
        record(token, std::move(meanwhile));
        slowDropped = slow.connected() && slow.closedWithin(slowSeconds);
    }
    // A client that hangs up halfway through its body.
    {
        const Upload u = makeUpload(6000);
        RawClient truncated(target);
        truncatedDropped = truncated.connected() && truncated.write(requestHead(target, u))
                           && truncated.write(u.body.substr(0, u.body.size() / 3));
    }
    Upload after = makeUpload(7000);
    const std::string token = send(target, after);
    record(token, std::move(after));

    int intact = 0;
    for (const auto &[token, u] : sent)
        intact += storedIntact(storage, token, u);
    const int folders = int(QDir(storage).entryList(QDir::Dirs | QDir::NoDotAndDotDot).size());
    std::printf("slow client dropped by the server: %s; truncated client sent half and hung up: %s\n",
                slowDropped ? "yes" : "NO", truncatedDropped ? "yes" : "NO");
    std::printf("answered %d, failed %d, stored intact %d, folders %d\n", int(sent.size()), failures, intact, folders);
    const bool ok = failures == 0 && intact == int(sent.size()) && folders == intact && slowDropped && truncatedDropped;
    std::printf("%s\n", ok ? "load: ok" : "load: FAILED");
    return ok ? 0 : 1;
}
