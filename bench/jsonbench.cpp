// The JSON layer beside other libraries: the same texts into the same records and back.
#include <benchmark/benchmark.h>

#include <map>
#include <memory>
#include <stdexcept>

#include "bench/payloads.h"
#include "bench/peers.h"
#include "bench/results.h"

namespace bench {

namespace {

/// Keeps quiet while benchmarks run and collects what they took, in nanoseconds.
class Collector final : public benchmark::BenchmarkReporter {
public:
    bool ReportContext(const Context&) override { return true; }
    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.error_occurred) {
                throw std::runtime_error(run.benchmark_name() + ": " + run.error_message);
            }
            if (run.run_type == Run::RT_Iteration) {
                times_[run.run_name.function_name].push_back(run.GetAdjustedCPUTime());
            }
        }
    }
    bool has(const std::string& name) const { return times_.count(name) != 0; }
    double median(const std::string& name) { return quantile(times_.at(name), 0.5); }

private:
    std::map<std::string, std::vector<double>> times_;
};

void add(const std::string& name, const std::function<void(benchmark::State&)>& run) {
    constexpr int kRepetitions = 21;
    constexpr double kSeconds = 0.04;
    benchmark::RegisterBenchmark(name.c_str(), run)->Repetitions(kRepetitions)->MinTime(kSeconds);
}

template <class Library, class T>
void addDecode(const std::string& payload, const std::string& text, const T& expected) {
    const auto library = std::make_shared<Library>(text);
    T decoded;
    library->decode(decoded);
    if (!same(decoded, expected)) {
        throw std::logic_error(std::string(Library::kName) + " reads " + payload + " differently");
    }
    add("decode " + payload + "/" + Library::kName, [library](benchmark::State& state) {
        for (auto _ : state) {
            T out;
            library->decode(out);
            benchmark::DoNotOptimize(out);
        }
        benchmark::ClobberMemory();
    });
}

template <class T>
void addEncode(const std::string& payload, const std::string& expected, const T& value) {
    rapidjson::StringBuffer buffer;
    RapidJson::encode(buffer, value);
    if (std::string_view(buffer.GetString(), buffer.GetSize()) != expected) {
        throw std::logic_error("RapidJSON writes " + payload + " differently");
    }
    add("encode " + payload + "/ours", [&value](benchmark::State& state) {
        std::string out;
        for (auto _ : state) {
            LCD::ProtocolImpl::encode(out, value);
            benchmark::DoNotOptimize(out);
        }
    });
    add("encode " + payload + "/rapidjson", [&value](benchmark::State& state) {
        rapidjson::StringBuffer out;
        for (auto _ : state) {
            RapidJson::encode(out, value);
            benchmark::DoNotOptimize(out.GetString());
        }
    });
}

struct Row {
    const char* name;
    const char* measured;  ///< benchmark, without the library
    const char* peer;
    double goal;  ///< 0: told, not judged
};

constexpr Row kRows[] = {
    {"decode page", "decode page", "simdjson", 2.2},
    {"decode page vs nlohmann", "decode page", "nlohmann", 28},
    {"decode page vs RapidJSON", "decode page", "rapidjson", 0},
    {"decode page vs Boost.JSON", "decode page", "boost", 0},
    {"decode page sorted", "decode page sorted", "simdjson, any order", 2.5},
    {"decode page pretty", "decode page pretty", "simdjson", 0.9},
    {"decode report", "decode report", "simdjson", 1.8},
    {"decode float", "decode float", "simdjson", 1.6},
    {"encode page", "encode page", "rapidjson", 4.0},
    {"encode report", "encode report", "rapidjson", 3.0},
};

template <class... Libraries, class T>
void addDecodes(const std::string& payload, const std::string& text, const T& expected) {
    (addDecode<Libraries>(payload, text, expected), ...);
}

}  // namespace

Lines measureJson() {
    const Payloads& given = payloads();
    addDecodes<Ours, SimdJson, Nlohmann, RapidJson, BoostJson>("page", given.pageText, given.page);
    addDecodes<Ours, SimdJsonAnyOrder>("page sorted", given.pageSortedText, given.page);
    addDecodes<Ours, SimdJson>("page pretty", given.pagePrettyText, given.page);
    addDecodes<Ours, SimdJson>("report", given.reportText, given.report);
    addDecodes<Ours, SimdJson>("float", given.floatText, given.interfaces);
    addEncode("page", given.pageText, given.page);
    addEncode("report", given.reportText, given.report);
    Collector times;
    benchmark::RunSpecifiedBenchmarks(&times);
    Lines lines;
    for (const Row& row : kRows) {
        const std::string subject = std::string(row.measured) + "/ours";
        const std::string peer = std::string(row.measured) + "/" + row.peer;
        if (times.has(subject) && times.has(peer)) {
            const double ratio = times.median(peer) / times.median(subject);
            lines.push_back({row.name, ratio, "x", row.goal > 0 ? Goal::atLeast : Goal::none, row.goal});
        }
    }
    for (const char* each : {"decode page", "decode report", "encode page", "encode report"}) {
        if (const std::string name = std::string(each) + "/ours"; times.has(name)) {
            lines.push_back({std::string(each) + ", time", times.median(name), " ns"});
        }
    }
    return lines;
}

}  // namespace bench
