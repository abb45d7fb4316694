#include "platform/ktp/hostconfig.h"

#include <sys/mman.h>
#include <unistd.h>

#include <string>

#include "fuzz/targets.h"
#include "platform/ktp/hosterror.h"
#include "platform/ktp/knownsettings.h"

namespace lcdfuzz {

namespace {

// A file in memory, with a path while it lives.
class MemoryFile {
public:
    explicit MemoryFile(const std::string& content) : descriptor_(::memfd_create("fuzz", MFD_CLOEXEC)) {
        const auto size = static_cast<ssize_t>(content.size());
        require(::write(descriptor_, content.data(), content.size()) == size, "a file can be written");
    }
    ~MemoryFile() { ::close(descriptor_); }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(descriptor_); }

private:
    const int descriptor_;
};

void checkSettings(const ktp::Settings& settings) {
    for (const ktp::NumberSetting* each : ktp::kNumberSettings) {
        const auto value = settings.value(*each);
        require(value >= each->least && value <= each->most, "{} is in its range", each->key);
    }
    for (const ktp::TextSetting* each : ktp::kTextSettings) {
        require(each->accepts(settings.value(*each)), "{} is of its form", each->key);
    }
}

}  // namespace

void hostconfig(const std::string& text) {
    const MemoryFile file(text);
    try {
        const ktp::HostConfig config = ktp::HostConfig::fromFile(file.path());
        config.check();
        checkSettings(config.settings);
    } catch (const ktp::HostError& error) {
        const std::string what = error.what();
        require(what.rfind(file.path() + ":", 0) == 0, "an error begins with the file: {}", what);
        require(what.find('\n') == what.npos, "an error is one line: {}", what);
    }
}

}  // namespace lcdfuzz
