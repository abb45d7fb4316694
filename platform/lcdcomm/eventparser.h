// Reads server-sent events from a stream of bytes.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

namespace lcdcomm {

/// One event as it came: its fields without the data's last line feed.
struct StreamEvent {
    std::string event;
    std::string id;
    std::string data;
};

/// Takes the bytes of one connection as they come in, whatever the pieces. Strict: lines end in LF or CRLF,
/// a line is a comment or one of the fields event, id, data and retry, and event and id stand once in an
/// event. After anything else nobody can tell where events begin, so the connection is given up. The steps
/// are linear in the bytes, and what is kept never exceeds `largestEvent` bytes.
class EventParser {
public:
    explicit EventParser(std::size_t largestEvent) : largest_(largestEvent) {}

    using Sink = std::function<void(StreamEvent)>;
    using CommentSink = std::function<void(std::string_view)>;

    /// Calls `sink` with each event that is complete, and `comments` with the text of each comment line. False when the
    /// stream is broken: for good.
    bool feed(std::string_view bytes, const Sink& sink, const CommentSink& comments = {});
    /// What broke the stream; null while it is whole.
    const char* problem() const { return problem_; }

private:
    bool takeLine(std::string_view line, const Sink& sink, const CommentSink& comments);
    bool takeField(std::string_view name, std::string_view value);
    bool takeOnce(std::string& field, bool& seen, std::string_view value);
    void takeData(std::string_view value);
    void dispatch(const Sink& sink);
    bool fail(const char* problem);

    const std::size_t largest_;
    const char* problem_ = nullptr;
    std::string line_;  // the start of a line whose end hasn't come
    StreamEvent event_;
    bool hasEvent_ = false;
    bool hasId_ = false;
    bool hasData_ = false;
};

}  // namespace lcdcomm
