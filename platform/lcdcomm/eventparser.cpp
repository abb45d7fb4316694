#include "platform/lcdcomm/eventparser.h"

#include <utility>

namespace lcdcomm {

bool EventParser::feed(std::string_view bytes, const Sink& sink, const CommentSink& comments) {
    while (problem_ == nullptr && !bytes.empty()) {
        const std::size_t end = bytes.find('\n');
        const std::string_view piece = bytes.substr(0, end);
        if (line_.size() + event_.event.size() + event_.id.size() + event_.data.size() + piece.size() > largest_) {
            return fail("an event is larger than allowed");
        }
        if (end == std::string_view::npos) {
            line_ += piece;
            break;
        }
        if (line_.empty()) {
            takeLine(piece, sink, comments);
        } else {
            line_ += piece;
            takeLine(line_, sink, comments);
            line_.clear();
        }
        bytes.remove_prefix(end + 1);
    }
    return problem_ == nullptr;
}

bool EventParser::takeLine(std::string_view line, const Sink& sink, const CommentSink& comments) {
    if (!line.empty() && line.back() == '\r') {
        line.remove_suffix(1);
    }
    if (line.find('\r') != std::string_view::npos) {
        return fail("a carriage return stands inside a line");
    }
    if (line.empty()) {
        dispatch(sink);
        return true;
    }
    const std::size_t colon = line.find(':');
    std::string_view value = colon == std::string_view::npos ? std::string_view() : line.substr(colon + 1);
    if (!value.empty() && value.front() == ' ') {
        value.remove_prefix(1);
    }
    if (colon == 0) {
        if (comments) {
            comments(value);
        }
        return true;
    }
    return takeField(line.substr(0, colon), value);
}

bool EventParser::takeField(std::string_view name, std::string_view value) {
    if (name == "data") {
        takeData(value);
        return true;
    }
    if (name == "event") {
        return takeOnce(event_.event, hasEvent_, value);
    }
    if (name == "id") {
        return takeOnce(event_.id, hasId_, value);
    }
    return name == "retry" || fail("a line is neither a comment nor a field");
}

bool EventParser::takeOnce(std::string& field, bool& seen, std::string_view value) {
    if (std::exchange(seen, true)) {
        return fail("a field stands twice in an event");
    }
    field = value;
    return true;
}

void EventParser::takeData(std::string_view value) {
    if (std::exchange(hasData_, true)) {
        event_.data += '\n';
    }
    event_.data += value;
}

void EventParser::dispatch(const Sink& sink) {
    if (hasEvent_ || hasId_ || hasData_) {
        sink(std::exchange(event_, {}));
    }
    hasEvent_ = hasId_ = hasData_ = false;
}

bool EventParser::fail(const char* problem) {
    problem_ = problem;
    return false;
}

}  // namespace lcdcomm
