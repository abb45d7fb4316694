#include "platform/lcdcomm/gate.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "fuzz/steps.h"
#include "fuzz/targets.h"
#include "json/reader.h"

namespace lcdfuzz {

namespace {

constexpr std::size_t kDeepest = 256;
constexpr const char* kBlanks = " \t\r\n";

bool passes(const std::string& text) {
    const LinearSteps steps(text.size());
    const bool passed = lcdcomm::passesGate(text, kDeepest);
    steps.check();
    return passed;
}

// The other parser takes a NUL for the end of the text.
bool isStrictContainer(const std::string& text) {
    const std::size_t start = text.find_first_not_of(kBlanks);
    const auto brackets = std::count_if(text.begin(), text.end(), [](char c) { return c == '[' || c == '{'; });
    return start != text.npos && text.find('\0') == text.npos && (text[start] == '[' || text[start] == '{') &&
           static_cast<std::size_t>(brackets) <= kDeepest && nlohmann::json::accept(text);
}

// It may well refuse the text: a key like "}" ends an object to it.
void requireThatTheReaderFinishes(const std::string& text) {
    ajson::reader in(text);
    const LinearSteps steps(text.size());
    try {
        ajson::skip(in);
    } catch (const ajson::exception&) {  // as it should
    }
    steps.check();
}

}  // namespace

void gate(const std::string& text) {
    if (!passes(text)) {
        require(!isStrictContainer(text), "strict JSON passes");
        return;
    }
    requireThatTheReaderFinishes(text);
    const std::size_t last = text.find_last_not_of(kBlanks);
    if (text[last] == ']' || text[last] == '}') {
        require(!passes(text.substr(0, last)) && !passes(text.substr(0, last / 2)),
                "a text that was cut off is kept out");
    }
}

}  // namespace lcdfuzz
