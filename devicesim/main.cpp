// lcddevicesim: the simulated device as a program.
#include <fmt/core.h>
#include <pthread.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <exception>
#include <limits>
#include <string>

#include "devicesim/devicesim.h"

namespace {

constexpr int kBadInput = 2;

int run(const devicesim::Options& options) {
    // Blocked before the first thread, so that all inherit it and the wait below gets them.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    try {
        const devicesim::Device device(options);
        fmt::print("{}\n", device.url());
        std::fflush(stdout);
        int signal = 0;
        sigwait(&signals, &signal);
        return 0;
    } catch (const std::exception& error) {
        fmt::print(stderr, "lcddevicesim: {}\n", error.what());
        return kBadInput;
    }
}

}  // namespace

int main(int argc, char** argv) {
    devicesim::Options options;
    auto heartbeat = options.heartbeat.count();
    auto lifetime = std::chrono::duration_cast<std::chrono::seconds>(options.tokenLifetime).count();
    constexpr int kMostMs = std::numeric_limits<int>::max();

    CLI::App app("The simulated device. Prints its URL and runs until SIGTERM or SIGINT.", "lcddevicesim");
    app.option_defaults()->always_capture_default();
    app.footer(
        "A fault is a rule such as {\"kind\":\"delay\",\"ms\":200,\"path\":\"/zelto/v1/layer\",\"probability\":0.1}.\n"
        "One of an unknown kind is refused with the names of all. /sim/faults shows, adds and removes rules at run "
        "time.");
    app.add_option("--port", options.port, "TCP port, 0 for a free one")->check(CLI::Range(0, 65535));
    app.add_option("--bind", options.bind, "address to listen on");
    app.add_option("--data", options.dataFolder, "folder of the start data, *.json")
        ->default_str(devicesim::defaultDataFolder());
    app.add_option("--heartbeat-ms", heartbeat, "longest silence on a stream of reports")
        ->check(CLI::Range(1, kMostMs));
    app.add_option("--token-ttl", lifetime, "life of a token in seconds")->check(CLI::Range(1, kMostMs));
    app.add_option("--max-body", options.largestBody, "largest body of a request in bytes");
    app.add_option("--max-streams", options.streams, "most streams of reports at once")
        ->check(CLI::Range(std::size_t{0}, options.threads - 1));
    app.add_option("--fault", options.faults, "a fault from the start, as JSON; may be repeated")
        ->type_name("JSON")
        ->take_all()
        ->expected(1);
    app.add_option("--faults", options.faultFiles, "file with a fault or a list of them, as JSON; may be repeated")
        ->type_name("FILE")
        ->take_all()
        ->expected(1);
    app.add_flag("--remote-control", options.remoteControl, "let other hosts use the control plane under /sim");
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() == 0) {
            return app.exit(error);
        }
        fmt::print(stderr, "lcddevicesim: {} (--help tells the options)\n", error.what());
        return kBadInput;
    }
    options.heartbeat = std::chrono::milliseconds(heartbeat);
    options.tokenLifetime = std::chrono::seconds(lifetime);
    return run(options);
}
