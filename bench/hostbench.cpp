// The whole host in a process of its own with all components, the device outside.
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "bench/latency.h"
#include "bench/results.h"
#include "panel/session.h"

namespace bench {

namespace {

/// A simulated device in a process of its own. Made before the first thread.
class DeviceProcess {
public:
    DeviceProcess() {
        int pipe[2];
        if (::pipe(pipe) != 0 || (child_ = fork()) < 0) {
            throw std::runtime_error("no process for the device");
        }
        if (child_ == 0) {
            const devicesim::Device device;
            const std::string& url = device.url();
            const bool told = write(pipe[1], url.data(), url.size()) == static_cast<ssize_t>(url.size());
            close(pipe[1]);
            pause();
            _exit(told ? 0 : 1);
        }
        close(pipe[1]);
        for (char byte; read(pipe[0], &byte, 1) == 1;) {
            url_ += byte;
        }
        close(pipe[0]);
    }
    ~DeviceProcess() {
        kill(child_, SIGKILL);
        waitpid(child_, nullptr, 0);
    }
    const std::string& url() const { return url_; }

private:
    pid_t child_ = -1;
    std::string url_;
};

double entriesOf(const char* folder) {
    return static_cast<double>(std::distance(std::filesystem::directory_iterator(folder), {}));
}

double residentMegabytes() {
    std::ifstream file("/proc/self/statm");
    double pages = 0;
    file >> pages >> pages;
    return pages * static_cast<double>(sysconf(_SC_PAGESIZE)) / (1 << 20);
}

double cpuMillis() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto of = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1000 + static_cast<double>(time.tv_usec) / 1000;
    };
    return of(usage.ru_utime) + of(usage.ru_stime);
}

}  // namespace

Lines measureHost() {
    constexpr std::chrono::seconds kIdle{10};
    const DeviceProcess device;
    const auto begin = Clock::now();
    panel::Session session({.deviceUrl = device.url()});
    session.start();
    const double started = micros(Clock::now() - begin) / 1000;
    session.login(std::chrono::seconds(20));
    Lines lines{{"start to all components running", started, " ms"},
                {"threads of the host", entriesOf("/proc/self/task"), ""},
                {"descriptors of the host", entriesOf("/proc/self/fd"), ""},
                {"resident memory of the host", residentMegabytes(), " MB"}};
    const double before = cpuMillis();
    std::this_thread::sleep_for(kIdle);
    lines.push_back({"CPU of an idle panel", (cpuMillis() - before) / static_cast<double>(kIdle.count()), " ms/s"});
    session.stop();
    return lines;
}

}  // namespace bench
