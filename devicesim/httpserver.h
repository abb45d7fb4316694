// HTTP in front of the core: connections, requests in, replies and streams out.
#pragma once

#include <functional>
#include <memory>

#include "devicesim/wire.h"

namespace devicesim {

struct Options;

/// Runs from construction to `stop()`.
class HttpServer {
public:
    /// Called by many threads at once.
    using Handler = std::function<Reply(const Request&)>;

    /// Throws std::runtime_error if it cannot listen.
    HttpServer(const Options& options, Handler handler);
    ~HttpServer();

    int port() const;
    /// While it is on, new connections are refused; those that are open stay.
    void refuse(bool on);
    /// Cuts all connections, joins all threads. Streams must have been closed before.
    void stop();

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace devicesim
