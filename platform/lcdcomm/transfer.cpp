#include "platform/lcdcomm/transfer.h"

#include <algorithm>
#include <new>

namespace lcdcomm {

namespace {

constexpr Transfer::Milliseconds kLongestSleep = std::chrono::minutes(1);
constexpr long kFreshSeconds = 1;

}  // namespace

Transfer::Transfer() : easy_(curl_easy_init()), multi_(curl_multi_init()) {
    if (easy_ == nullptr || multi_ == nullptr) {
        curl_easy_cleanup(easy_);
        curl_multi_cleanup(multi_);
        throw std::bad_alloc();
    }
}

Transfer::~Transfer() {
    curl_easy_cleanup(easy_);
    curl_multi_cleanup(multi_);
}

void Transfer::prepare(const std::string& url, Milliseconds connectTimeout) {
    curl_easy_reset(easy_);
    sends_ = 0;
    set(CURLOPT_URL, url.c_str());
    set(CURLOPT_PATH_AS_IS, 1L);
    set(CURLOPT_PROTOCOLS_STR, "http,https");
    set(CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    set(CURLOPT_NOSIGNAL, 1L);
    // The device stands beside us: no proxy of the environment lies between.
    set(CURLOPT_PROXY, "");
    set(CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(connectTimeout.count()));
}

void Transfer::sendOnce() {
    set(CURLOPT_PREREQFUNCTION, &Transfer::beforeSend);
    set(CURLOPT_PREREQDATA, &sends_);
    // One that the device is about to close isn't worth the risk.
    set(CURLOPT_MAXAGE_CONN, kFreshSeconds);
}

int Transfer::beforeSend(void* sends, char* /*to*/, char* /*from*/, int /*toPort*/, int /*fromPort*/) {
    return ++*static_cast<int*>(sends) > 1 ? CURL_PREREQFUNC_ABORT : CURL_PREREQFUNC_OK;
}

CURLcode Transfer::run(const std::function<Milliseconds()>& remaining) {
    if (curl_multi_add_handle(multi_, easy_) != CURLM_OK) {
        return CURLE_FAILED_INIT;
    }
    const CURLcode result = drive(remaining);
    curl_multi_remove_handle(multi_, easy_);
    return sends_ > 1 ? CURLE_GOT_NOTHING : result;
}

CURLcode Transfer::drive(const std::function<Milliseconds()>& remaining) {
    while (true) {
        int running = 0;
        if (curl_multi_perform(multi_, &running) != CURLM_OK) {
            return CURLE_FAILED_INIT;
        }
        if (running == 0) {
            int left = 0;
            const CURLMsg* message = curl_multi_info_read(multi_, &left);
            return message == nullptr ? CURLE_FAILED_INIT : message->data.result;
        }
        const Milliseconds rest = remaining();
        if (rest <= Milliseconds::zero()) {
            return CURLE_ABORTED_BY_CALLBACK;
        }
        const auto sleep = static_cast<int>(std::min(rest, kLongestSleep).count());
        if (curl_multi_poll(multi_, nullptr, 0, sleep, nullptr) != CURLM_OK) {
            return CURLE_FAILED_INIT;
        }
    }
}

}  // namespace lcdcomm
