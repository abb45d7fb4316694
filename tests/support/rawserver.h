// An HTTP server made of bare sockets, for tests that want to misbehave in every detail.
#pragma once

#include <functional>
#include <list>
#include <map>
#include <mutex>
#include <optional>
#include <string>
#include <thread>

namespace lcdtest {

struct RawRequest {
    std::string verb;
    std::string target;
    std::map<std::string, std::string> headers;  // names in small letters
    std::string body;
};

/// One accepted connection, used by the thread that serves it.
class RawConnection {
public:
    explicit RawConnection(int fd) : fd_(fd) {}

    /// The next request; none when the other side or the server has closed the connection.
    std::optional<RawRequest> read();
    /// False when nobody listens any more.
    bool send(const std::string& bytes);
    /// An answer with a length, on a connection that stays.
    bool reply(int status, const std::string& body);
    /// Waits until the other side or the server closes the connection.
    void waitForEnd();

private:
    bool fill();

    const int fd_;
    std::string buffer_;
};

/// Serves each connection in a thread of its own. Gone without a trace after its destruction.
class RawServer {
public:
    using Serve = std::function<void(RawConnection&)>;

    explicit RawServer(Serve serve);
    ~RawServer();

    std::string url() const { return "http://127.0.0.1:" + std::to_string(port_); }
    /// Connections accepted so far.
    int accepted() const;

private:
    struct Client {
        int fd;
        std::thread thread;
    };

    void acceptAll();

    const Serve serve_;
    int port_ = 0;
    int listener_ = -1;
    mutable std::mutex mutex_;
    std::list<Client> clients_;
    bool stopping_ = false;
    std::thread acceptor_;
};

/// Serves requests one after the other with `answer`, which returns the body of a reply with status 200.
RawServer::Serve answering(std::function<std::string(const RawRequest&)> answer);

}  // namespace lcdtest
