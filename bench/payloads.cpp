#include "bench/payloads.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <random>

#include "bench/records.h"
#include "lcdprotocolimpl/core/codec.h"

namespace bench {

namespace {

constexpr int kLayers = 64;
constexpr int kInterfaces = 32;
constexpr int kLayersPerEntry = 8;  // few layers have a safe frame or a tally
constexpr float kFrames[] = {59.94F, 23.976F, 29.97F, 50.0F, 60.0F};
constexpr const char* kFrameTexts[] = {"59.94", "23.976", "29.97", "50.0", "60.0"};

struct Range {
    int least;
    int most;
    std::initializer_list<std::string_view> ends;  ///< of the names that it is for
};

/// What members hold on a device; the first row that fits counts.
const Range kRanges[] = {
    {1, 256, {"Id"}},
    {1, 64, {"id", "para"}},
    {0, 8, {"ype", "capacity", "Num", "mode", "Mode", "area", "aspectRatio"}},
    {0, 10000, {"Ratio"}},
    {0, 255, {"R", "G", "B"}},
    {0, 100, {"opacity", "volume", "feather", "Strength", "Adjust", "Clip", "Ramp", "ain", "spill", "shadow", "Ligh"}},
    {0, 100, {"threshold", "hWidth", "vWidth"}},
    {0, 3840, {"width", "height", "left", "right", "top", "buttom"}},
    {-480, 3840, {"x", "y"}},
    {0, 1, {""}},
};

/// Fills records as a device would: all members, and no two records alike.
class Filler {
public:
    template <class T>
    void fill(T& value, std::string_view name = "") {
        if constexpr (isRecord<T>) {
            forEachMember(value, [this](std::string_view each, auto& member) { fill(member, each); });
        } else if constexpr (isSequence<T>) {
            if (between(1, kLayersPerEntry) == 1) {
                fill(value.emplace_back(), name);
            }
        } else if constexpr (std::is_same_v<T, std::string>) {
            constexpr const char* kNames[] = {"Camera ", "Slides ", "Logo ", "Side picture ", "Speaker wide "};
            value = oneOf(kNames) + std::to_string(between(1, 64));
        } else if constexpr (std::is_same_v<T, float>) {
            value = oneOf(kFrames);
        } else {
            const auto fits = [name](const Range& each) {
                return std::ranges::any_of(each.ends, [name](auto end) { return name.ends_with(end); });
            };
            const Range& range = *std::ranges::find_if(kRanges, fits);
            value = between(range.least, range.most);
        }
    }

private:
    int between(int least, int most) {
        return least + static_cast<int>(random_() % static_cast<unsigned>(most - least + 1));
    }

    template <class T, std::size_t N>
    T oneOf(const T (&all)[N]) {
        return all[random_() % N];
    }

    std::mt19937 random_{1};
};

template <class T>
std::string textOf(const T& value) {
    std::string text;
    LCD::ProtocolImpl::encode(text, value);
    return text;
}

template <class Envelope>
void wrap(Envelope& envelope, int count) {
    envelope.code = 0;
    envelope.message = "success";
    envelope.data.count = envelope.data.totalCount = count;
    envelope.data.page = envelope.data.totalPage = 1;
}

/// The writer gives floats with all their digits; devices send them short.
std::string withShortFrames(std::string text) {
    for (std::size_t i = 0; i < std::size(kFrames); ++i) {
        const std::string full = "\"frame\":" + textOf(std::vector<float>{kFrames[i]}).substr(1);
        const std::string key = full.substr(0, full.size() - 1) + ",";
        for (std::size_t at = 0; (at = text.find(key, at)) != std::string::npos; ++at) {
            text.replace(at, key.size(), std::string("\"frame\":") + kFrameTexts[i] + ",");
        }
    }
    return text;
}

Payloads make() {
    Payloads made;
    Filler filler;
    wrap(made.page, kLayers);
    for (int i = 0; i < kLayers; ++i) {
        filler.fill(made.page.data.list.emplace_back());
    }
    wrap(made.interfaces, kInterfaces);
    for (int i = 0; i < kInterfaces; ++i) {
        filler.fill(made.interfaces.data.list.emplace_back());
    }
    made.report = {7, {1920, 1080, -16, 54}};
    made.pageText = textOf(made.page);
    made.pageSortedText = nlohmann::json::parse(made.pageText).dump();
    made.pagePrettyText = nlohmann::ordered_json::parse(made.pageText).dump(4);
    made.floatText = withShortFrames(textOf(made.interfaces));
    made.reportText = textOf(made.report);
    return made;
}

}  // namespace

const Payloads& payloads() {
    static const Payloads all = make();
    return all;
}

}  // namespace bench
