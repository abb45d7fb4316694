// The panel tool: a host that runs the plug-in for a person.
#include <spdlog/sinks/stdout_sinks.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <memory>

#include "kt/spdlogapplication.h"
#include "panel/commands.h"
#include "panel/demo.h"
#include "platform/ktp/signals.h"

namespace {

using panel::CommandOptions;

/// What is typed. A command's action runs when all of it was understood.
struct CommandLine {
    CLI::App app{"Runs the memory of a front panel and shows what it holds.", "lcdpanel"};
    CommandOptions options;
    double timeoutSeconds = 5;
    double durationSeconds = 0;
    bool verbose = false;
    bool afterResync = false;
    std::string component;
    std::string kind;
    std::string key;
    std::string file;
    std::vector<std::string> words;

    CommandLine();

    /// Whether all went as wanted.
    bool run(ktp::SignalWait& signals);

private:
    CLI::App* add(const char* name, const char* what);
    CLI::App* addSession(const char* name, const char* what);
    std::chrono::milliseconds duration() const {
        return std::chrono::milliseconds(static_cast<std::int64_t>(durationSeconds * 1000));
    }
    bool set();
};

CLI::App* CommandLine::add(const char* name, const char* what) { return app.add_subcommand(name, what); }

CLI::App* CommandLine::addSession(const char* name, const char* what) {
    CLI::App* const command = add(name, what);
    command->add_option("--device", options.session.deviceUrl,
                        "URL of the device, http://HOST[:PORT]; without it a simulated one inside this program");
    command->add_option("--config", options.session.configFile,
                        "the host's file; without it share/lcdpanel/lcdpanel.toml");
    command->add_option("--timeout", timeoutSeconds, "seconds to wait for an answer")
        ->check(CLI::Range(0.01, 3600.0))
        ->capture_default_str();
    return command;
}

CommandLine::CommandLine() {
    app.require_subcommand(1);
    app.add_flag("-v,--verbose", verbose, "write the log to standard error");
    app.footer("Exit status: 0 as wanted, 1 not so, 2 bad input, 3 the device can't be reached.");
    addSession("demo", "a tour of at most 15 s that checks what it shows");

    CLI::App* const list = add("list", "components, kinds, the types that they deliver and take");
    CLI::App* const get = addSession("get", "what a mirror holds");
    CLI::App* const set = addSession("set", "send a change and wait for the device's answer");
    CLI::App* const watch = addSession("watch", "each delivery with its origin and age, until Ctrl-C");
    CLI::App* const verify = addSession("verify", "compare every mirror with a simulated device's own state");
    for (CLI::App* const each : {list, get, set, watch, verify}) {
        each->add_flag("--json", options.json, "write JSON lines");
    }
    list->add_option("COMPONENT", component, "only this one");
    for (CLI::App* const each : {get, set}) {
        each->add_option("COMPONENT", component)->required();
        each->add_option("KIND", kind)->required();
    }
    get->add_option("KEY", key, "a number, or a question as JSON: \"lcdpanel list\" says which");
    set->add_option("VALUE", words, "[KEY] JSON; \"-\" reads changes from standard input, one a line")
        ->required()
        ->expected(1, 2);
    watch->add_option("COMPONENT", words, "only these");
    for (CLI::App* const each : {watch, verify}) {
        each->add_option("--for", durationSeconds, "seconds to follow the device's reports")
            ->check(CLI::Range(0.0, 1e6));
    }
    verify->add_flag("--after-resync", afterResync, "only what no fetch brings may differ");

    CLI::App* const config = add("config", "the host's file");
    config->require_subcommand(1);
    config->add_subcommand("check", "name every mistake in it")->add_option("FILE", file)->required();
}

bool CommandLine::set() {
    if (words.size() == 2) {
        key = words.front();
    }
    std::vector<std::string> values = {words.back()};
    if (words.back() == "-") {
        values.clear();
        for (std::string line; std::getline(std::cin, line);) {
            values.push_back(line);
        }
        if (values.empty()) {
            throw panel::BadInput("standard input holds no change: write one JSON text a line");
        }
    }
    return panel::runSet(options, component, kind, key, values);
}

bool CommandLine::run(ktp::SignalWait& signals) {
    options.timeout = std::chrono::milliseconds(static_cast<std::int64_t>(timeoutSeconds * 1000));
    const auto typed = [this](const char* name) { return app.got_subcommand(name); };
    return typed("list")     ? panel::runList(options, component)
           : typed("get")    ? panel::runGet(options, component, kind, key)
           : typed("set")    ? set()
           : typed("watch")  ? panel::runWatch(options, words, duration(), signals)
           : typed("verify") ? panel::runVerify(options, duration(),
                                                afterResync ? panel::After::resync : panel::After::traffic, signals)
           : typed("config") ? panel::runConfigCheck(file)
                             : panel::runDemo(options.session);
}

int failed(const std::exception& error, int status) {
    std::fprintf(stderr, "lcdpanel: %s\n", error.what());
    return status;
}

}  // namespace

int main(int argc, char** argv) {
    CommandLine line;
    try {
        line.app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return line.app.exit(error) == 0 ? panel::kHeld : panel::kBadInput;
    }

    ktp::SignalWait signals;
    if (line.verbose) {
        KT::SpdlogApplication::instance().addSink(std::make_shared<spdlog::sinks::stderr_sink_mt>());
    } else {
        setenv("QT_LOGGING_RULES", "*.debug=false", 0);  // the layers' component writes some lines past the log
    }
    try {
        return line.run(signals) ? panel::kHeld : panel::kDidNotHold;
    } catch (const panel::BadInput& error) {
        return failed(error, panel::kBadInput);
    } catch (const panel::Unreachable& error) {
        return failed(error, panel::kUnreachable);
    } catch (const ktp::HostError& error) {
        return failed(error, panel::kBadInput);
    } catch (const std::exception& error) {
        return failed(error, panel::kDidNotHold);
    }
}
