// What can go wrong.
#pragma once

#include <span>
#include <string_view>
#include <vector>

#include "devicesim/faults.h"
#include "devicesim/parameters.h"

namespace devicesim {

/// One kind of fault. It can happen to replies, to reports, to the device as a whole.
struct FaultKind {
    // These change what passes; false if there was nothing that they could change.
    using OfReply = bool (*)(FaultRule& rule, Reply& reply);
    using OfReport = bool (*)(FaultRule& rule, Delivery& delivery);
    using OfDevice = void (*)(Interior& device);

    std::string_view name;
    std::vector<Parameter> parameters = {};  // beside those of all rules
    OfReply reply = nullptr;
    OfReport report = nullptr;
    OfDevice begin = nullptr;
    OfDevice end = nullptr;  // only of what lasts
};

std::span<const FaultKind> faultKinds();

}  // namespace devicesim
