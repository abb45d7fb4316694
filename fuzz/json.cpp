// The targets around the JSON reader, which sees nothing but what passes the gate.
#include "json/ajson.h"

#include <cmath>

#include "fuzz/sample.h"
#include "fuzz/steps.h"
#include "fuzz/targets.h"
#include "lcdprotocolimpl/core/codec.h"
#include "lcdprotocolimpl/core/response.h"
#include "lcdprotocolimpl/layer/layerdetail.h"
#include "platform/lcdcomm/gate.h"

namespace lcdfuzz {

namespace {

using LCD::ProtocolImpl::decode;
using LCD::ProtocolImpl::encode;

constexpr std::size_t kDeepest = 256;

template <class T>
std::string encoded(const T& value) {
    std::string out;
    encode(out, value);
    return out;
}

// The same tokens, each on a line of its own. None of the reader's short cuts fits such a text.
std::string respaced(const std::string& text) {
    std::string out;
    ajson::reader in(text);
    for (in.next(); in.current().type != ajson::token_end; in.next()) {
        const ajson::token& token = in.current();
        const bool isQuoted = token.type == ajson::token_string && token.text != text.c_str() && token.text[-1] == '"';
        const char* quote = isQuoted ? "\"" : "";
        out.append(quote).append(token.text, token.length).append(quote).append("\r\n\t");
    }
    return out;
}

// What became of the record, whole or not, and the error without its place.
template <class T>
std::string outcome(const std::string& text) {
    T value{};
    std::string error;
    const LinearSteps steps(text.size());
    const bool decoded = decode(text, value, error);
    steps.check();
    const std::size_t message = error.find(" msg:");
    require(decoded || (error.rfind("error at line :", 0) == 0 && message != error.npos), "errors tell their place");
    return encoded(value) + (decoded ? "" : error.substr(message));
}

// White space changes nothing, so both of the reader's ways through a text lead to the same.
template <class T>
void read(const std::string& text, const std::string& spaced) {
    const std::string compact = outcome<T>(text);
    const std::string loose = outcome<T>(spaced);
    require(compact == loose, "white space changes nothing:\n{}\n{}", compact, loose);
}

template <class... T>
void readAs(const std::string& text) {
    if (!lcdcomm::passesGate(text, kDeepest)) {
        return;
    }
    const std::string spaced = respaced(text);
    require(lcdcomm::passesGate(spaced, kDeepest), "white space doesn't close the gate");
    (read<T>(text, spaced), ...);
}

// The writer cuts characters beyond the basic plane in two halves, which come back as characters of their own.
bool holdsSupplementary(const std::string& text) { return text.find_first_of("\xF0\xF1\xF2\xF3\xF4") != text.npos; }

// From 2^64 on the reader's integers overflow, and it knows no sign ahead of a word.
void dropIfLost(float& number) { number = std::fabs(number) < 0x1p64F ? number : 0; }

}  // namespace

void record(const std::string& text) {
    readAs<LCD::ProtocolImpl::s_Response<LCD::ProtocolImpl::s_LayerDetailPage>>(text);
}

void envelopes(const std::string& text) {
    readAs<Sample, LCD::ProtocolImpl::s_Response<Sample>, LCD::ProtocolImpl::s_ResponseArray<Item>,
           LCD::ProtocolImpl::s_NullResponse, std::vector<Item>, std::list<Sample>, std::list<int>,
           std::vector<std::string>, std::vector<std::vector<float>>>(text);
}

void roundtrip(const std::string& text) {
    Sample first;
    std::string error;
    if (holdsSupplementary(text) || !lcdcomm::passesGate(text, kDeepest) || !decode(text, first, error)) {
        return;
    }
    dropIfLost(first.rate);
    for (float& each : first.rates) {
        dropIfLost(each);
    }
    const std::string written = encoded(first);
    require(lcdcomm::passesGate(written, kDeepest), "what was written passes the gate: {}", written);
    Sample second;
    require(decode(written, second, error), "what was written can be read: {} in {}", error, written);
    const std::string again = encoded(second);
    require(again == written, "written again it is the same:\n{}\n{}", written, again);
}

}  // namespace lcdfuzz
