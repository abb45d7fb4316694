// The listening socket and the thread that accepts.
#pragma once

#include <sys/socket.h>

#include <functional>
#include <mutex>
#include <string>
#include <thread>

namespace devicesim {

/// Clients can connect from construction to `stop()`.
class Listener {
public:
    /// Called by the accepting thread; the socket is the callee's.
    using Accepted = std::function<void(int socket)>;

    /// Throws std::runtime_error if it cannot listen. Port 0 is any free one.
    Listener(const std::string& host, int port);
    ~Listener() { stop(); }

    void start(Accepted accepted);
    int port() const { return port_; }
    /// While it is on, clients that connect are refused. The port stays ours. Any thread.
    void refuse(bool on);
    /// Joins the thread. Nothing is accepted any more.
    void stop();

private:
    /// A descriptor, closed with it.
    class Descriptor {
    public:
        explicit Descriptor(int fd = -1) : fd_(fd) {}
        Descriptor(Descriptor&& other) noexcept : fd_(other.release()) {}
        Descriptor& operator=(Descriptor&& other) noexcept;
        ~Descriptor();
        int get() const { return fd_; }
        int release();

    private:
        int fd_;
    };

    // These two return 0 or the number of the error.
    int bindSocket(Descriptor& bound) const;
    int openLocked();
    void bindFirst(const std::string& host, int port);
    void acceptAll();
    void wake() const;

    // Fixed after start.
    Accepted accepted_;
    sockaddr_storage address_{};
    socklen_t addressLength_ = 0;
    int port_ = 0;
    Descriptor holder_;  // bound, never listening: holds the port while clients are refused
    const Descriptor wake_;

    std::mutex mutex_;
    // Guarded by mutex_.
    Descriptor listening_;  // none while clients are refused
    bool stopping_ = false;

    std::thread thread_;
};

}  // namespace devicesim
