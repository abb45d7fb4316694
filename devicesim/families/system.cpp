// What concerns the device as a whole.
#include <array>

#include "devicesim/actions.h"
#include "devicesim/families/families.h"

namespace devicesim {

namespace {

struct Follow {
    int type;
    const char* member;
};
constexpr std::array kFollows = {Follow{1, "ftbAudioFollow"}, Follow{2, "freezeAudioFollow"}};

// {"type":1,"enable":1}
json followRecord(const Row&, const json& state, const Place& place) {
    int type = 0;
    for (const Follow& follow : kFollows) {
        type = place.back() == follow.member ? follow.type : type;
    }
    return {{"type", type}, {"enable", state.at(place)}};
}

void setAudioFollow(Call& call) {
    const json& type = member(call.body, "type", json::value_t::number_integer);
    const json& enable = member(call.body, "enable", json::value_t::number_integer);
    for (const Follow& follow : kFollows) {
        if (type == follow.type) {
            const Place place = Place("/system/detail") / follow.member;
            call.device.state.at(place) = enable;
            call.reportChange({place});
            call.answer(nullptr);
            return;
        }
    }
    throw Refusal(Failure::Unknown, "type must be 1 (fade to black) or 2 (freeze)");
}

}  // namespace

std::vector<Row> systemRows() {
    return {
        {"GET", "/zelto/v1/system/detail", show, "/system/detail"},
        {"POST", "/zelto/v1/screen/global/audio-follow", setAudioFollow, "/system/detail/*", "", 0x7115e, followRecord},
    };
}

}  // namespace devicesim
