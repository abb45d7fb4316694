// The panel tool: a host that runs the plug-in for a person.
#include <spdlog/sinks/stdout_sinks.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <memory>

#include "kt/spdlogapplication.h"
#include "panel/demo.h"
#include "platform/ktp/signals.h"

namespace {

enum ExitStatus { kHeld = 0, kDidNotHold = 1, kBadInput = 2 };

void addSessionOptions(CLI::App& command, panel::SessionOptions& options) {
    command.add_option("--device", options.deviceUrl,
                       "URL of the device, http://HOST[:PORT]; without it a simulated one inside this program");
    command.add_option("--config", options.configFile, "the host's file; without it share/lcdpanel/lcdpanel.toml");
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Runs the memory of a front panel and shows what it holds.", "lcdpanel");
    app.require_subcommand(1);
    bool verbose = false;
    app.add_flag("-v,--verbose", verbose, "write the log to standard error");
    panel::SessionOptions session;
    CLI::App* const demo = app.add_subcommand("demo", "a tour of at most 15 s that checks what it shows");
    addSessionOptions(*demo, session);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error) == 0 ? kHeld : kBadInput;
    }

    const ktp::SignalWait signals;
    if (verbose) {
        KT::SpdlogApplication::instance().addSink(std::make_shared<spdlog::sinks::stderr_sink_mt>());
    }
    try {
        return panel::runDemo(session) ? kHeld : kDidNotHold;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "lcdpanel: %s\n", error.what());
        return kBadInput;
    }
}
