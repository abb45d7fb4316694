// The REST channel to the device.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <stop_token>
#include <string>

#include "ktp/imessage.h"
#include "lcd/comm/ihttpchannel.h"
#include "platform/lcdcomm/atmostevery.h"
#include "platform/lcdcomm/link.h"
#include "platform/lcdcomm/request.h"
#include "platform/lcdcomm/transferpool.h"

namespace lcdcomm {

class HttpChannel final : public LCD::Comm::IHttpChannel, public ktp::IMessageHandler {
public:
    HttpChannel();

    // Any thread.
    std::string baseUrl() const override { return baseUrl_; }
    void setTimeoutMs(int milliseconds) override;
    void setToken(const std::string& token) override;
#define LCDCOMM_SEND(operation, verb)                                                                                  \
    bool operation(const std::string& path, const LCD::Comm::QueryPairs* query, const LCD::Comm::HeaderPairs* headers, \
                   const std::string* body, std::uint16_t* status, std::string* response, int sequenceTag) override {  \
        return send({verb, path, query, headers, body, sequenceTag}, *status, *response);                              \
    }
    LCDCOMM_SEND(sendPostRequest, "POST")
    LCDCOMM_SEND(sendPutRequest, "PUT")
    LCDCOMM_SEND(sendGetRequest, "GET")
    LCDCOMM_SEND(sendDeleteRequest, "DELETE")
#undef LCDCOMM_SEND
    std::shared_ptr<LCD::Comm::FormData> createFormData() override;

    // Message thread. The stop waits until every sender is done; before the plug-in is unloaded it must have left.
    int handleMessage(const ktp::IMessage* message) override;

private:
    using Clock = std::chrono::steady_clock;

    /// What became of a request.
    struct Reply {
        RequestEnd how = RequestEnd::Failed;
        std::uint16_t status = 0;
        std::string body;
        bool resent = false;
    };
    struct BoundedBody;

    bool send(const Request& request, std::uint16_t& status, std::string& response);
    Reply performAuthorized(Transfer& transfer, const Request& request);
    Reply perform(Transfer& transfer, const Request& request, const std::string& token);
    void count(Transfer& transfer, const Reply& reply);
    void tell(const Request& request, const Reply& reply, Clock::time_point start);
    static void setBody(Transfer& transfer, const Request& request);
    static std::size_t takeBody(char* bytes, std::size_t size, std::size_t count, void* body);

    const std::shared_ptr<Link> link_;
    const std::string baseUrl_;
    const std::chrono::milliseconds connectTimeout_;
    const std::size_t largestReply_;
    const std::size_t largestUpload_;
    const std::size_t deepest_;
    std::atomic<int> timeoutMs_;
    std::stop_source stop_;  // ends what waits for a token
    OncePerSecond failureLog_;
    OncePerSecond misuseLog_;
    TransferPool transfers_;
};

}  // namespace lcdcomm
