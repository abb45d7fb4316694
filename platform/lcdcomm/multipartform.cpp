#include "platform/lcdcomm/multipartform.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <random>
#include <string_view>

namespace lcdcomm {

namespace {

// Long enough to stand in no part.
std::string randomBoundary() {
    std::random_device random;
    return fmt::format("----panel{:08x}{:08x}{:08x}{:08x}", random(), random(), random(), random());
}

// A parameter's value, in the way of browsers: what would end it is percent-encoded.
std::string quoted(std::string_view text) {
    std::string out = "\"";
    for (const char c : text) {
        switch (c) {
            case '"':
                out += "%22";
                break;
            case '\r':
                out += "%0D";
                break;
            case '\n':
                out += "%0A";
                break;
            default:
                out += c;
        }
    }
    return out += '"';
}

std::string_view orEmpty(const char* text) { return text == nullptr ? std::string_view() : text; }

// An open file that closes itself.
class File {
public:
    // A device or a pipe must not hold the caller.
    explicit File(const std::string& path) : fd_(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK)) {}
    File(const File&) = delete;
    File& operator=(const File&) = delete;
    ~File() {
        if (fd_ >= 0) {
            close(fd_);
        }
    }

    bool isRegular() const {
        struct stat status {};
        return fd_ >= 0 && fstat(fd_, &status) == 0 && S_ISREG(status.st_mode);
    }
    ssize_t read(char* buffer, std::size_t size) const { return ::read(fd_, buffer, size); }

private:
    const int fd_;
};

}  // namespace

MultipartForm::MultipartForm(std::size_t largest) : largest_(largest), boundary_(randomBoundary()) {}

void MultipartForm::addField(const char* name, const char* value, const char* contentType, const char* fileName,
                             std::size_t valueSize) {
    std::string_view bytes = orEmpty(value);
    if (value != nullptr && valueSize != 0) {
        bytes = {value, valueSize};
    }
    addPart(name, fileName, contentType, std::string(bytes), false);
}

void MultipartForm::addFile(const char* name, const char* path, const char* contentType) {
    std::string file(orEmpty(path));
    const std::string baseName = file.substr(file.find_last_of('/') + 1);
    addPart(name, baseName.c_str(), contentType, std::move(file), true);
}

void MultipartForm::addPart(const char* name, const char* fileName, const char* contentType, std::string content,
                            bool isFile) {
    std::string header = "Content-Disposition: form-data; name=" + quoted(orEmpty(name));
    if (fileName != nullptr) {
        header += "; filename=" + quoted(fileName);
    }
    if (contentType != nullptr) {
        header += "\r\nContent-Type: ";
        header += contentType;
    }
    parts_.push_back({std::move(header), std::move(content), isFile});
}

bool MultipartForm::makeBody() {
    body_.clear();
    const bool made = render();
    if (!made) {
        body_.clear();
    }
    return made;
}

bool MultipartForm::render() {
    return std::all_of(parts_.begin(), parts_.end(), [this](const Part& part) { return appendPart(part); }) &&
           append("--" + boundary_ + "--\r\n");
}

bool MultipartForm::appendPart(const Part& part) {
    return append("--" + boundary_ + "\r\n" + part.header + "\r\n\r\n") &&
           (part.isFile ? appendFile(part.content) : append(part.content)) && append("\r\n");
}

bool MultipartForm::append(std::string_view bytes) {
    if (bytes.size() > largest_ - body_.size()) {
        return false;
    }
    body_ += bytes;
    return true;
}

bool MultipartForm::appendFile(const std::string& path) {
    const File file(path);
    if (!file.isRegular()) {
        return false;
    }
    char buffer[64 * 1024];
    ssize_t count = 0;
    while ((count = file.read(buffer, sizeof buffer)) > 0) {
        if (!append({buffer, static_cast<std::size_t>(count)})) {
            return false;
        }
    }
    return count == 0;
}

}  // namespace lcdcomm
