// Records to text and back. No state, any thread.
#pragma once

#include <string>

#include "json/ajson.h"

namespace LCD::ProtocolImpl {

/// Type-erased form of `decode`.
bool decodeValue(const std::string& text, const ajson::detail::value_type& type, void* out, std::string& error);

/// Reads a record, or a text that is a bare array into a vector or list. On false `error` says what was wrong
/// and where, and `out` holds what was read so far.
template <class T>
bool decode(const std::string& text, T& out, std::string& error) {
    return decodeValue(text, ajson::detail::type_of<T>(), &out, error);
}

/// Replaces `out` by the compact text of a record, vector or list.
template <class T>
void encode(std::string& out, const T& value) {
    ajson::ajson_string_stream stream;
    ajson::write(stream, value);
    out.assign(stream.data(), stream.size());
}

}  // namespace LCD::ProtocolImpl
