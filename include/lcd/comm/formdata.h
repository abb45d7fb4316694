// A multipart/form-data body under construction.
#pragma once

#include <cstddef>

namespace LCD::Comm {

/// Made by `IHttpChannel::createFormData`. Used by one thread at a time.
class FormData {
public:
    virtual ~FormData() = default;

    /// Adds a text part. The last three arguments are null or zero.
    virtual void addField(const char* name, const char* value, const char* contentType, const char* fileName,
                          std::size_t valueSize) = 0;
    /// Adds a file part that is read from `path` when the body is made.
    virtual void addFile(const char* name, const char* path, const char* contentType) = 0;
    /// Renders the parts. False when a file can't be read; the body is then empty.
    virtual bool makeBody() = 0;
    /// The rendered body; valid until the next call of `makeBody`.
    virtual const char* bodyData() const = 0;
    virtual std::size_t bodySize() const = 0;
    /// The text that separates the parts, fixed for the object's life.
    virtual const char* boundary() const = 0;
};

}  // namespace LCD::Comm
