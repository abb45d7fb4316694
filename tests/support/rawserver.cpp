#include "tests/support/rawserver.h"

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <sstream>
#include <stdexcept>

namespace lcdtest {

namespace {

int listenOnLoopback(int& port) {
    const int fd = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof address;
    if (fd < 0 || bind(fd, reinterpret_cast<sockaddr*>(&address), length) != 0 || listen(fd, 512) != 0 ||
        getsockname(fd, reinterpret_cast<sockaddr*>(&address), &length) != 0) {
        throw std::runtime_error("no socket to listen on");
    }
    port = ntohs(address.sin_port);
    return fd;
}

RawRequest parseHead(const std::string& head) {
    RawRequest request;
    std::istringstream lines(head);
    lines >> request.verb >> request.target;
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line) && line != "\r") {
        const std::size_t colon = line.find(':');
        std::string name = line.substr(0, colon);
        std::transform(name.begin(), name.end(), name.begin(), [](unsigned char c) { return std::tolower(c); });
        const std::size_t start = line.find_first_not_of(' ', colon + 1);
        request.headers[name] = line.substr(start, line.size() - 1 - start);
    }
    return request;
}

}  // namespace

bool RawConnection::fill() {
    char bytes[16 * 1024];
    const ssize_t count = recv(fd_, bytes, sizeof bytes, 0);
    if (count <= 0) {
        return false;
    }
    buffer_.append(bytes, static_cast<std::size_t>(count));
    return true;
}

std::optional<RawRequest> RawConnection::read() {
    std::size_t end = 0;
    while ((end = buffer_.find("\r\n\r\n")) == std::string::npos) {
        if (!fill()) {
            return std::nullopt;
        }
    }
    RawRequest request = parseHead(buffer_.substr(0, end + 4));
    buffer_.erase(0, end + 4);
    const auto length = request.headers.find("content-length");
    const std::size_t size = length == request.headers.end() ? 0 : std::stoul(length->second);
    while (buffer_.size() < size) {
        if (!fill()) {
            return std::nullopt;
        }
    }
    request.body = buffer_.substr(0, size);
    buffer_.erase(0, size);
    return request;
}

bool RawConnection::send(const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t count = ::send(fd_, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (count <= 0) {
            return false;
        }
        sent += static_cast<std::size_t>(count);
    }
    return true;
}

bool RawConnection::reply(int status, const std::string& body) {
    return send("HTTP/1.1 " + std::to_string(status) + " Status\r\nContent-Length: " + std::to_string(body.size()) +
                "\r\n\r\n" + body);
}

void RawConnection::waitForEnd() {
    while (fill()) {
        buffer_.clear();
    }
}

RawServer::RawServer(Serve serve) : serve_(std::move(serve)), listener_(listenOnLoopback(port_)) {
    acceptor_ = std::thread([this] { acceptAll(); });
}

RawServer::~RawServer() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        for (const Client& client : clients_) {
            shutdown(client.fd, SHUT_RDWR);
        }
    }
    shutdown(listener_, SHUT_RDWR);
    acceptor_.join();
    for (Client& client : clients_) {
        client.thread.join();
        close(client.fd);
    }
    close(listener_);
}

int RawServer::accepted() const {
    const std::lock_guard lock(mutex_);
    return static_cast<int>(clients_.size());
}

void RawServer::acceptAll() {
    while (true) {
        const int fd = accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC);
        const std::lock_guard lock(mutex_);
        if (fd < 0 || stopping_) {
            if (fd >= 0) {
                close(fd);
            }
            return;
        }
        clients_.push_back({fd, std::thread([this, fd] {
                                RawConnection connection(fd);
                                serve_(connection);
                                shutdown(fd, SHUT_RDWR);
                            })});
    }
}

RawServer::Serve answering(std::function<std::string(const RawRequest&)> answer) {
    return [answer = std::move(answer)](RawConnection& connection) {
        while (const auto request = connection.read()) {
            connection.reply(200, answer(*request));
        }
    };
}

}  // namespace lcdtest
