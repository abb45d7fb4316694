#include "platform/lcdcomm/request.h"

#include <strings.h>

#include <algorithm>

namespace lcdcomm {

namespace {

bool isVisible(char c) { return c > ' ' && c < '\x7f'; }

bool isPathCharacter(char c) { return static_cast<unsigned char>(c) > ' ' && c != '\x7f'; }

bool isOneLine(std::string_view text) { return text.find_first_of(std::string_view("\r\n\0", 3)) == text.npos; }

bool isUnreserved(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-' || c == '.' ||
           c == '_' || c == '~';
}

void appendEncoded(std::string& out, std::string_view text) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    for (const char c : text) {
        if (isUnreserved(c)) {
            out += c;
        } else {
            const auto byte = static_cast<unsigned char>(c);
            out += {'%', kDigits[byte >> 4], kDigits[byte & 15]};
        }
    }
}

}  // namespace

bool isToken(std::string_view text) { return std::all_of(text.begin(), text.end(), isVisible); }

bool isWellFormed(const Request& request) {
    const auto goodHeader = [](const auto& header) {
        const auto& [name, value] = header;
        return !name.empty() && isToken(name) && name.find(':') == name.npos && isOneLine(value);
    };
    return !request.path.empty() && request.path.front() == '/' &&
           std::all_of(request.path.begin(), request.path.end(), isPathCharacter) &&
           (request.headers == nullptr || std::all_of(request.headers->begin(), request.headers->end(), goodHeader));
}

std::string urlOf(const std::string& baseUrl, const Request& request) {
    std::string url = baseUrl + request.path;
    if (request.query != nullptr) {
        char separator = '?';
        for (const auto& [key, value] : *request.query) {
            url += separator;
            appendEncoded(url, key);
            url += '=';
            appendEncoded(url, value);
            separator = '&';
        }
    }
    return url;
}

void addAuthorization(HeaderLines& lines, const std::string& token) {
    if (!token.empty()) {
        lines.add("Authorization: Bearer " + token);
    }
}

void addHeaders(HeaderLines& lines, const Request& request, const std::string& token) {
    bool hasType = false;
    if (request.headers != nullptr) {
        for (const auto& [name, value] : *request.headers) {
            // libcurl wants a semicolon for a header without value.
            lines.add(value.empty() ? name + ";" : name + ": " + value);
            hasType = hasType || strcasecmp(name.c_str(), "Content-Type") == 0;
        }
    }
    if (request.body != nullptr && !hasType) {
        lines.add("Content-Type: application/json");
    }
    // A large body goes out at once, without asking first.
    lines.add("Expect:");
    addAuthorization(lines, token);
    if (request.sequenceTag != 0) {
        lines.add("X-Sequence-Tag: " + std::to_string(request.sequenceTag));
    }
}

}  // namespace lcdcomm
