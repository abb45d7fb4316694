#pragma once

#include <any>
#include <string>

namespace LCD::MemoryCacheImpl {

/// The readable name of the type that `data` holds; "void" when it is empty.
std::string heldTypeName(const std::any& data);

}  // namespace LCD::MemoryCacheImpl
