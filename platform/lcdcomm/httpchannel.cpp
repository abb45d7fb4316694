#include "platform/lcdcomm/httpchannel.h"

#include "kt/log.h"
#include "platform/ktp/hostmessages.h"
#include "platform/ktp/knownsettings.h"
#include "platform/lcdcomm/gate.h"
#include "platform/lcdcomm/multipartform.h"

namespace lcdcomm {

namespace {

constexpr std::size_t kLongestToken = 4096;

constexpr std::uint16_t kOk = 200;
constexpr std::uint16_t kUnauthorized = 401;
constexpr std::string_view kLoginPath = "/zelto/v1/system/auth/login";

RequestEnd endOf(CURLcode result) {
    switch (result) {
        case CURLE_OK:
            return RequestEnd::Replied;
        case CURLE_WRITE_ERROR:
        case CURLE_FILESIZE_EXCEEDED:
            return RequestEnd::TooLarge;
        case CURLE_OPERATION_TIMEDOUT:
            return RequestEnd::TimedOut;
        case CURLE_COULDNT_RESOLVE_HOST:
        case CURLE_COULDNT_CONNECT:
            return RequestEnd::Unreachable;
        case CURLE_PEER_FAILED_VERIFICATION:
        case CURLE_SSL_CACERT_BADFILE:
            return RequestEnd::Distrusted;
        case CURLE_GOT_NOTHING:
        case CURLE_PARTIAL_FILE:
        case CURLE_RECV_ERROR:
        case CURLE_SEND_ERROR:
            return RequestEnd::Cut;
        case CURLE_UNSUPPORTED_PROTOCOL:
        case CURLE_WEIRD_SERVER_REPLY:
            return RequestEnd::Garbled;
        case CURLE_ABORTED_BY_CALLBACK:
            return RequestEnd::Stopped;
        default:
            return RequestEnd::Failed;
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
      deepest_(static_cast<std::size_t>(ktp::valueOf(ktp::kDeepestNesting))),
      timeoutMs_(static_cast<int>(ktp::valueOf(ktp::kRequestTimeoutMs))),
      transfers_(std::chrono::milliseconds(ktp::valueOf(ktp::kStopGraceMs))) {}

void HttpChannel::setTimeoutMs(int milliseconds) {
    if (milliseconds <= 0) {
        if (misuseLog_.due()) {
            KT_WARN("a time-out of {} ms is none, {} ms stay", milliseconds, timeoutMs_.load());
        }
        return;
    }
    timeoutMs_ = milliseconds;
}

void HttpChannel::setToken(const std::string& token) {
    const bool usable = token.size() <= kLongestToken && isToken(token);
    if (!usable && misuseLog_.due()) {
        KT_WARN("a token of {} bytes can't be sent, it counts as none", token.size());
    }
    link_->session.setToken(usable ? token : std::string());
}

std::shared_ptr<LCD::Comm::FormData> HttpChannel::createFormData() {
    return std::make_shared<MultipartForm>(largestUpload_);
}

int HttpChannel::handleMessage(const ktp::IMessage* message) {
    if (message->id() == ktp::kStopAhead) {
        stop_.request_stop();
        transfers_.endSoon();
    } else if (message->id() == ktp::kSystemStop) {
        stop_.request_stop();
        transfers_.close();
    }
    return 0;
}

bool HttpChannel::send(const Request& request, std::uint16_t& status, std::string& response) {
    const auto start = Clock::now();
    // Given back last: a stop waits for it before this object goes.
    const TransferPool::Lease transfer = transfers_.lease();
    Reply reply;
    if (!transfer) {
        link_->channel.refused.fetch_add(1, std::memory_order_relaxed);
        reply.how = RequestEnd::Stopped;
    } else if (!isWellFormed(request)) {
        reply.how = RequestEnd::Malformed;
    } else if (request.path == kLoginPath) {
        // The old token would only be in the way.
        reply = perform(*transfer, request, {});
    } else {
        const Flight flight(link_->flights);
        reply = performAuthorized(*transfer, request);
    }
    tell(request, reply, start);
    if (reply.how != RequestEnd::Replied) {
        return false;
    }
    status = reply.status;
    response = std::move(reply.body);
    return true;
}

// What the device refuses for its token goes out once more with a new one.
HttpChannel::Reply HttpChannel::performAuthorized(Transfer& transfer, const Request& request) {
    const Token token = link_->session.token();
    Reply reply = perform(transfer, request, token.text);
    if (reply.status != kUnauthorized) {
        return reply;
    }
    link_->session.refused(token);
    if (const std::optional<Token> newer = link_->session.replacementOf(token, stop_.get_token())) {
        reply = perform(transfer, request, newer->text);
        reply.resent = true;
        if (reply.status == kUnauthorized) {
            link_->session.refused(*newer);
        }
    }
    return reply;
}

HttpChannel::Reply HttpChannel::perform(Transfer& transfer, const Request& request, const std::string& token) {
    transfer.prepare(urlOf(baseUrl_, request), connectTimeout_);
    transfer.set(CURLOPT_TIMEOUT_MS, static_cast<long>(timeoutMs_));
    setBody(transfer, request);
    if (std::string_view(request.verb) == "POST") {
        transfer.sendOnce();
    }
    HeaderLines headers;
    addHeaders(headers, request, token);
    transfer.set(CURLOPT_HTTPHEADER, headers.get());
    Reply reply;
    BoundedBody body{reply.body, largestReply_};
    // What is announced as too large isn't even begun.
    transfer.set(CURLOPT_MAXFILESIZE_LARGE, static_cast<curl_off_t>(largestReply_));
    transfer.set(CURLOPT_WRITEFUNCTION, &HttpChannel::takeBody);
    transfer.set(CURLOPT_WRITEDATA, &body);

    const CURLcode result = transfer.run([this] { return transfers_.remaining(); });
    long status = 0;
    curl_easy_getinfo(transfer.easy(), CURLINFO_RESPONSE_CODE, &status);
    reply.status = static_cast<std::uint16_t>(status);
    reply.how = endOf(result);
    if (result == CURLE_OK && reply.status == kOk && !passesGate(reply.body, deepest_)) {
        reply.how = RequestEnd::Gated;
    }
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
    if (reply.how == RequestEnd::Replied) {
        counters.addLatency(std::chrono::microseconds(time));
    } else {
        counters.failures.fetch_add(1, std::memory_order_relaxed);
    }
    if (reply.how == RequestEnd::Gated) {
        counters.gated.fetch_add(1, std::memory_order_relaxed);
    }
}

void HttpChannel::tell(const Request& request, const Reply& reply, Clock::time_point start) {
    if (ICommObserver* observer = link_->observer) {
        observer->requestEnded({request.verb, request.path, request.body, reply.status == 0 ? nullptr : &reply.body,
                                reply.how, reply.how == RequestEnd::Replied, reply.resent, reply.status,
                                request.sequenceTag, start, Clock::now()});
    }
    if (reply.how != RequestEnd::Replied && failureLog_.due()) {
        KT_WARN("{} {}{} {}", request.verb, baseUrl_, request.path, textOf(reply.how));
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
