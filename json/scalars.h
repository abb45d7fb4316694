// Scalars out of tokens, as tolerant as they must be.
#pragma once

#include <cstdint>

#include "json/reader.h"
#include "json/reflection.h"

namespace ajson::detail {

/// A number of any size, cut off as a conversion to 32 bits does it.
inline std::int32_t cut_to_32(std::uint64_t magnitude, bool negative) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(negative ? 0 - magnitude : magnitude));
}

/// Reads the next token into a member that is neither a record nor a sequence. Raises `exception` for a token that is
/// no such value; the member is then as it was, or a string with what could be read.
void scalar_from_token(reader& in, value_kind kind, void* member);

}  // namespace ajson::detail
