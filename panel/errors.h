// How the panel tool fails, and with which exit status.
#pragma once

#include <stdexcept>
#include <string>
#include <vector>

namespace panel {

enum ExitStatus { kHeld = 0, kDidNotHold = 1, kBadInput = 2, kUnreachable = 3 };

/// Something that the person who typed it can mend.
class BadInput : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The device can't be reached; the text has its URL.
class Unreachable : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Of these names the one that is most like `name`.
std::string nearest(const std::string& name, const std::vector<std::string>& names);

/// "there is no component "Swich": did you mean "SwitchMode"? ..." for a name that isn't among them.
BadInput unknownName(const std::string& what, const std::string& name, const std::vector<std::string>& names,
                     const std::string& remedy);

}  // namespace panel
