// One libcurl transfer that another thread can break off.
#pragma once

#include <curl/curl.h>

#include <chrono>
#include <functional>
#include <string>

namespace lcdcomm {

/// A list of header lines for libcurl.
class HeaderLines {
public:
    HeaderLines() = default;
    HeaderLines(const HeaderLines&) = delete;
    HeaderLines& operator=(const HeaderLines&) = delete;
    ~HeaderLines() { curl_slist_free_all(lines_); }

    void add(const std::string& line) { lines_ = curl_slist_append(lines_, line.c_str()); }
    curl_slist* get() const { return lines_; }

private:
    curl_slist* lines_ = nullptr;
};

/// An easy handle in a multi handle of its own, which keeps the connection for the next transfer. Belongs to
/// the thread that runs it; `wake` is for any thread.
class Transfer {
public:
    using Milliseconds = std::chrono::milliseconds;

    Transfer();
    Transfer(const Transfer&) = delete;
    Transfer& operator=(const Transfer&) = delete;
    ~Transfer();

    /// Forgets the last transfer and sets what all have in common. The caller sets the rest on `easy()`.
    void prepare(const std::string& url, Milliseconds connectTimeout);
    template <class Value>
    void set(CURLoption option, Value value) {
        curl_easy_setopt(easy_, option, value);
    }
    CURL* easy() const { return easy_; }
    /// Of what changes something with each time that it arrives: libcurl would send it again when a kept connection
    /// ends without a reply, though the device may have carried it out. Ends with `CURLE_GOT_NOTHING` instead.
    void sendOnce();

    /// Runs the transfer. `remaining` tells how long it may still take; it is asked again after each piece of
    /// work and each `wake`, and nothing left breaks the transfer off with `CURLE_ABORTED_BY_CALLBACK`.
    CURLcode run(const std::function<Milliseconds()>& remaining);
    /// Makes a transfer that runs ask how long it may still take.
    void wake() { curl_multi_wakeup(multi_); }

private:
    CURLcode drive(const std::function<Milliseconds()>& remaining);
    static int beforeSend(void* sends, char* to, char* from, int toPort, int fromPort);

    CURL* const easy_;
    CURLM* const multi_;
    int sends_ = 0;  // since `sendOnce`
};

}  // namespace lcdcomm
