// The maker's own dress of the device.
#include "devicesim/actions.h"
#include "devicesim/families/families.h"

namespace devicesim {

std::vector<Row> customRows() {
    return {
        {"GET", "/zelto/v1/custom", show, "/custom", "", 0xe0100},
    };
}

}  // namespace devicesim
