#include "lcdprotocolimpl/core/request.h"

#include "lcdprotocolimpl/core/query.h"
#include "lcdprotocolimpl/core/topic.h"

namespace LCD::ProtocolImpl {

namespace {

constexpr std::uint16_t kOk = 200;

}  // namespace

Request::Request(Comm::IHttpChannel* channel, std::string path, KT::LogSite site)
    : channel_(channel), path_(std::move(path)), site_(site) {}

Request& Request::query(std::string key, std::string value) {
    if (!query_) {
        query_.emplace();
    }
    query_->emplace_back(std::move(key), std::move(value));
    return *this;
}

Request& Request::query(Comm::QueryPairs pairs) {
    query_ = std::move(pairs);
    return *this;
}

Request& Request::withoutQuery() {
    withoutQuery_ = true;
    return *this;
}

Request& Request::withEmptyQuery() {
    query_.emplace();
    return *this;
}

Request& Request::header(std::string name, std::string value) {
    headers_.emplace_back(std::move(name), std::move(value));
    return *this;
}

Request& Request::timeout(int milliseconds) {
    channel_->setTimeoutMs(milliseconds);
    return *this;
}

Request& Request::sequence(int tag) {
    sequence_ = tag;
    return *this;
}

Request& Request::logSend(SendLog text) {
    sendLog_ = text;
    return *this;
}

Request& Request::logReply(ReplyLog text, std::string subject) {
    replyLog_ = text;
    subject_ = std::move(subject);
    return *this;
}

Request& Request::judgeByCodeAlone() {
    judgedByCodeAlone_ = true;
    return logSend(SendLog::silent);
}

Request& Request::codeInto(int& code) {
    codeOut_ = &code;
    return *this;
}

bool Request::send(Verb verb, const std::string& body) {
    s_NullResponse response;
    const auto type = ajson::detail::type_of<s_NullResponse>();
    return exchange(verb, &body, Envelope{type, &response, response.code, response.message});
}

bool Request::exchange(Verb verb, const std::string* body, const Envelope& envelope) {
    const SendLog sendLog = sendLog_.value_or(verb == Verb::get ? SendLog::silent : SendLog::sendSet);
    const ReplyLog replyLog = replyLog_.value_or(verb == Verb::get ? ReplyLog::getDecode : ReplyLog::setDecode);
    std::uint16_t status = 0;
    std::string reply;
    const bool sent = transmit(verb, body, status, reply);
    if (!sent || status != kOk) {
        if (sendLog == SendLog::asReply) {
            logBadReply(replyLog, {}, envelope);
        } else {
            logBadSend(sendLog, sent, status);
        }
        return false;
    }
    std::string error;
    const bool decoded = decodeValue(reply, envelope.type, envelope.whole, error);
    if (decoded && codeOut_ != nullptr) {
        *codeOut_ = envelope.code;
    }
    if ((decoded || judgedByCodeAlone_) && envelope.code == 0) {
        return true;
    }
    logBadReply(replyLog, error, envelope);
    return false;
}

bool Request::transmit(Verb verb, const std::string* body, std::uint16_t& status, std::string& reply) {
    static const Comm::QueryPairs kNoPairs;
    const Comm::QueryPairs* query = query_ ? &*query_ : nullptr;
    if (query == nullptr && verb == Verb::get && !withoutQuery_) {
        query = &kNoPairs;
    }
    const Comm::HeaderPairs* headers = headers_.empty() ? nullptr : &headers_;
    using Send = decltype(&Comm::IHttpChannel::sendGetRequest);
    static constexpr Send kSends[] = {&Comm::IHttpChannel::sendGetRequest, &Comm::IHttpChannel::sendPutRequest,
                                      &Comm::IHttpChannel::sendPostRequest, &Comm::IHttpChannel::sendDeleteRequest};
    return (channel_->*kSends[static_cast<int>(verb)])(path_, query, headers, body, &status, &reply, sequence_);
}

void Request::logBadSend(SendLog text, bool sent, std::uint16_t status) const {
    switch (text) {
        case SendLog::silent:
        case SendLog::asReply:
            return;
        case SendLog::sendSet:
            return logFailure(site_, " sendSetRequest failed:{0},{1}", sent, status);
        case SendLog::sendGet:
            return logFailure(site_, " sendGetRequest failed:{0},{1}", sent, status);
        case SendLog::resultCode:
            return logFailure(site_, "result:{0},status code:{1}", sent, status);
        case SendLog::retCode:
            return logFailure(site_, "ret:{0},status code:{1}", sent, status);
        case SendLog::failToGet:
            return logFailure(site_, "Fail to get data: {0} ret:{1}", status, sent);
        case SendLog::failToSend:
            return logFailure(site_, "Fail to send data: {0} ret:{1}", status, sent);
    }
}

void Request::logBadReply(ReplyLog text, const std::string& error, const Envelope& envelope) const {
    const std::string url = channel_->baseUrl();
    const auto& [type, whole, code, message] = envelope;
    if (text == ReplyLog::plainForCode) {
        text = error.empty() ? ReplyLog::plain : ReplyLog::getDecode;
    }
    switch (text) {
        case ReplyLog::getDecode:
            return logFailure(site_, "url:{0}{1}{2} decode has failed. Error Message={3}, code={4}, message={5}", url,
                              path_, Comm::QueryStringTypeToString(query_.value_or(Comm::QueryPairs{})), error, code,
                              message);
        case ReplyLog::setDecode:
            return logFailure(site_, "url:{0}{1} decode has failed. Response Code={2} Reponse Message={3}", url, path_,
                              code, message);
        case ReplyLog::plain:
        case ReplyLog::plainForCode:
            return logFailure(site_, "url:{0}{1} has failed. Response Code={2} Reponse Message={3}", url, path_, code,
                              message);
        case ReplyLog::loginName:
            return logFailure(site_, "url:{0}{1} loginName={2} has failed. Response Code={3} Reponse Message={4}", url,
                              path_, subject_, code, message);
        case ReplyLog::interfaceId:
            return logFailure(site_, "url:{0}{1} interfaceId={2} has failed. Response Code={3} Reponse Message={4}",
                              url, path_, subject_, code, message);
        case ReplyLog::layerId:
            return logFailure(site_, "url:{0}{1} layerId={2} has failed. Response Code={3} Reponse Message={4}", url,
                              path_, subject_, code, message);
    }
}

}  // namespace LCD::ProtocolImpl
