#include "devicesim/httpserver.h"

#include <httplib.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <limits>
#include <mutex>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "devicesim/connection.h"
#include "devicesim/devicesim.h"
#include "devicesim/listener.h"
#include "devicesim/reports.h"
#include "devicesim/wholenumber.h"

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
    return wholeNumber<std::int32_t>(request.get_header_value("X-Sequence-Tag")).value_or(0);
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

// The connection that this thread of the pool serves: the library doesn't tell its handlers.
thread_local Connection* served = nullptr;

// At most `limit`.
std::uint64_t lengthOf(const Piece& piece, std::uint64_t limit) {
    const std::uint64_t size = std::max<std::size_t>(1, piece.text.size());
    return piece.times > limit / size ? limit : piece.text.size() * piece.times;
}

std::uint64_t lengthOf(const std::vector<Piece>& pieces) {
    std::uint64_t length = 0;
    for (const Piece& piece : pieces) {
        length += lengthOf(piece, kForever - length);
    }
    return length;
}

// In blocks, so that a body of any length needs little memory. False if the client takes no more.
bool writePieces(const std::vector<Piece>& pieces, std::uint64_t length, const httplib::DataSink& sink) {
    constexpr std::size_t kBlock = 32 << 10;
    for (const Piece& piece : pieces) {
        const std::uint64_t inBlock = std::min(piece.times, kBlock / std::max<std::size_t>(1, piece.text.size()) + 1);
        std::string block;
        for (std::uint64_t i = 0; i < inBlock; ++i) {
            block += piece.text;
        }
        for (std::uint64_t left = lengthOf(piece, length); left > 0;) {
            const std::uint64_t size = std::min<std::uint64_t>(left, block.size());
            if (!sink.write(block.data(), size)) {
                return false;
            }
            left -= size;
            length -= size;
        }
    }
    return true;
}

// A body that faults have made: of pieces, or cut.
void sendPieces(Reply reply, httplib::Response& response) {
    const char* const kType = "application/json";
    if (reply.pieces.empty()) {
        reply.pieces.push_back({std::move(reply.body)});
    }
    const std::uint64_t whole = lengthOf(reply.pieces);
    const std::uint64_t sent = std::min(whole, reply.end.value_or(kForever));
    const std::uint64_t told = reply.endTold ? sent : whole;
    const auto write = [pieces = std::move(reply.pieces), sent, told](httplib::DataSink& sink) {
        return writePieces(pieces, sent, sink) && sent == told;
    };
    if (told == 0) {
        response.set_header("Content-Type", kType);
    } else if (told == kForever) {
        response.set_chunked_content_provider(kType,
                                              [write](std::size_t, httplib::DataSink& sink) { return write(sink); });
    } else {
        response.set_content_provider(
            told, kType, [write](std::size_t, std::size_t, httplib::DataSink& sink) { return write(sink); });
    }
}

}  // namespace

class HttpServer::Impl : private httplib::Server {
public:
    Impl(const devicesim::Options& options, HttpServer::Handler handler);
    ~Impl() override { shutDown(); }

    int port() const { return listener_.port(); }
    void refuse(bool on) { listener_.refuse(on); }
    void shutDown();

private:
    void addRoutes();
    void serve(int socket);
    void prepare(Connection& connection, httplib::Request& request) const;
    void readBody(const httplib::Request& from, const httplib::ContentReader& reader, Request& request) const;
    void respond(Reply reply, httplib::Response& response) const;

    // Fixed after start.
    const HttpServer::Handler handler_;
    const std::size_t largestBody_;
    const std::chrono::milliseconds heartbeat_;
    const std::chrono::milliseconds keepAlive_;
    const std::chrono::milliseconds ioTimeout_;

    std::mutex mutex_;
    // Guarded by mutex_.
    std::set<int> sockets_;  // being served
    bool stopping_ = false;

    Listener listener_;
    httplib::ThreadPool pool_;
};

HttpServer::Impl::Impl(const devicesim::Options& options, HttpServer::Handler handler)
    : handler_(std::move(handler)),
      largestBody_(options.largestBody),
      heartbeat_(options.heartbeat),
      keepAlive_(options.keepAlive),
      ioTimeout_(options.ioTimeout),
      listener_(options.bind, options.port),
      pool_(options.threads) {
    addRoutes();
    // What the replies promise; the connections see to it themselves.
    set_keep_alive_timeout(std::max<time_t>(1, std::chrono::duration_cast<std::chrono::seconds>(keepAlive_).count()));
    set_keep_alive_max_count(std::numeric_limits<int>::max());
    // The library never accepts here, but writes streams only while it believes that it does.
    svr_sock_ = 0;
    listener_.start([this](int socket) { pool_.enqueue([this, socket] { serve(socket); }); });
}

// All paths lead to the one handler: the core has the table of routes.
void HttpServer::Impl::addRoutes() {
    const auto withBody = [this](const httplib::Request& from, httplib::Response& response,
                                 const httplib::ContentReader& reader) {
        Request request = convert(from);
        readBody(from, reader, request);
        respond(handler_(request), response);
    };
    const auto withoutBody = [this](const httplib::Request& from, httplib::Response& response) {
        Request request = convert(from);
        request.body = from.body;
        respond(handler_(request), response);
    };
    Get(".*", withoutBody);
    Options(".*", withoutBody);
    Post(".*", withBody);
    Put(".*", withBody);
    Patch(".*", withBody);
    Delete(".*", withBody);
}

// Runs in a thread of the pool, as do the handlers that it calls.
void HttpServer::Impl::serve(int socket) {
    bool welcome = false;
    {
        const std::lock_guard lock(mutex_);
        welcome = !stopping_ && sockets_.insert(socket).second;
    }
    if (welcome) {
        Connection connection(socket, largestBody_ + kHeaderRoom, ioTimeout_);
        served = &connection;
        bool closed = false;
        while (!closed && connection.awaitRequest(keepAlive_) &&
               process_request(connection, false, closed,
                               [&](httplib::Request& request) { prepare(connection, request); })) {
        }
        connection.drain();
        const std::lock_guard lock(mutex_);
        sockets_.erase(socket);
    }
    ::shutdown(socket, SHUT_RDWR);
    ::close(socket);
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

// What is too large isn't read to its end. The parts of a form are kept apart.
void HttpServer::Impl::readBody(const httplib::Request& from, const httplib::ContentReader& reader,
                                Request& request) const {
    if (!from.has_header("Content-Length") && !from.has_header("Transfer-Encoding")) {
        return;
    }
    std::size_t left = largestBody_;
    std::string* content = &request.body;
    const auto append = [&](const char* data, std::size_t size) {
        if (size > left) {
            request.bodyError = 413;
            return false;
        }
        left -= size;
        content->append(data, size);
        return true;
    };
    const auto beginPart = [&](const httplib::MultipartFormData& part) {
        request.parts.push_back({part.name, part.filename, part.content_type});
        content = &request.parts.back().bytes;
        return true;
    };
    if (from.get_header_value<std::uint64_t>("Content-Length") > largestBody_ + kHeaderRoom) {
        request.bodyError = 413;
    } else if (!(from.is_multipart_form_data() ? reader(beginPart, append) : reader(append)) &&
               request.bodyError == 0) {
        request.bodyError = 400;
    }
    if (request.bodyError != 0) {
        served->finish();
    }
}

void HttpServer::Impl::respond(Reply reply, httplib::Response& response) const {
    Connection* const connection = served;
    connection->slowDown(reply.bytesPerSecond);
    const bool gone = reply.delay.count() > 0 && !connection->pause(reply.delay);
    if (gone || reply.lost) {
        connection->cut();
    }
    response.status = reply.status;
    if (reply.stream) {
        response.set_header("Cache-Control", "no-cache");
        response.set_chunked_content_provider(
            "text/event-stream", [connection, stream = std::move(reply.stream), heartbeat = heartbeat_](
                                     std::size_t, httplib::DataSink& sink) {
                const auto text = stream->next(heartbeat);
                // Nothing is written to a client of a mute stream that could tell that it has gone.
                return text && (text->empty() ? connection->pause(std::chrono::milliseconds(0))
                                              : sink.write(text->data(), text->size()));
            });
        return;
    }
    if (!connection->mayGoOn()) {
        response.set_header("Connection", "close");
    }
    if (reply.pieces.empty() && !reply.end) {
        response.set_header("Content-Type", "application/json");
        response.body = std::move(reply.body);
        return;
    }
    sendPieces(std::move(reply), response);
}

void HttpServer::Impl::shutDown() {
    {
        const std::lock_guard lock(mutex_);
        if (std::exchange(stopping_, true)) {
            return;
        }
        for (const int socket : sockets_) {
            ::shutdown(socket, SHUT_RDWR);
        }
    }
    listener_.stop();
    pool_.shutdown();
}

HttpServer::HttpServer(const Options& options, Handler handler)
    : impl_(std::make_unique<Impl>(options, std::move(handler))) {}
HttpServer::~HttpServer() = default;
int HttpServer::port() const { return impl_->port(); }
void HttpServer::refuse(bool on) { impl_->refuse(on); }
void HttpServer::stop() { impl_->shutDown(); }

}  // namespace devicesim
