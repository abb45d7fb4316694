// Subscribers that keep what they are given.
#pragma once

#include <any>
#include <functional>
#include <memory>
#include <stdexcept>
#include <vector>

#include "tests/support/waiting.h"

namespace lcdtest {

/// What one thread brings and another waits for.
template <class T>
class Kept {
public:
    void add(T value) {
        monitor_.change([&] { all_.push_back(std::move(value)); });
    }
    bool waitFor(std::size_t count) const {
        return monitor_.waitUntil([&] { return all_.size() >= count; });
    }
    std::size_t count() const { return all().size(); }
    std::vector<T> all() const {
        return monitor_.read([&] { return all_; });
    }
    /// The latest, or an empty one.
    T last() const {
        return monitor_.read([&] { return all_.empty() ? T() : T(all_.back()); });
    }

private:
    Monitor monitor_;
    std::vector<T> all_;
};

class Inbox : public Kept<std::any> {
public:
    std::function<void(std::any)> callback() {
        return [this](std::any payload) { add(std::move(payload)); };
    }
    /// The payload of delivery `index`; waits for it.
    template <class T>
    std::shared_ptr<T> shared(std::size_t index) const {
        if (!waitFor(index + 1)) {
            throw std::runtime_error("no such delivery came in time");
        }
        return std::any_cast<std::shared_ptr<T>>(all()[index]);
    }
    template <class T>
    T at(std::size_t index) const {
        return *shared<T>(index);
    }
};

/// What a change's callback is told.
class Results : public Kept<bool> {
public:
    std::function<void(bool)> callback() {
        return [this](bool ok) { add(ok); };
    }
};

}  // namespace lcdtest
