#include "lcdprotocolimpl/core/codec.h"

namespace LCD::ProtocolImpl {

bool decodeValue(const std::string& text, const ajson::detail::value_type& type, void* out, std::string& error) {
    try {
        ajson::reader in(text);
        ajson::detail::read_document(in, type, out);
        return true;
    } catch (const std::exception& failure) {
        error = failure.what();
        return false;
    }
}

}  // namespace LCD::ProtocolImpl
