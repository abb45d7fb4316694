// A subscriber that keeps what it is given.
#pragma once

#include <any>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tests/support/waiting.h"

namespace lcdtest {

class Inbox {
public:
    std::function<void(std::any)> callback() {
        return [this](std::any payload) { monitor_.change([&] { all_.push_back(std::move(payload)); }); };
    }
    bool waitFor(std::size_t count, std::chrono::milliseconds deadline = kDeadline) const {
        return monitor_.waitUntil([&] { return all_.size() >= count; }, deadline);
    }
    std::size_t count() const {
        return monitor_.read([&] { return all_.size(); });
    }
    /// The payload of delivery `index`; waits for it.
    template <class T>
    std::shared_ptr<T> shared(std::size_t index) const {
        if (!waitFor(index + 1)) {
            throw std::runtime_error("no such delivery came in time");
        }
        return monitor_.read([&] { return std::any_cast<std::shared_ptr<T>>(all_[index]); });
    }
    template <class T>
    T at(std::size_t index) const {
        return *shared<T>(index);
    }

private:
    Monitor monitor_;
    std::vector<std::any> all_;
};

/// What a change's callback is told.
class Results {
public:
    std::function<void(bool)> callback() {
        return [this](bool ok) { monitor_.change([&] { all_.push_back(ok); }); };
    }
    bool waitFor(std::size_t count) const {
        return monitor_.waitUntil([&] { return all_.size() >= count; });
    }
    std::vector<bool> all() const {
        return monitor_.read([&] { return all_; });
    }

private:
    Monitor monitor_;
    std::vector<bool> all_;
};

}  // namespace lcdtest
