#include "platform/lcdcomm/httpchannel.h"

#include "kt/log.h"
#include "platform/ktp/hostmessages.h"
#include "platform/ktp/knownsettings.h"
#include "platform/lcdcomm/multipartform.h"

namespace lcdcomm {

namespace {

constexpr std::size_t kLongestToken = 4096;

const char* reasonOf(CURLcode result) {
    switch (result) {
        case CURLE_WRITE_ERROR:
            return "the reply is larger than allowed";
        case CURLE_ABORTED_BY_CALLBACK:
            return "broken off by the stop";
        default:
            return curl_easy_strerror(result);
    }
}

}  // namespace

// A reply's body while it comes in.
struct HttpChannel::BoundedBody {
    std::string& text;
    std::size_t largest;
};

HttpChannel::HttpChannel()
    : link_(Link::shared()),
      baseUrl_(ktp::valueOf(ktp::kDeviceUrl)),
      connectTimeout_(ktp::valueOf(ktp::kConnectTimeoutMs)),
      largestReply_(static_cast<std::size_t>(ktp::valueOf(ktp::kLargestReply))),
      largestUpload_(static_cast<std::size_t>(ktp::valueOf(ktp::kLargestUpload))),
      timeoutMs_(static_cast<int>(ktp::valueOf(ktp::kRequestTimeoutMs))),
      transfers_(std::chrono::milliseconds(ktp::valueOf(ktp::kStopGraceMs))) {}

void HttpChannel::setTimeoutMs(int milliseconds) {
    if (milliseconds <= 0) {
        KT_WARN("a time-out of {} ms is none, {} ms stay", milliseconds, timeoutMs_.load());
        return;
    }
    timeoutMs_ = milliseconds;
}

void HttpChannel::setToken(const std::string& token) {
    const bool usable = token.size() <= kLongestToken && isToken(token);
    if (!usable) {
        KT_WARN("a token of {} bytes can't be sent, it counts as none", token.size());
    }
    link_->token.set(usable ? token : std::string());
}

std::shared_ptr<LCD::Comm::FormData> HttpChannel::createFormData() {
    return std::make_shared<MultipartForm>(largestUpload_);
}

int HttpChannel::handleMessage(const ktp::IMessage* message) {
    if (message->id() == ktp::kStopAhead) {
        transfers_.endSoon();
    } else if (message->id() == ktp::kSystemStop) {
        transfers_.close();
    }
    return 0;
}

bool HttpChannel::send(const Request& request, std::uint16_t& status, std::string& response) {
    // Given back last: a stop waits for it before this object goes.
    const TransferPool::Lease transfer = transfers_.lease();
    if (!transfer) {
        link_->channel.refused.fetch_add(1, std::memory_order_relaxed);
        return false;
    }
    if (!isWellFormed(request)) {
        KT_WARN("{} has a path or a header that can't be sent", request.verb);
        return false;
    }
    Reply reply = perform(*transfer, request, link_->token.get());
    if (reply.result != CURLE_OK) {
        if (failureLog_.due()) {
            KT_WARN("{} {}{} got no reply: {}", request.verb, baseUrl_, request.path, reasonOf(reply.result));
        }
        return false;
    }
    status = reply.status;
    response = std::move(reply.body);
    return true;
}

HttpChannel::Reply HttpChannel::perform(Transfer& transfer, const Request& request, const std::string& token) {
    transfer.prepare(urlOf(baseUrl_, request), connectTimeout_);
    transfer.set(CURLOPT_TIMEOUT_MS, static_cast<long>(timeoutMs_));
    setBody(transfer, request);
    HeaderLines headers;
    addHeaders(headers, request, token);
    transfer.set(CURLOPT_HTTPHEADER, headers.get());
    Reply reply;
    BoundedBody body{reply.body, largestReply_};
    transfer.set(CURLOPT_WRITEFUNCTION, &HttpChannel::takeBody);
    transfer.set(CURLOPT_WRITEDATA, &body);

    reply.result = transfer.run([this] { return transfers_.remaining(); });
    long status = 0;
    curl_easy_getinfo(transfer.easy(), CURLINFO_RESPONSE_CODE, &status);
    reply.status = static_cast<std::uint16_t>(status);
    count(transfer, reply);
    return reply;
}

void HttpChannel::count(Transfer& transfer, const Reply& reply) {
    curl_off_t sent = 0;
    curl_off_t time = 0;
    curl_easy_getinfo(transfer.easy(), CURLINFO_SIZE_UPLOAD_T, &sent);
    curl_easy_getinfo(transfer.easy(), CURLINFO_TOTAL_TIME_T, &time);
    ChannelCounters& counters = link_->channel;
    counters.requests.fetch_add(1, std::memory_order_relaxed);
    counters.bytesSent.fetch_add(static_cast<std::uint64_t>(sent), std::memory_order_relaxed);
    counters.bytesReceived.fetch_add(reply.body.size(), std::memory_order_relaxed);
    if (reply.result == CURLE_OK) {
        counters.addLatency(std::chrono::microseconds(time));
    } else {
        counters.failures.fetch_add(1, std::memory_order_relaxed);
    }
}

// Without a body only POST and PUT say so, with a length of zero.
void HttpChannel::setBody(Transfer& transfer, const Request& request) {
    const std::string_view verb = request.verb;
    if (request.body != nullptr || verb == "POST" || verb == "PUT") {
        const std::string_view body = request.body == nullptr ? std::string_view("") : *request.body;
        transfer.set(CURLOPT_POSTFIELDS, body.data());
        transfer.set(CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(body.size()));
    }
    transfer.set(CURLOPT_CUSTOMREQUEST, request.verb);
}

std::size_t HttpChannel::takeBody(char* bytes, std::size_t size, std::size_t count, void* body) {
    auto& [text, largest] = *static_cast<BoundedBody*>(body);
    const std::size_t length = size * count;
    if (length > largest - text.size()) {
        return 0;
    }
    text.append(bytes, length);
    return length;
}

}  // namespace lcdcomm
