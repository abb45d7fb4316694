#include "devicesim/httpserver.h"

#include <fmt/format.h>
#include <httplib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <chrono>
#include <cstring>
#include <future>
#include <limits>
#include <mutex>
#include <set>
#include <stdexcept>
#include <string_view>
#include <thread>

#include "devicesim/connection.h"
#include "devicesim/devicesim.h"
#include "devicesim/reports.h"

namespace devicesim {

namespace {

// What a request has around its body: request line, headers, marks of chunks or parts.
constexpr std::size_t kHeaderRoom = 64 << 10;

std::string bearerToken(const httplib::Request& request) {
    constexpr std::string_view kScheme = "Bearer ";
    const std::string value = request.get_header_value("Authorization");
    return value.starts_with(kScheme) ? value.substr(kScheme.size()) : std::string();
}

// Zero for a tag that is missing or no number.
std::int32_t sequenceTag(const httplib::Request& request) {
    const std::string text = request.get_header_value("X-Sequence-Tag");
    std::int32_t tag = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), tag);
    return error == std::errc() && end == text.data() + text.size() ? tag : 0;
}

bool isLoopback(std::string_view ip) { return ip.starts_with("127.") || ip == "::1" || ip.starts_with("::ffff:127."); }

Request convert(const httplib::Request& request) {
    return {.verb = request.method,
            .path = request.path,
            .query = request.params,
            .token = bearerToken(request),
            .sequence = sequenceTag(request),
            .local = isLoopback(request.remote_addr)};
}

}  // namespace

class HttpServer::Impl : private httplib::Server {
public:
    Impl(const devicesim::Options& options, HttpServer::Handler handler);
    ~Impl() override { shutDown(); }

    int port() const { return port_; }
    void shutDown();

private:
    void addRoutes();
    void listenOn(const std::string& host, int port);
    bool process_and_close_socket(socket_t socket) override;
    void prepare(Connection& connection, httplib::Request& request) const;
    void readBody(const httplib::Request& from, const httplib::ContentReader& reader, Request& request) const;
    void respond(Reply reply, httplib::Response& response) const;

    // Fixed after start.
    const HttpServer::Handler handler_;
    const std::size_t largestBody_;
    const std::chrono::milliseconds heartbeat_;
    const std::chrono::milliseconds keepAlive_;
    const std::chrono::milliseconds ioTimeout_;
    int port_ = 0;
    std::promise<void> running_;
    std::thread listener_;

    std::mutex mutex_;
    // Guarded by mutex_.
    std::set<socket_t> sockets_;  // being served
    bool stopping_ = false;
};

HttpServer::Impl::Impl(const devicesim::Options& options, HttpServer::Handler handler)
    : handler_(std::move(handler)),
      largestBody_(options.largestBody),
      heartbeat_(options.heartbeat),
      keepAlive_(options.keepAlive),
      ioTimeout_(options.ioTimeout) {
    addRoutes();
    set_tcp_nodelay(true);
    // What the replies promise; the connections see to it themselves.
    set_keep_alive_timeout(std::max<time_t>(1, std::chrono::duration_cast<std::chrono::seconds>(keepAlive_).count()));
    set_keep_alive_max_count(std::numeric_limits<int>::max());
    // The library's default would let two servers share a port.
    set_socket_options([](socket_t socket) {
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    });
    listenOn(options.bind, options.port);

    // The library calls this once it counts as running; stopped earlier it would run on.
    new_task_queue = [this, threads = options.threads] {
        auto pool = std::make_unique<httplib::ThreadPool>(threads);
        running_.set_value();
        return pool.release();
    };
    listener_ = std::thread([this] { listen_after_bind(); });
    running_.get_future().wait();
}

void HttpServer::Impl::listenOn(const std::string& host, int port) {
    errno = 0;
    port_ = port == 0 ? bind_to_any_port(host) : bind_to_port(host, port) ? port : -1;
    if (port_ < 0) {
        const bool bindFailed = errno == EADDRINUSE || errno == EADDRNOTAVAIL || errno == EACCES;
        throw std::runtime_error(fmt::format("cannot listen on {} port {}: {}; choose another address or port", host,
                                             port, bindFailed ? std::strerror(errno) : "no such address"));
    }
    // The library's queue of five makes a client that opens many connections at once wait for seconds.
    ::listen(svr_sock_, SOMAXCONN);
}

// All paths lead to the one handler: the core has the table of routes.
void HttpServer::Impl::addRoutes() {
    const auto withBody = [this](const httplib::Request& from, httplib::Response& response,
                                 const httplib::ContentReader& reader) {
        Request request = convert(from);
        readBody(from, reader, request);
        respond(handler_(request), response);
    };
    Get(".*", [this](const httplib::Request& from, httplib::Response& response) {
        Request request = convert(from);
        request.body = from.body;
        respond(handler_(request), response);
    });
    Post(".*", withBody);
    Put(".*", withBody);
    Delete(".*", withBody);
}

// Runs in a thread of the pool, as do the handlers that it calls.
bool HttpServer::Impl::process_and_close_socket(socket_t socket) {
    bool serve = false;
    {
        const std::lock_guard lock(mutex_);
        serve = !stopping_ && sockets_.insert(socket).second;
    }
    if (serve) {
        Connection connection(socket, largestBody_ + kHeaderRoom, ioTimeout_);
        bool closed = false;
        while (!closed && connection.awaitRequest(keepAlive_) &&
               process_request(connection, false, closed,
                               [&](httplib::Request& request) { prepare(connection, request); })) {
        }
        const std::lock_guard lock(mutex_);
        sockets_.erase(socket);
    }
    ::shutdown(socket, SHUT_RDWR);
    ::close(socket);
    return true;
}

// Headers are read, the body is not.
void HttpServer::Impl::prepare(Connection& connection, httplib::Request& request) const {
    // Replies go out whole and as they are.
    request.headers.erase("Accept-Encoding");
    request.ranges.clear();
    // The library leaves the body of a GET unread and would take it for the next request.
    if (request.method == "GET" && (request.has_header("Content-Length") || request.has_header("Transfer-Encoding"))) {
        const auto length = request.get_header_value<std::uint64_t>("Content-Length");
        if (request.has_header("Transfer-Encoding") || length > largestBody_) {
            connection.finish();
            return;
        }
        request.body.resize(length);
        for (std::size_t at = 0; at < length;) {
            const ssize_t got = connection.read(request.body.data() + at, length - at);
            if (got <= 0) {
                connection.finish();
                return;
            }
            at += static_cast<std::size_t>(got);
        }
    }
}

// Reads to the end also what is too large, so that the next request is found; the connection bounds that. Of
// a form the parts' contents are the body.
void HttpServer::Impl::readBody(const httplib::Request& from, const httplib::ContentReader& reader,
                                Request& request) const {
    if (!from.has_header("Content-Length") && !from.has_header("Transfer-Encoding")) {
        return;
    }
    const auto append = [&](const char* data, std::size_t size) {
        if (request.body.size() + size > largestBody_) {
            request.bodyError = 413;
        }
        if (request.bodyError == 0) {
            request.body.append(data, size);
        }
        return true;
    };
    const bool whole = from.is_multipart_form_data()
                           ? reader([](const httplib::MultipartFormData&) { return true; }, append)
                           : reader(append);
    if (!whole && request.bodyError == 0) {
        request.bodyError = 400;
    }
}

void HttpServer::Impl::respond(Reply reply, httplib::Response& response) const {
    response.status = reply.status;
    if (!reply.stream) {
        response.set_header("Content-Type", "application/json");
        response.body = std::move(reply.body);
        return;
    }
    response.set_header("Cache-Control", "no-cache");
    response.set_chunked_content_provider(
        "text/event-stream",
        [stream = std::move(reply.stream), heartbeat = heartbeat_](std::size_t, httplib::DataSink& sink) {
            const auto text = stream->next(heartbeat);
            return text && sink.write(text->data(), text->size());
        });
}

void HttpServer::Impl::shutDown() {
    {
        const std::lock_guard lock(mutex_);
        stopping_ = true;
        for (const socket_t socket : sockets_) {
            ::shutdown(socket, SHUT_RDWR);
        }
    }
    stop();
    if (listener_.joinable()) {
        listener_.join();
    }
}

HttpServer::HttpServer(const Options& options, Handler handler)
    : impl_(std::make_unique<Impl>(options, std::move(handler))) {}
HttpServer::~HttpServer() = default;
int HttpServer::port() const { return impl_->port(); }
void HttpServer::stop() { impl_->shutDown(); }

}  // namespace devicesim
