#include "devicesim/listener.h"

#include <fmt/format.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <memory>
#include <stdexcept>
#include <utility>

namespace devicesim {

namespace {

constexpr int kPauseMs = 10;  // when no connection can be accepted for want of descriptors

[[noreturn]] void cannotListen(const std::string& host, int port, const char* reason) {
    throw std::runtime_error(
        fmt::format("cannot listen on {} port {}: {}; choose another address or port", host, port, reason));
}

}  // namespace

Listener::Descriptor& Listener::Descriptor::operator=(Descriptor&& other) noexcept {
    std::swap(fd_, other.fd_);
    return *this;
}

// A poll that still runs would keep a closed socket listening, so it is shut down first.
Listener::Descriptor::~Descriptor() {
    if (fd_ >= 0) {
        ::shutdown(fd_, SHUT_RDWR);
        ::close(fd_);
    }
}

int Listener::Descriptor::release() { return std::exchange(fd_, -1); }

Listener::Listener(const std::string& host, int port) : wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    bindFirst(host, port);
    if (const int error = openLocked()) {
        cannotListen(host, port, std::strerror(error));
    }
}

void Listener::start(Accepted accepted) {
    accepted_ = std::move(accepted);
    thread_ = std::thread([this] { acceptAll(); });
}

// On the first of the host's addresses that works.
void Listener::bindFirst(const std::string& host, int port) {
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_flags = AI_PASSIVE;
    addrinfo* found = nullptr;
    if (::getaddrinfo(host.c_str(), std::to_string(port).c_str(), &hints, &found) != 0) {
        cannotListen(host, port, "no such address");
    }
    const std::unique_ptr<addrinfo, decltype(&::freeaddrinfo)> all(found, &::freeaddrinfo);
    int error = EADDRNOTAVAIL;
    for (const addrinfo* each = found; each != nullptr && error != 0; each = each->ai_next) {
        std::memcpy(&address_, each->ai_addr, each->ai_addrlen);
        addressLength_ = each->ai_addrlen;
        error = bindSocket(holder_);
    }
    if (error != 0) {
        cannotListen(host, port, std::strerror(error));
    }
    auto* const address = reinterpret_cast<sockaddr*>(&address_);
    std::array<char, NI_MAXSERV> service{};
    ::getsockname(holder_.get(), address, &addressLength_);
    ::getnameinfo(address, addressLength_, nullptr, 0, service.data(), service.size(), NI_NUMERICSERV);
    port_ = std::stoi(service.data());
}

// With SO_REUSEADDR several sockets may share the port as long as none but the last one listens.
int Listener::bindSocket(Descriptor& bound) const {
    Descriptor descriptor(::socket(address_.ss_family, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    const int on = 1;
    const int off = 0;
    ::setsockopt(descriptor.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    ::setsockopt(descriptor.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);  // inherited by what is accepted
    if (address_.ss_family == AF_INET6) {
        ::setsockopt(descriptor.get(), IPPROTO_IPV6, IPV6_V6ONLY, &off, sizeof off);
    }
    if (::bind(descriptor.get(), reinterpret_cast<const sockaddr*>(&address_), addressLength_) != 0) {
        return errno;
    }
    bound = std::move(descriptor);
    return 0;
}

int Listener::openLocked() {
    Descriptor bound;
    if (const int error = bindSocket(bound)) {
        return error;
    }
    if (::listen(bound.get(), SOMAXCONN) != 0) {
        return errno;
    }
    listening_ = std::move(bound);
    return 0;
}

void Listener::refuse(bool on) {
    const std::lock_guard lock(mutex_);
    if (on || stopping_) {
        listening_ = Descriptor();
    } else if (listening_.get() < 0) {
        openLocked();  // fails only if somebody else has begun to listen on our port: clients reach that one
    }
    wake();
}

void Listener::stop() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        listening_ = Descriptor();
        wake();
    }
    if (thread_.joinable()) {
        thread_.join();
    }
}

void Listener::wake() const { ::eventfd_write(wake_.get(), 1); }

void Listener::acceptAll() {
    std::array<pollfd, 2> waiting{{{wake_.get(), POLLIN, 0}, {-1, POLLIN, 0}}};
    int timeout = 0;
    for (;;) {
        ::poll(waiting.data(), waiting.size(), timeout);
        eventfd_t count = 0;
        ::eventfd_read(wake_.get(), &count);
        int socket = -1;
        {
            const std::lock_guard lock(mutex_);
            if (stopping_) {
                return;
            }
            waiting[1].fd = listening_.get();
            socket = ::accept4(listening_.get(), nullptr, nullptr, SOCK_CLOEXEC);
        }
        const bool exhausted = socket < 0 && (errno == EMFILE || errno == ENFILE || errno == ENOBUFS);
        timeout = exhausted ? kPauseMs : -1;
        if (exhausted) {
            waiting[1].fd = -1;
        }
        if (socket >= 0) {
            accepted_(socket);
        }
    }
}

}  // namespace devicesim
