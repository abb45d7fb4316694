// The list of inputs and outputs and the panel's choice among them.
#pragma once

#include <any>
#include <cstdint>
#include <functional>
#include <string>

namespace LCD::MemoryCache {

/// Mirror of all connectors, and the panel's selected input and output, which the device doesn't store. Source:
/// "/zelto/v1/interface/list-thumb", report 0x61102; 0x50104 and 0x50404 empty it.
class IInterfaceBrief {
public:
    enum class RequestCBType : std::int32_t {
        InterfacesInput = 1,        ///< `std::shared_ptr<std::list<s_InterfaceBrief>>`; nothing when there is no input
        SubCardModeChanged = 2,     ///< `std::shared_ptr<int>`: the selected input
        InputSelectedChanged = 3,   ///< `std::shared_ptr<int>`: the selected input
        OutputSelectedChanged = 4,  ///< `std::shared_ptr<int>`: the selected output
        InterfacesOutput = 5,       ///< `std::shared_ptr<std::list<s_InterfaceBrief>>`; nothing when there is no output
        MOSAICChanged = 6,          ///< `std::shared_ptr<int>`: the selected input
        ExpandSourceChanged = 7,    ///< `std::shared_ptr<std::list<s_InterfaceBrief>>`: expansion sources, also none
        GeneralChanged = 8,         ///< never delivered
    };

    virtual ~IInterfaceBrief() = default;

    /// Selects an input; subscribers of `InputSelectedChanged` hear of a new one. Any thread.
    virtual void setSelectedInput(int interfaceId) = 0;
    /// -1 for none. Any thread. Not from a callback of any component.
    virtual int selectedInputId() const = 0;
    virtual void setSelectedOutput(int interfaceId) = 0;
    virtual int selectedOutputId() const = 0;
    /// Subscribes `name` to `type`. While the pages build themselves, before the first request; not synchronised. The
    /// first subscription of a name and type stays.
    virtual void registerRequestCallBack(const std::string& name, RequestCBType type,
                                         const std::function<void(std::any)>& callback) = 0;
    /// Asks for a delivery of `type` to the subscriber `name`, or to all for an empty name. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type) = 0;
    /// Asks for a delivery of `type` to `callback` alone. Any thread.
    virtual void asyncGetSubData(const std::string& name, RequestCBType type,
                                 const std::function<void(const std::any&)>& callback) = 0;
};

}  // namespace LCD::MemoryCache
