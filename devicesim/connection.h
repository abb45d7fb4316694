// One client's connection, as the HTTP library reads and writes it.
#pragma once

#include <httplib.h>

#include <array>
#include <chrono>
#include <cstddef>
#include <string>
#include <string_view>

namespace devicesim {

/// Waits in poll(2) for as long as it takes, where the library's own would look a hundred times a second, and
/// bounds what one request may make it read: the library bounds neither header lines nor chunked bodies.
/// The socket stays its caller's. One thread.
class Connection : public httplib::Stream {
public:
    Connection(int socket, std::size_t largestRequest, std::chrono::milliseconds ioTimeout);

    /// Waits for the first byte of the next request; false if there is none in time, or the connection is
    /// done.
    bool awaitRequest(std::chrono::milliseconds timeout);
    /// Nothing more is read: neither the rest of the present request nor another one.
    void finish() { left_ = 0; }
    bool mayGoOn() const { return left_ > 0; }
    /// Nothing more is read or written.
    void cut();
    /// Until the next request writes no more bytes a second than that; 0 is no limit.
    void slowDown(std::size_t bytesPerSecond) { bytesPerSecond_ = bytesPerSecond; }
    /// Waits; false as soon as the client has gone or the connection is shut down.
    bool pause(std::chrono::milliseconds time) const;
    /// Takes in what the client still sends, so that it can read the reply to a request that was not read to
    /// its end: closed at once, the connection would be reset and the reply lost.
    void drain();

    ssize_t read(char* data, std::size_t size) override;
    ssize_t write(const char* data, std::size_t size) override;
    bool is_readable() const override { return begin_ < end_ || wait(kReadable, ioTimeout_); }
    bool is_writable() const override { return wait(kWritable, ioTimeout_); }
    void get_remote_ip_and_port(std::string& ip, int& port) const override;
    void get_local_ip_and_port(std::string& ip, int& port) const override;
    socket_t socket() const override { return socket_; }

private:
    static const short kReadable;
    static const short kWritable;
    static const short kGone;

    struct Address {
        std::string ip;
        int port = -1;
    };
    using AddressGetter = int (*)(int, sockaddr*, socklen_t*);
    static Address address(int socket, AddressGetter getter);
    // Sends what the socket takes.
    ssize_t sendSome(const char* data, std::size_t size) const;
    bool wait(short events, std::chrono::milliseconds timeout) const;

    const int socket_;
    const std::size_t largestRequest_;
    const std::chrono::milliseconds ioTimeout_;
    const Address remote_;
    const Address local_;
    std::size_t left_;  // bytes that the present request may still have
    std::size_t bytesPerSecond_ = 0;
    bool cut_ = false;
    std::array<char, 8192> buffer_;
    std::size_t begin_ = 0;
    std::size_t end_ = 0;
};

}  // namespace devicesim
