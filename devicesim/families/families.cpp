#include "devicesim/families/families.h"

namespace devicesim {

std::vector<Row> allRows() {
    std::vector<Row> all;
    for (const auto family : {sessionRows, customRows, systemRows, screenRows, takeRows, layerRows, interfaceRows,
                              timingRows, nodeRows, subcardRows, backupRows, presetRows, assessRows, controlRows}) {
        const std::vector<Row> rows = family();
        all.insert(all.end(), rows.begin(), rows.end());
    }
    return all;
}

}  // namespace devicesim
