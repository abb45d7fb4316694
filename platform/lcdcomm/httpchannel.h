// The REST channel to the device.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <memory>
#include <string>

#include "ktp/imessage.h"
#include "lcd/comm/ihttpchannel.h"
#include "platform/lcdcomm/link.h"
#include "platform/lcdcomm/oncepersecond.h"
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
    bool sendPostRequest(const std::string& path, const LCD::Comm::QueryPairs* query,
                         const LCD::Comm::HeaderPairs* headers, const std::string* body, std::uint16_t* status,
                         std::string* response, int sequenceTag) override {
        return send({"POST", path, query, headers, body, sequenceTag}, *status, *response);
    }
    bool sendPutRequest(const std::string& path, const LCD::Comm::QueryPairs* query,
                        const LCD::Comm::HeaderPairs* headers, const std::string* body, std::uint16_t* status,
                        std::string* response, int sequenceTag) override {
        return send({"PUT", path, query, headers, body, sequenceTag}, *status, *response);
    }
    bool sendGetRequest(const std::string& path, const LCD::Comm::QueryPairs* query,
                        const LCD::Comm::HeaderPairs* headers, const std::string* body, std::uint16_t* status,
                        std::string* response, int sequenceTag) override {
        return send({"GET", path, query, headers, body, sequenceTag}, *status, *response);
    }
    bool sendDeleteRequest(const std::string& path, const LCD::Comm::QueryPairs* query,
                           const LCD::Comm::HeaderPairs* headers, const std::string* body, std::uint16_t* status,
                           std::string* response, int sequenceTag) override {
        return send({"DELETE", path, query, headers, body, sequenceTag}, *status, *response);
    }
    std::shared_ptr<LCD::Comm::FormData> createFormData() override;

    // Message thread. The stop waits until every sender has left.
    int handleMessage(const ktp::IMessage* message) override;

private:
    /// What became of a request.
    struct Reply {
        CURLcode result = CURLE_FAILED_INIT;
        std::uint16_t status = 0;
        std::string body;
    };
    struct BoundedBody;

    bool send(const Request& request, std::uint16_t& status, std::string& response);
    Reply perform(Transfer& transfer, const Request& request, const std::string& token);
    void count(Transfer& transfer, const Reply& reply);
    static void setBody(Transfer& transfer, const Request& request);
    static std::size_t takeBody(char* bytes, std::size_t size, std::size_t count, void* body);

    const std::shared_ptr<Link> link_;
    const std::string baseUrl_;
    const std::chrono::milliseconds connectTimeout_;
    const std::size_t largestReply_;
    const std::size_t largestUpload_;
    std::atomic<int> timeoutMs_;
    OncePerSecond failureLog_;
    TransferPool transfers_;
};

}  // namespace lcdcomm
