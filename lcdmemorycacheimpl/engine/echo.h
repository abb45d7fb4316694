// Whose change a report echoes.
#pragma once

#include <cstdint>
#include <string>

#include "lcd/commchannel/autoreport.h"
#include "lcd/memorycache/isequence.h"
#include "lcd/memorycache/iuser.h"

namespace LCD::MemoryCacheImpl {

/// The name of the subscriber whose change caused a report, or nothing when it wasn't this panel's: the
/// source's token is another's, or its number is above the last one drawn for the report. Receiver thread;
/// may be called with the lock of the caller's mirror held.
inline std::string echoRequester(MemoryCache::ISequence& sequence, MemoryCache::IUser& user, std::uint32_t reportId,
                                 const CommChannel::AutoReportSource& source) {
    const int drawn = sequence.getSeq(reportId);
    const bool own = source.token == user.token() && source.sequence <= drawn;
    return own ? sequence.getRequestName(reportId) : std::string();
}

/// The number under which a change goes out whose echo is `reportId`. Sampling thread.
inline int drawSequence(MemoryCache::ISequence& sequence, std::uint32_t reportId, const std::string& requester) {
    sequence.intert(reportId, requester);
    return sequence.getSeq(reportId);
}

}  // namespace LCD::MemoryCacheImpl
