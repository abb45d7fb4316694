// What the device says about itself.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

namespace LCD::MemoryCache {

/// Mirror of the maker's data: names, company, logo, version. Source: "/zelto/v1/custom", report 0xe0100.
/// Deliveries come in the reload thread; see docs/threads.md for what a subscriber may do there.
class IAboutUs {
public:
    enum class RequestCBType : std::int32_t {
        AboutUsChanged = 1,     ///< `std::shared_ptr<s_AboutUs>`, the mirror
        LanguageChanged = 2,    ///< `std::shared_ptr<std::string>`, the current language
        CustomModeChanged = 3,  ///< `std::shared_ptr<int>`, the field `mode` of the mirror
    };

    virtual ~IAboutUs() = default;

    /// Subscribes `name` to `type`. While the pages build themselves, before the first request; not
    /// synchronised. The first subscription of a name and type stays.
    virtual void registerRequestCallBack(const std::string& name, RequestCBType type,
                                         const std::function<void(std::any)>& callback) = 0;
    /// Asks for a delivery of `type` to the subscriber `name`, or to all for an empty name. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type) = 0;
    /// Asks for a delivery of `type` to `callback` alone. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type,
                                 const std::function<void(std::any)>& callback) = 0;
    /// Tells the language of the user interface; subscribers of `LanguageChanged` hear of a new one. Any thread.
    virtual void setLanguageChanged(const std::string& language) = 0;
};

}  // namespace LCD::MemoryCache
