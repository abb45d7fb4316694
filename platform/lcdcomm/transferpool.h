// The channel's transfers, one for each thread that is sending.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include "platform/lcdcomm/transfer.h"

namespace lcdcomm {

/// Any thread. Idle transfers wait here with their kept connections.
class TransferPool {
public:
    /// A transfer that is out. It goes back with the lease.
    class Lease {
    public:
        Lease() = default;
        Lease(TransferPool* pool, std::unique_ptr<Transfer> transfer) : pool_(pool), transfer_(std::move(transfer)) {}
        Lease(Lease&&) = default;
        Lease& operator=(Lease&&) = delete;
        ~Lease() {
            if (transfer_) {
                pool_->giveBack(std::move(transfer_));
            }
        }

        explicit operator bool() const { return transfer_ != nullptr; }
        Transfer& operator*() const { return *transfer_; }

    private:
        TransferPool* pool_ = nullptr;
        std::unique_ptr<Transfer> transfer_;
    };

    explicit TransferPool(std::chrono::milliseconds grace) : grace_(grace) {}

    /// A transfer to run, or none when the grace has ended or the pool is closed.
    Lease lease();
    /// How long a transfer that runs may still take.
    std::chrono::milliseconds remaining() const;
    /// Starts the grace, at the end of which all transfers are broken off. The first call counts.
    void endSoon();
    /// Lends nothing any more, and waits until everything is back: as long as the grace, at most.
    void close();

private:
    using Clock = std::chrono::steady_clock;

    void giveBack(std::unique_ptr<Transfer> transfer);

    const std::chrono::milliseconds grace_;
    std::atomic<Clock::time_point> end_{Clock::time_point::max()};  // of the grace

    std::mutex mutex_;
    std::condition_variable allBack_;
    bool closed_ = false;                          // guarded by mutex_
    std::vector<std::unique_ptr<Transfer>> idle_;  // guarded by mutex_; the last one used is at the end
    std::vector<Transfer*> out_;                   // guarded by mutex_
};

}  // namespace lcdcomm
