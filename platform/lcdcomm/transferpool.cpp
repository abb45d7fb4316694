#include "platform/lcdcomm/transferpool.h"

#include <algorithm>

namespace lcdcomm {

namespace {

// More connections than that are closed as soon as nobody sends on them.
constexpr std::size_t kMostIdle = 64;

}  // namespace

TransferPool::Lease TransferPool::lease() {
    const std::lock_guard lock(mutex_);
    if (closed_ || remaining() <= std::chrono::milliseconds::zero()) {
        return {};
    }
    std::unique_ptr<Transfer> transfer;
    if (idle_.empty()) {
        transfer = std::make_unique<Transfer>();
    } else {
        transfer = std::move(idle_.back());
        idle_.pop_back();
    }
    out_.push_back(transfer.get());
    return {this, std::move(transfer)};
}

std::chrono::milliseconds TransferPool::remaining() const {
    const Clock::time_point end = end_;
    return end == Clock::time_point::max() ? std::chrono::milliseconds::max()
                                           : std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now());
}

void TransferPool::endSoon() {
    const std::lock_guard lock(mutex_);
    if (end_.load() == Clock::time_point::max()) {
        end_ = Clock::now() + grace_;
        std::for_each(out_.begin(), out_.end(), [](Transfer* transfer) { transfer->wake(); });
    }
}

void TransferPool::close() {
    endSoon();
    std::unique_lock lock(mutex_);
    closed_ = true;
    allBack_.wait(lock, [this] { return out_.empty(); });
}

void TransferPool::giveBack(std::unique_ptr<Transfer> transfer) {
    const std::lock_guard lock(mutex_);
    out_.erase(std::find(out_.begin(), out_.end(), transfer.get()));
    if (idle_.size() < kMostIdle && !closed_) {
        idle_.push_back(std::move(transfer));
    }
    if (out_.empty()) {
        allBack_.notify_all();
    }
}

}  // namespace lcdcomm
