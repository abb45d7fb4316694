// Inputs, outputs and expansion sources, as the connectors of the cards offer them.
#include "devicesim/actions.h"
#include "devicesim/families/families.h"

namespace devicesim {

std::vector<Row> interfaceRows() {
    return {
        {"GET", "/zelto/v1/interface/list-thumb", showPage, "/interface/list", "", 0, recordAt,
         "interfaceId state interfaceIdObj auxiliaryInfo general actualThumbTiming"},
        {"PUT", "/zelto/v1/interface/general", mergeEach, "/interface/list/*/general", "interfaceId", 0x61102},
    };
}

}  // namespace devicesim
