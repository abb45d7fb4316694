// Measures and holds the result against the goals. Options of Google Benchmark are taken, too.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <exception>
#include <utility>
#include <vector>

#include "bench/results.h"

namespace {

using Part = std::pair<const char*, bench::Lines (*)()>;
constexpr Part kParts[] = {
    {"host", bench::measureHost},  // first, while this process is small and has one thread
    {"json", bench::measureJson},
    {"engines", bench::measureEngines},
    {"loopback", bench::measureLoopback},
};

/// Takes our own options out of the arguments.
struct Options {
    Options(int& count, char** arguments) {
        char** const end = std::remove_if(arguments + 1, arguments + count, [this](const char* each) {
            if (std::strcmp(each, "--json") == 0) {
                return json = true;
            }
            if (std::strncmp(each, "--only=", 7) == 0) {
                only = each + 7;
                return true;
            }
            return false;
        });
        count = static_cast<int>(end - arguments);
    }
    bool json = false;
    const char* only = "";
};

}  // namespace

int main(int count, char** arguments) {
    const Options options(count, arguments);
    char interleaved[] = "--benchmark_enable_random_interleaving=true";
    std::vector<char*> given{arguments[0], interleaved};
    given.insert(given.end(), arguments + 1, arguments + count);
    count = static_cast<int>(given.size());
    benchmark::Initialize(&count, given.data());
    if (benchmark::ReportUnrecognizedArguments(count, given.data())) {
        std::fputs("lcd_bench [--json] [--only=json|engines|loopback|host] [options of Google Benchmark]\n", stderr);
        return 2;
    }
    try {
        bench::Lines all;
        for (const auto& [name, measure] : kParts) {
            if (*options.only == '\0' || std::strcmp(options.only, name) == 0) {
                bench::Lines lines = measure();
                if (!options.json) {
                    bench::print(lines, false);
                }
                std::move(lines.begin(), lines.end(), std::back_inserter(all));
            }
        }
        if (options.json) {
            bench::print(all, true);
        }
        return std::all_of(all.begin(), all.end(), [](const bench::Line& line) { return line.held(); }) ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "lcd_bench: %s\n", error.what());
        return 2;
    }
}
