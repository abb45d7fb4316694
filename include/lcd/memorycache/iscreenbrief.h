// The list of screens and the panel's choice among them.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

#include "lcdprotocolimpl/screen/screen.h"

namespace LCD::MemoryCache {

/// Mirror of the screens, and what the device doesn't store: the selected regular screen, the active screen, the
/// programme-edit status of each screen by work mode. Source: "/zelto/v1/screen/list-thumb"; report 0x50104 empties it.
class IScreenBrief {
public:
    enum class RequestCBType : std::int32_t {
        ActiveScreenTypeChanged = 1,  ///< `std::shared_ptr<int>`: the type of the active screen, -1 when there is none
        RegularScreenSelected = 2,    ///< `std::shared_ptr<int>`: the selected regular screen, -1 for none
        ActiveScreenSelected = 3,     ///< `std::shared_ptr<int>`: the active screen, -1 for none
        ActiveScreenPgmStatusChanged = 4,  ///< `std::shared_ptr<std::pair<int, int>>`: active screen and its status in
                                           ///< the node's current mode; delivered in the node's reload thread
        ActiveScreenInfoChanged =
            5,  ///< `std::shared_ptr<s_ScreenBrief>`: the active screen, default when there is none
    };

    /// The programme-edit status of a screen in a work mode.
    struct s_ScreenObjIdOnMode {
        int screenId = -1;
        ProtocolImpl::s_ScreenIdObj screenIdObj;
        int mode = -1;
        int status = -1;
    };

    virtual ~IScreenBrief() = default;

    /// Selects a regular screen; subscribers of `RegularScreenSelected` hear of a new one. Any thread.
    virtual void setSelectedRegularScreen(int screenId) = 0;
    /// -1 when none is selected. Any thread. Not from a callback of any component.
    virtual int selectedRegularScreenId() = 0;
    /// Stores a status; subscribers of kinds 4 and 5 hear of it once a screen is selected. Any thread.
    virtual void setActiveScreenPgmStatus(const s_ScreenObjIdOnMode& value) = 0;
    /// The status of a screen in a mode; -1 when none is known. Any thread. Not from a callback of any component.
    virtual int activeScreenPgmStatus(int screenId, int mode) = 0;
    /// Subscribes `name` to `type`. While the pages build themselves, before the first request; not synchronised. The
    /// first subscription of a name and type stays.
    virtual void registerRequestCallBack(const std::string& name, RequestCBType type,
                                         const std::function<void(std::any)>& callback) = 0;
    /// Asks for a delivery of `type` to the subscriber `name`, or to all for an empty name. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type) = 0;
    /// Asks for a delivery of `type` to `callback` alone. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type,
                                 const std::function<void(std::any)>& callback) = 0;
};

}  // namespace LCD::MemoryCache
