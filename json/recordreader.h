// Text straight into records, without a tree between.
#pragma once

#include "json/reader.h"
#include "json/reflection.h"

namespace ajson {

namespace detail {

/// Reads one value into a member of that type. Raises `exception`; the member then holds what was read so far.
void read_value(reader& in, const value_type& type, void* member);

/// Reads a text that is one record, vector or list. After a record or an empty container the token that
/// follows is looked at, after the bracket that closes a container nothing is.
void read_document(reader& in, const value_type& type, void* out);

}  // namespace detail

/// The entry points for one type.
template <class T>
struct json_impl {
    struct json_helper {
        static void read_(reader& in, T& out) { detail::read_value(in, detail::type_of<T>(), &out); }
    };
};

}  // namespace ajson
