// A multipart/form-data body.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "lcd/comm/formdata.h"

namespace lcdcomm {

class MultipartForm final : public LCD::Comm::FormData {
public:
    /// A form of more than `largest` bytes can't be made.
    explicit MultipartForm(std::size_t largest);

    /// `valueSize` 0 stands for a value that ends at its NUL.
    void addField(const char* name, const char* value, const char* contentType, const char* fileName,
                  std::size_t valueSize) override;
    void addFile(const char* name, const char* path, const char* contentType) override;
    bool makeBody() override;
    const char* bodyData() const override { return body_.data(); }
    std::size_t bodySize() const override { return body_.size(); }
    const char* boundary() const override { return boundary_.c_str(); }

private:
    struct Part {
        std::string header;
        std::string content;  // the value, or the path of the file that holds it
        bool isFile;
    };

    void addPart(const char* name, const char* fileName, const char* contentType, std::string content, bool isFile);
    bool render();
    bool appendPart(const Part& part);
    bool append(std::string_view bytes);
    bool appendFile(const std::string& path);

    const std::size_t largest_;
    const std::string boundary_;
    std::vector<Part> parts_;
    std::string body_;
};

}  // namespace lcdcomm
