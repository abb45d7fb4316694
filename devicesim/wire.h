// What passes between the HTTP server and the core behind it.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

namespace devicesim {

class ReportStream;

struct Request {
    std::string verb = {};
    std::string path = {};
    std::multimap<std::string, std::string> query = {};
    std::string token = {};     // of the client's session; names the source of the reports that it causes
    std::int32_t sequence = 0;  // the client's own tag of this request, told in those reports
    std::string body = {};
    int bodyError = 0;   // HTTP status if the body could not be taken: too large, or not readable
    bool local = false;  // the client runs on this host
};

struct Reply {
    int status = 200;
    std::string body = {};                           // JSON
    std::shared_ptr<ReportStream> stream = nullptr;  // if set, the reply is this stream instead of a body
};

}  // namespace devicesim
