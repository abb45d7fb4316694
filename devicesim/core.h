// The device behind the HTTP server: its state, its lock and the way out.
#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "devicesim/table.h"

namespace devicesim {

struct Options;

class Core {
public:
    /// Throws std::runtime_error naming a place that `start` lacks, or has in another form than a row needs.
    Core(const Options& options, std::vector<Row> rows, json start);
    ~Core() { stop(); }

    /// Who refuses connections while a fault asks for it. Before the first rule.
    void setRefuseConnections(std::function<void(bool on)> refuse);

    /// Any thread.
    Reply handle(const Request& request);
    /// Closes the streams for good and ends the agenda.
    void stop();

private:
    struct Body {
        json value = nullptr;
        std::optional<Refusal> refusal = {};
    };
    static Body parseBody(const std::string& text);

    void requireStartData() const;
    // The reply to a client that may not enter.
    std::optional<Reply> closedDoorLocked(const Request& request);
    // The reply as it is before faults.
    Reply answerLocked(const Row* row, const Request& request, const Body& body);
    Reply actLocked(const Row& row, const Request& request, const json& body);
    void runAgenda();

    // Fixed after start.
    const Table table_;
    const bool remoteControl_;

    std::mutex mutex_;
    std::condition_variable wake_;
    // Guarded by mutex_.
    Interior interior_;
    bool stopping_ = false;

    std::thread timer_;
};

}  // namespace devicesim
