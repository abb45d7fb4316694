// The numbers of the panel's own changes.
#pragma once

#include <string>

namespace LCD::MemoryCache {

/// Tells the report that echoes a change of this panel from a stranger's. The platform's lookup name is
/// "lcdMemoryCacheSequence". Any thread; no operation blocks.
class ISequence {
public:
    virtual ~ISequence() = default;

    /// Draws the next number for the report `id` and notes who asked for the change.
    virtual void intert(unsigned int id, const std::string& requestName) = 0;
    /// The number last drawn for `id`; 0 if there is none.
    virtual int getSeq(unsigned int id) = 0;
    /// The name noted with that number; empty if there is none.
    virtual std::string getRequestName(unsigned int id) = 0;
};

}  // namespace LCD::MemoryCache
