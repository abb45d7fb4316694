// What passes between the HTTP server and the core behind it.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace devicesim {

class ReportStream;

/// One field or file of a form.
struct Part {
    std::string name = {};
    std::string fileName = {};
    std::string contentType = {};
    std::string bytes = {};
};

struct Request {
    std::string verb = {};
    std::string path = {};
    std::multimap<std::string, std::string> query = {};
    std::string token = {};     // of the client's session; names the source of the reports that it causes
    std::int32_t sequence = 0;  // the client's own tag of this request, told in those reports
    std::string body = {};
    std::vector<Part> parts = {};  // of a form, which has no body beside them
    int bodyError = 0;             // HTTP status if the body could not be taken: too large, or not readable
    bool local = false;            // the client runs on this host
};

/// A text, so many times over: few of these make a body that is larger than memory.
struct Piece {
    std::string text;
    std::uint64_t times = 1;
};
inline constexpr std::uint64_t kForever = std::numeric_limits<std::uint64_t>::max();

struct Reply {
    int status = 200;
    std::string body = {};                           // JSON
    std::shared_ptr<ReportStream> stream = nullptr;  // if set, the reply is this stream instead of a body

    // What becomes of it on its way out.
    std::vector<Piece> pieces = {};  // if set, they are the body
    std::chrono::milliseconds delay{0};
    std::size_t bytesPerSecond = 0;         // 0: at full speed
    bool lost = false;                      // the connection is cut instead
    std::optional<std::uint64_t> end = {};  // bytes of the body after which the connection is cut
    bool endTold = false;                   // the header tells the length up to that end, and nothing is cut
};

}  // namespace devicesim
