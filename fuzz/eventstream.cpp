#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

#include "fuzz/steps.h"
#include "fuzz/targets.h"
#include "platform/lcdcomm/eventparser.h"
#include "platform/lcdcomm/report.h"

namespace lcdfuzz {

namespace {

constexpr std::size_t kLargestEvent = 512;

struct Parsed {
    std::vector<lcdcomm::StreamEvent> events;
    std::string problem;
};

Parsed parse(std::string_view bytes, std::size_t piece) {
    Parsed result;
    lcdcomm::EventParser parser(kLargestEvent);
    lcdcomm::ReportOrder order;
    const LinearSteps steps(bytes.size() + 1);
    for (bool whole = true; whole && !bytes.empty(); bytes.remove_prefix(std::min(piece, bytes.size()))) {
        whole = parser.feed(
            bytes.substr(0, piece), [&](lcdcomm::StreamEvent event) { result.events.push_back(std::move(event)); },
            [&](std::string_view comment) { order.takeComment(comment); });
        require(whole == (parser.problem() == nullptr), "a broken stream has a reason");
    }
    if (!result.events.empty()) {
        steps.check();
    }
    result.problem = parser.problem() == nullptr ? "" : parser.problem();
    return result;
}

void checkReport(const lcdcomm::StreamEvent& event) {
    const auto report = lcdcomm::readReport(event);
    if (!report) {
        return;
    }
    require(!report->epoch.empty() && event.id == report->epoch + event.id.substr(report->epoch.size()),
            "the epoch is the start of the event's id");
    const std::string& data = event.data;
    require(report->body == (data.find('\n') == data.npos ? "" : data.substr(data.find('\n') + 1)),
            "all but the first line is the body");
}

}  // namespace

void eventstream(const std::string& bytes) {
    const Parsed whole = parse(bytes, bytes.size());
    for (const std::size_t piece : {std::size_t{1}, bytes.size() / 3 + 1}) {
        const Parsed pieces = parse(bytes, piece);
        require(pieces.problem == whole.problem && pieces.events.size() == whole.events.size(),
                "events don't depend on the pieces");
        for (std::size_t i = 0; i < whole.events.size(); ++i) {
            const auto& [event, id, data] = whole.events[i];
            require(pieces.events[i].event == event && pieces.events[i].id == id && pieces.events[i].data == data,
                    "an event doesn't depend on the pieces");
        }
    }
    for (const lcdcomm::StreamEvent& event : whole.events) {
        require(event.event.size() + event.id.size() + event.data.size() <= kLargestEvent, "events are bounded");
        checkReport(event);
    }
}

}  // namespace lcdfuzz
