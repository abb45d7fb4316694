// What is fuzzed. Each target takes one input and throws `BrokenPromise` when the code under test breaks one.
#pragma once

#include <fmt/format.h>

#include <stdexcept>
#include <string>

namespace lcdfuzz {

class BrokenPromise : public std::logic_error {
public:
    using std::logic_error::logic_error;
};

template <class... Arguments>
void require(bool held, fmt::format_string<const Arguments&...> promise, const Arguments&... arguments) {
    if (!held) {
        throw BrokenPromise(fmt::format(promise, arguments...));
    }
}

/// The reader, behind the gate, into the largest page of the wire.
void record(const std::string& text);
/// The same into every form that a reply or a report has.
void envelopes(const std::string& text);
/// What was read and written reads and writes the same.
void roundtrip(const std::string& text);
/// The gate by itself, on any text.
void gate(const std::string& text);
/// The parser of the event stream, and what makes reports of its events.
void eventstream(const std::string& bytes);
/// A host's configuration file.
void hostconfig(const std::string& file);

struct Target {
    const char* name;
    void (*run)(const std::string& input);
};

inline constexpr Target kTargets[] = {{"record", record}, {"envelopes", envelopes},     {"roundtrip", roundtrip},
                                      {"gate", gate},     {"eventstream", eventstream}, {"hostconfig", hostconfig}};

}  // namespace lcdfuzz
