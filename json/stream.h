// The buffer that the writer fills.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <new>

namespace ajson {

/// Grows in steps of 1024 bytes, to what is needed.
class ajson_string_stream {
public:
    ajson_string_stream() : data_(static_cast<char*>(std::malloc(kStep))), capacity_(kStep) {
        if (data_ == nullptr) {
            throw std::bad_alloc();
        }
    }
    ~ajson_string_stream() { std::free(data_); }
    ajson_string_stream(const ajson_string_stream&) = delete;
    ajson_string_stream& operator=(const ajson_string_stream&) = delete;

    /// Room for `count` bytes at the end; `commit` tells how far it was used.
    char* reserve(std::size_t count) {
        if (capacity_ - size_ < count) {
            grow(size_ + count);
        }
        return data_ + size_;
    }
    void commit(const char* end) { size_ = static_cast<std::size_t>(end - data_); }

    void write(const char* bytes, std::size_t count) {
        std::memcpy(reserve(count), bytes, count);
        size_ += count;
    }
    void put(char byte) { write(&byte, 1); }

    const char* data() const { return data_; }
    std::size_t size() const { return size_; }
    std::size_t capacity() const { return capacity_; }

private:
    static constexpr std::size_t kStep = 1024;

    void grow(std::size_t needed) {
        const std::size_t rounded = (needed + (kStep - 1)) & ~(kStep - 1);
        void* const bigger = std::realloc(data_, rounded);
        if (bigger == nullptr) {
            throw std::bad_alloc();
        }
        data_ = static_cast<char*>(bigger);
        capacity_ = rounded;
    }

    char* data_;
    std::size_t size_ = 0;
    std::size_t capacity_;
};

}  // namespace ajson
