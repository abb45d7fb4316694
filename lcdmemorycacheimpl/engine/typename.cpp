#include "lcdmemorycacheimpl/engine/typename.h"

#include <cxxabi.h>

#include <cstdlib>
#include <memory>

namespace LCD::MemoryCacheImpl {

std::string heldTypeName(const std::any& data) {
    const char* const mangled = data.type().name();
    int status = 0;
    const std::unique_ptr<char, decltype(&std::free)> name(abi::__cxa_demangle(mangled, nullptr, nullptr, &status),
                                                           &std::free);
    return status == 0 ? name.get() : mangled;
}

}  // namespace LCD::MemoryCacheImpl
