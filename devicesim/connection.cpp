#include "devicesim/connection.h"

#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

namespace devicesim {

namespace {

constexpr std::size_t kSlicesPerSecond = 20;  // of a slow reply

bool wouldBlock() { return errno == EAGAIN || errno == EWOULDBLOCK; }

}  // namespace

const short Connection::kReadable = POLLIN;
const short Connection::kWritable = POLLOUT;
const short Connection::kGone = POLLRDHUP;

Connection::Connection(int socket, std::size_t largestRequest, std::chrono::milliseconds ioTimeout)
    : socket_(socket),
      largestRequest_(largestRequest),
      ioTimeout_(ioTimeout),
      remote_(address(socket, ::getpeername)),
      local_(address(socket, ::getsockname)),
      left_(largestRequest) {}

bool Connection::awaitRequest(std::chrono::milliseconds timeout) {
    if (left_ == 0) {
        return false;
    }
    left_ = largestRequest_;
    bytesPerSecond_ = 0;
    return begin_ < end_ || wait(kReadable, timeout);
}

ssize_t Connection::read(char* data, std::size_t size) {
    if (left_ == 0) {
        return -1;
    }
    while (begin_ == end_) {
        const ssize_t got = ::recv(socket_, buffer_.data(), buffer_.size(), MSG_DONTWAIT);
        if (got > 0) {
            begin_ = 0;
            end_ = static_cast<std::size_t>(got);
        } else if (got == 0 || (errno != EINTR && !(wouldBlock() && wait(kReadable, ioTimeout_)))) {
            return got;
        }
    }
    size = std::min({size, end_ - begin_, left_});
    std::memcpy(data, buffer_.data() + begin_, size);
    begin_ += size;
    left_ -= size;
    return static_cast<ssize_t>(size);
}

void Connection::cut() {
    finish();
    cut_ = true;
}

// The library takes a write that is not complete for a broken one.
ssize_t Connection::write(const char* data, std::size_t size) {
    const std::size_t slice =
        std::max<std::size_t>(1, bytesPerSecond_ == 0 ? size : bytesPerSecond_ / kSlicesPerSecond);
    for (std::size_t at = 0; at < size;) {
        const ssize_t sent = cut_ ? -1 : sendSome(data + at, std::min(slice, size - at));
        if (sent < 0) {
            return -1;
        }
        at += static_cast<std::size_t>(sent);
        if (bytesPerSecond_ != 0 &&
            !pause(std::chrono::milliseconds(1000 * static_cast<std::size_t>(sent) / bytesPerSecond_))) {
            return -1;
        }
    }
    return static_cast<ssize_t>(size);
}

ssize_t Connection::sendSome(const char* data, std::size_t size) const {
    for (;;) {
        const ssize_t sent = ::send(socket_, data, size, MSG_DONTWAIT | MSG_NOSIGNAL);
        if (sent >= 0 || (errno != EINTR && !(wouldBlock() && wait(kWritable, ioTimeout_)))) {
            return sent;
        }
    }
}

bool Connection::pause(std::chrono::milliseconds time) const { return !wait(kGone, time); }

void Connection::drain() {
    if (left_ > 0 || cut_) {
        return;
    }
    ::shutdown(socket_, SHUT_WR);
    const auto end = std::chrono::steady_clock::now() + ioTimeout_;
    while (std::chrono::steady_clock::now() < end && wait(kReadable, ioTimeout_) &&
           ::recv(socket_, buffer_.data(), buffer_.size(), MSG_DONTWAIT) > 0) {
    }
}

void Connection::get_remote_ip_and_port(std::string& ip, int& port) const {
    ip = remote_.ip;
    port = remote_.port;
}

void Connection::get_local_ip_and_port(std::string& ip, int& port) const {
    ip = local_.ip;
    port = local_.port;
}

Connection::Address Connection::address(int socket, AddressGetter getter) {
    sockaddr_storage storage{};
    socklen_t length = sizeof storage;
    std::array<char, NI_MAXHOST> host{};
    std::array<char, NI_MAXSERV> service{};
    auto* const raw = reinterpret_cast<sockaddr*>(&storage);
    if (getter(socket, raw, &length) != 0 || ::getnameinfo(raw, length, host.data(), host.size(), service.data(),
                                                           service.size(), NI_NUMERICHOST | NI_NUMERICSERV) != 0) {
        return {};
    }
    return {host.data(), std::atoi(service.data())};
}

bool Connection::wait(short events, std::chrono::milliseconds timeout) const {
    pollfd entry{.fd = socket_, .events = events, .revents = 0};
    int ready = 0;
    do {
        ready = ::poll(&entry, 1, static_cast<int>(timeout.count()));
    } while (ready < 0 && errno == EINTR);
    return ready > 0;
}

}  // namespace devicesim
