#include "devicesim/devicesim.h"

#include <fmt/format.h>

#include <fstream>
#include <iterator>
#include <stdexcept>
#include <utility>

#include "devicesim/core.h"
#include "devicesim/families/families.h"
#include "devicesim/httpserver.h"
#include "devicesim/startdata.h"

namespace devicesim {

namespace {

const Options& checked(const Options& options) {
    const auto require = [](bool good, const char* text) {
        if (!good) {
            throw std::runtime_error(text);
        }
    };
    require(options.port >= 0 && options.port <= 65535, "the port must be 0 (a free one) to 65535");
    require(options.heartbeat.count() > 0, "the heartbeat must be at least 1 ms");
    require(options.tokenLifetime.count() > 0, "the token lifetime must be at least 1 ms");
    require(options.tokens > 0, "there must be room for at least one token");
    require(options.streams < options.threads, "there must be fewer streams than threads");
    return options;
}

std::string makeUrl(const std::string& host, int port) {
    return host.find(':') == std::string::npos ? fmt::format("http://{}:{}", host, port)
                                               : fmt::format("http://[{}]:{}", host, port);
}

}  // namespace

struct Device::Impl {
    explicit Impl(const Options& options)
        : core(checked(options), allRows(),
               loadStartData(options.dataFolder.empty() ? defaultDataFolder() : options.dataFolder)),
          server(options, [this](const Request& request) { return core.handle(request); }),
          url(makeUrl(options.bind, server.port())) {
        core.setRefuseConnections([this](bool on) { server.refuse(on); });
        for (const std::string& rules : options.faults) {
            control("POST", "/sim/faults", rules);
        }
        for (const std::string& file : options.faultFiles) {
            addFaultFile(file);
        }
    }

    std::string control(const std::string& verb, const std::string& path, const std::string& body) {
        const Reply reply = core.handle({.verb = verb, .path = path, .body = body, .local = true});
        const json envelope = json::parse(reply.body);
        if (envelope.at("code") != 0) {
            throw std::runtime_error(envelope.at("message").get<std::string>());
        }
        return envelope.at("data").dump();
    }

    void addFaultFile(const std::string& file) {
        std::ifstream stream(file);
        const std::string rules{std::istreambuf_iterator<char>(stream), {}};
        try {
            if (!stream) {
                throw std::runtime_error("cannot be read");
            }
            control("POST", "/sim/faults", rules);
        } catch (const std::runtime_error& error) {
            throw std::runtime_error(fmt::format("{}: {}", file, error.what()));
        }
    }

    Core core;
    HttpServer server;
    const std::string url;
};

Device::Device(const Options& options) : impl_(std::make_unique<Impl>(options)) {}
Device::~Device() { stop(); }
const std::string& Device::url() const { return impl_->url; }
int Device::port() const { return impl_->server.port(); }

std::string Device::control(const std::string& verb, const std::string& path, const std::string& body) {
    return impl_->control(verb, path, body);
}

void Device::stop() {
    impl_->core.stop();
    impl_->server.stop();
}

}  // namespace devicesim
