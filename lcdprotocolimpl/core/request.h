// The one shape of all request functions.
//
//     bool getSystemDetail(Comm::IHttpChannel* channel, s_SystemDetail& out) {
//         return Request(channel, "/zelto/v1/system/detail").withoutQuery().get(out);
//     }
//
// A request function states path, verb and types. Tests of the status, the envelope, decoding and log lines
// are here. What is special about a function is said by an option at its call.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>

#include "kt/log.h"
#include "lcd/comm/ihttpchannel.h"
#include "lcdprotocolimpl/core/codec.h"
#include "lcdprotocolimpl/core/response.h"

namespace LCD::ProtocolImpl {

/// What is logged when no reply arrives or its status is not 200.
enum class SendLog {
    silent,      ///< nothing: the rule for GET
    sendSet,     ///< " sendSetRequest failed:": the rule for everything else
    sendGet,     ///< " sendGetRequest failed:"
    resultCode,  ///< "result:"
    retCode,     ///< "ret:"
    failToGet,   ///< "Fail to get data:"
    failToSend,  ///< "Fail to send data:"
    asReply,     ///< what is logged for a reply whose code is not 0
};

/// What is logged when the reply can't be read or its code is not 0.
enum class ReplyLog {
    getDecode,     ///< "decode has failed" with the reader's message: the rule for GET
    setDecode,     ///< "decode has failed": the rule for everything else
    plain,         ///< "has failed"
    plainForCode,  ///< "has failed" for a code, as getDecode for a reply that can't be read
    loginName,     ///< "loginName=SUBJECT has failed"
    interfaceId,   ///< "interfaceId=SUBJECT has failed"
    layerId,       ///< "layerId=SUBJECT has failed"
};

/// One request. Lives for one call of a request function, on whatever thread calls it; blocks in the channel.
/// Every failure is false for the caller and told in the log alone.
class Request {
public:
    /// `site` is the request function, which log lines name.
    Request(Comm::IHttpChannel* channel, std::string path, KT::LogSite site = KT::LogSite::here());

    Request& query(std::string key, std::string value);
    Request& query(Comm::QueryPairs pairs);
    /// GET: hands the channel no query at all instead of an empty one.
    Request& withoutQuery();
    /// PUT and its like: hands the channel an empty query instead of none.
    Request& withEmptyQuery();
    Request& header(std::string name, std::string value);
    /// Sets the channel's time-out, for this request and for those that follow.
    Request& timeout(int milliseconds);
    /// Travels to the device and back in the report that the change causes.
    Request& sequence(int tag);
    Request& logSend(SendLog text);
    Request& logReply(ReplyLog text, std::string subject = {});
    /// A reply that can't be read counts as success; a bad status is not logged.
    Request& judgeByCodeAlone();
    /// Stores the reply's code as soon as the reply could be read.
    Request& codeInto(int& code);

    template <class T>
    bool get(T& out) {
        return exchange(Verb::get, nullptr, out);
    }
    /// Fetches a page record and keeps its list.
    template <class Page, class List>
    bool getList(List& out) {
        Page page;
        if (!get(page)) {
            return false;
        }
        out = std::move(page.list);
        return true;
    }
    /// The same; an empty list counts as a failure and is logged like a code that isn't 0.
    template <class Page, class List>
    bool getFilledList(List& out) {
        s_Response<Page> response;
        const auto type = ajson::detail::type_of<s_Response<Page>>();
        const Envelope envelope{type, &response, response.code, response.message};
        if (!exchange(Verb::get, nullptr, envelope)) {
            return false;
        }
        if (response.data.list.empty()) {
            logBadReply(ReplyLog::getDecode, {}, envelope);
            return false;
        }
        out = std::move(response.data.list);
        return true;
    }
    /// A GET that carries a body.
    template <class Body>
    bool getWith(const Body& body) {
        return send(Verb::get, text(body));
    }
    template <class Body>
    bool put(const Body& body) {
        return send(Verb::put, text(body));
    }
    template <class Body>
    bool post(const Body& body) {
        return send(Verb::post, text(body));
    }
    /// DELETE, with what is to be deleted as body.
    template <class Body>
    bool remove(const Body& body) {
        return send(Verb::remove, text(body));
    }
    /// PUT and POST that are answered by a record.
    template <class Body, class Out>
    bool put(const Body& body, Out& out) {
        const std::string encoded = text(body);
        return exchange(Verb::put, &encoded, out);
    }
    template <class Body, class Out>
    bool post(const Body& body, Out& out) {
        const std::string encoded = text(body);
        return exchange(Verb::post, &encoded, out);
    }

private:
    enum class Verb { get, put, post, remove };

    struct Envelope {
        const ajson::detail::value_type& type;
        void* whole;
        int& code;
        std::string& message;
    };

    template <class Body>
    static std::string text(const Body& body) {
        std::string out;
        encode(out, body);
        return out;
    }

    template <class Out>
    bool exchange(Verb verb, const std::string* body, Out& out) {
        s_Response<Out> response;
        const auto type = ajson::detail::type_of<s_Response<Out>>();
        if (!exchange(verb, body, Envelope{type, &response, response.code, response.message})) {
            return false;
        }
        out = std::move(response.data);
        return true;
    }

    bool send(Verb verb, const std::string& body);
    bool exchange(Verb verb, const std::string* body, const Envelope& envelope);
    bool transmit(Verb verb, const std::string* body, std::uint16_t& status, std::string& reply);
    void logBadSend(SendLog text, bool sent, std::uint16_t status) const;
    void logBadReply(ReplyLog text, const std::string& error, const Envelope& envelope) const;

    Comm::IHttpChannel* channel_;
    std::string path_;
    KT::LogSite site_;
    std::optional<Comm::QueryPairs> query_;
    bool withoutQuery_ = false;
    Comm::HeaderPairs headers_;
    int sequence_ = 0;
    bool judgedByCodeAlone_ = false;
    std::optional<SendLog> sendLog_;
    std::optional<ReplyLog> replyLog_;
    std::string subject_;
    int* codeOut_ = nullptr;
};

}  // namespace LCD::ProtocolImpl
