// A request as the channel is given it, and how it looks on the wire.
#pragma once

#include <string>
#include <string_view>

#include "lcd/comm/ihttpchannel.h"
#include "platform/lcdcomm/transfer.h"

namespace lcdcomm {

/// The arguments of one send; they outlive it.
struct Request {
    const char* verb;
    const std::string& path;
    const LCD::Comm::QueryPairs* query;
    const LCD::Comm::HeaderPairs* headers;
    const std::string* body;
    int sequenceTag;
};

/// Whether path and headers keep to one line each, so that no value becomes a line of its own.
bool isWellFormed(const Request& request);
/// Whether a text can stand in a header: visible characters of ASCII.
bool isToken(std::string_view text);
std::string urlOf(const std::string& baseUrl, const Request& request);
void addHeaders(HeaderLines& lines, const Request& request, const std::string& token);
void addAuthorization(HeaderLines& lines, const std::string& token);

}  // namespace lcdcomm
