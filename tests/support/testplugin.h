// What the test's plug-in and the test itself share.
#pragma once

#include <string>

namespace lcdtest {

/// Where components write what happens to them. Found under "testJournal".
class IJournal {
public:
    virtual ~IJournal() = default;
    virtual void write(const std::string& line) = 0;
};

}  // namespace lcdtest
