// The device behind the HTTP server: its state, its lock and the way out.
#pragma once

#include <mutex>
#include <optional>
#include <vector>

#include "devicesim/table.h"

namespace devicesim {

struct Options;

class Core {
public:
    /// Throws std::runtime_error naming a place that `start` lacks, or has in another form than a row needs.
    Core(const Options& options, std::vector<Row> rows, json start);

    /// Any thread.
    Reply handle(const Request& request);
    /// Closes the streams for good.
    void stop();

private:
    void requireStartData() const;
    // The reply to a client that may not enter.
    std::optional<Reply> closedDoorLocked(const Request& request);
    Reply actLocked(const Row& row, const Request& request, const json& body);

    // Fixed after start.
    const Table table_;
    const bool remoteControl_;

    std::mutex mutex_;
    Interior interior_;  // guarded by mutex_
};

}  // namespace devicesim
