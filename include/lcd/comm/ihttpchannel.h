// The REST channel to the device, found under "lcdHttpChannel".
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "lcd/comm/formdata.h"

namespace LCD::Comm {

inline constexpr const char* OBJ_COMM_HTTPCHANNEL_NAME = "lcdHttpChannel";

using QueryPairs = std::vector<std::pair<std::string, std::string>>;
using HeaderPairs = std::vector<std::pair<std::string, std::string>>;

/// Synchronous REST. Every operation may be called from any thread, and many at once; a send blocks its
/// caller until the reply is there or the time-out has passed.
///
/// The four sends share one argument list:
/// `path` starts with "/zelto/v1/"; `query` and `headers` may be null; `body` is the JSON text or a multipart
/// body, or null; `status` receives the HTTP status and `response` the reply's body, and the caller clears
/// both first; `sequenceTag` travels with the request and comes back in the report that the change causes, 0
/// means none. The result is true when a reply arrived, whatever its status.
class IHttpChannel {
public:
    virtual ~IHttpChannel() = default;

    /// Scheme, host and port of the device, for log lines.
    virtual std::string baseUrl() const = 0;
    /// Total time-out of the requests that follow, in milliseconds, of all threads; it stays until set again.
    virtual void setTimeoutMs(int milliseconds) = 0;
    /// Session token for the requests that follow; empty removes it.
    virtual void setToken(const std::string& token) = 0;

    virtual bool sendPostRequest(const std::string& path, const QueryPairs* query, const HeaderPairs* headers,
                                 const std::string* body, std::uint16_t* status, std::string* response,
                                 int sequenceTag) = 0;
    virtual bool sendPutRequest(const std::string& path, const QueryPairs* query, const HeaderPairs* headers,
                                const std::string* body, std::uint16_t* status, std::string* response,
                                int sequenceTag) = 0;
    virtual bool sendGetRequest(const std::string& path, const QueryPairs* query, const HeaderPairs* headers,
                                const std::string* body, std::uint16_t* status, std::string* response,
                                int sequenceTag) = 0;
    virtual bool sendDeleteRequest(const std::string& path, const QueryPairs* query, const HeaderPairs* headers,
                                   const std::string* body, std::uint16_t* status, std::string* response,
                                   int sequenceTag) = 0;

    virtual std::shared_ptr<FormData> createFormData() = 0;
};

}  // namespace LCD::Comm
