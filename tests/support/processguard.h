// Checks that a test leaves nothing behind in the process.
#pragma once

#include <gtest/gtest.h>

#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace lcdtest {

/// A sanitizer watches, which takes time and memory of its own.
#ifdef LCD_TEST_SANITIZED
inline constexpr bool kSanitized = true;
#else
inline constexpr bool kSanitized = false;
#endif

/// What a stop may take when nothing holds it up.
inline constexpr std::chrono::milliseconds kPromptly{kSanitized ? 2000 : 500};

/// Waits until `condition` holds, for as long as a busy machine may need. False when it never did.
inline bool eventually(const std::function<bool()>& condition) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

/// Runs `act` with the numbers below `count`, each in a thread of its own, and waits for all.
inline void inThreads(unsigned count, const std::function<void(unsigned)>& act) {
    std::vector<std::thread> threads;
    for (unsigned number = 0; number < count; ++number) {
        threads.emplace_back(act, number);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

inline std::size_t entriesOf(const char* folder) {
    using std::filesystem::directory_iterator;
    return static_cast<std::size_t>(std::distance(directory_iterator(folder), directory_iterator()));
}

inline bool isMapped(const std::string& library) {
    std::ifstream maps("/proc/self/maps");
    std::string line;
    while (std::getline(maps, line)) {
        if (line.find("/" + library) != std::string::npos) {
            return true;
        }
    }
    return false;
}

/// Bytes of the process in memory.
inline std::size_t residentBytes() {
    std::ifstream statm("/proc/self/statm");
    std::size_t total = 0;
    std::size_t resident = 0;
    statm >> total >> resident;
    return resident * 4096;
}

/// A folder of the test's own, gone with it.
class TempFolder {
public:
    TempFolder() {
        std::string name = testing::TempDir() + "lcdtestXXXXXX";
        path_ = mkdtemp(name.data());
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() { std::filesystem::remove_all(path_); }

    std::filesystem::path operator/(const std::string& name) const { return path_ / name; }

private:
    std::filesystem::path path_;
};

/// From its construction to its destruction the process gains no thread, no descriptor and no plug-in.
class ProcessGuard {
public:
    ~ProcessGuard() {
        // A joined thread may stay listed for a moment.
        EXPECT_TRUE(eventually([this] { return entriesOf("/proc/self/task") <= threads_; }))
            << "threads are left: " << entriesOf("/proc/self/task") << " after " << threads_;
        EXPECT_EQ(entriesOf("/proc/self/fd"), descriptors_);
        for (const char* plugin :
             {"liblcdcomm.so", "liblcdconfig.so", "libtestplugin.so", "liblcdmemorycacheimpl.so"}) {
            EXPECT_FALSE(isMapped(plugin)) << plugin << " is still mapped";
        }
    }

private:
    // The first thread of a process may bring along one of its run-time libraries', which stays.
    static std::size_t threads() {
        std::thread([] {}).join();
        std::size_t count = 0;
        eventually([&count] { return std::exchange(count, entriesOf("/proc/self/task")) == count; });
        return count;
    }

    const std::size_t threads_ = threads();
    const std::size_t descriptors_ = entriesOf("/proc/self/fd");
};

}  // namespace lcdtest
