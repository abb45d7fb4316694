// The simulated device: its REST interface, its stream of reports and a control plane, all over HTTP.
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace devicesim {

struct Options {
    std::string dataFolder = {};  ///< start data, one NAME.json for each family; empty: `defaultDataFolder()`
    std::string bind = "127.0.0.1";
    int port = 0;  ///< 0: a free one

    std::chrono::milliseconds heartbeat{1000};  ///< silence on the stream of reports ends after this time
    std::chrono::milliseconds tokenLifetime{std::chrono::hours(24)};
    bool remoteControl = false;  ///< the control plane answers other hosts too

    // Faults from the start: rules as JSON, each text one or a list of them.
    std::vector<std::string> faults = {};
    std::vector<std::string> faultFiles = {};

    // Bounds.
    std::size_t largestBody = 8 << 20;          ///< bytes of a request's body
    std::size_t streams = 64;                   ///< readers of reports at once, fewer than `threads`
    std::size_t streamQueue = 16 << 20;         ///< bytes that wait for one reader before its stream is closed
    std::size_t tokens = 1024;                  ///< valid at once; a login beyond forgets the oldest
    std::size_t threads = 256;                  ///< connections served at once
    std::chrono::milliseconds keepAlive{2000};  ///< an idle connection is closed after this time
    std::chrono::milliseconds ioTimeout{5000};  ///< a connection that stalls within a request is given up
};

/// "share/lcddevicesim" beside the folder of the running program.
std::string defaultDataFolder();

/// Runs from construction to `stop()`. No two threads may stop or destroy it at once; the rest is
/// thread-safe.
class Device {
public:
    /// Starts. Throws std::runtime_error with one clear text for a bad option, bad start data, a bad rule or a
    /// busy port.
    explicit Device(const Options& options = {});
    ~Device();
    Device(const Device&) = delete;
    Device& operator=(const Device&) = delete;

    /// "http://HOST:PORT", without a slash at the end.
    const std::string& url() const;
    int port() const;

    /// A request to the control plane that needs no connection: the data of its reply, as JSON. Throws
    /// std::runtime_error with the message of one that is refused.
    std::string control(const std::string& verb, const std::string& path, const std::string& body = "");

    /// Cuts all connections and returns when no thread is left. A second call does nothing.
    void stop();

private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace devicesim
