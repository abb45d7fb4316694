// Records into compact text: every member, in list order, no white space.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "json/recordreader.h"
#include "json/reflection.h"
#include "json/stream.h"

namespace ajson {

/// How single values are written.
struct lite_write {
    /// Decimal. The result is the end of what was written, at most 11 bytes.
    static char* write_int(char* out, std::int32_t value);
    /// As "%.62g" writes the value's exact decimal form; at most `kRealSize` bytes.
    static char* write_real(char* out, float value);
    /// Quoted and escaped. Printable ASCII stands for itself, every other character becomes \uXXXX; one above
    /// 0xFFFF becomes two such groups, its upper and its lower 16 bits. A NUL ends the text. Bytes that are
    /// no UTF-8 are dropped with the sequence in which they stand.
    static void write_str(ajson_string_stream& out, const char* text, std::size_t length);

    static constexpr std::size_t kRealSize = 80;
};

namespace detail {

void write_value(ajson_string_stream& out, const value_type& type, const void* value);

}  // namespace detail

template <class T>
void write(ajson_string_stream& out, const T& value) {
    detail::write_value(out, detail::type_of<T>(), &value);
}

}  // namespace ajson
