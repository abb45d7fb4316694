#pragma once

#include <string>

#include "lcd/memorycache/isystemdetail.h"
#include "lcdmemorycacheimpl/engine/objectsamplingimpl.h"

namespace LCD::MemoryCacheImpl {

/// Sets nothing: every change ends in the warning that its type has no handler.
class SystemDetailSetter : public ObjectSamplingImpl<int, MemoryCache::ISystemDetail::RequestCBType> {
public:
    std::string objectTypeName() const override { return "system detail"; }
    void registerSetSubDataCallback() override {}
};

}  // namespace LCD::MemoryCacheImpl
