#include "devicesim/faultkinds.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <limits>
#include <string>

#include "devicesim/table.h"

namespace devicesim {

namespace {

using Form = Parameter::Form;

constexpr std::int64_t kHour = 3'600'000;  // in milliseconds
constexpr std::int64_t kTera = 1LL << 40;

void setBody(Reply& reply, std::string text) {
    reply.stream = nullptr;
    reply.pieces.clear();
    reply.body = std::move(text);
}

void setPieces(Reply& reply, std::vector<Piece> pieces) {
    setBody(reply, "");
    reply.pieces = std::move(pieces);
}

// Replies.

bool delay(FaultRule& rule, Reply& reply) {
    reply.delay += std::chrono::milliseconds(rule.number("ms") + rule.draw(rule.number("jitterMs") + 1));
    return true;
}

bool drip(FaultRule& rule, Reply& reply) {
    reply.bytesPerSecond = rule.number("bytesPerSecond");
    return true;
}

bool status(FaultRule& rule, Reply& reply) {
    const auto body = rule.form.find("body");
    reply.status = static_cast<int>(rule.number("status"));
    const bool bodiless = reply.status == 204 || reply.status == 304;
    setBody(reply, body == rule.form.end() ? bodiless ? "" : envelope(reply.status, "a fault was asked for", nullptr)
                   : body->is_string() ? body->get<std::string>()
                                           : body->dump());
    return true;
}

bool code(FaultRule& rule, Reply& reply) {
    reply.status = 200;
    setBody(reply, envelope(rule.form.at("code").get<int>(), rule.form.at("message").get<std::string>(), nullptr));
    return true;
}

bool cut(FaultRule&, Reply& reply) { return reply.lost = true; }

bool truncate(FaultRule& rule, Reply& reply) {
    if (reply.stream) {
        return false;
    }
    reply.end = rule.number("bytes");
    reply.endTold = rule.form.at("quiet");
    return true;
}

bool garbage(FaultRule& rule, Reply& reply) {
    std::string text(rule.number("bytes"), '\0');
    std::ranges::generate(text, [&rule] { return static_cast<char>(rule.draw(256)); });
    setBody(reply, std::move(text));
    return true;
}

const std::string kDataBegins = R"({"code":0,"message":"","data":)";

bool oversized(FaultRule& rule, Reply& reply) {
    setPieces(reply, {{kDataBegins + '"'}, {"x", rule.number("bytes")}, {"\"}"}});
    return true;
}

bool endless(FaultRule&, Reply& reply) {
    setPieces(reply, {{kDataBegins + '"'}, {"x", kForever}});
    return true;
}

bool deep(FaultRule& rule, Reply& reply) {
    setPieces(reply, {{kDataBegins}, {"[", rule.number("levels")}, {"]", rule.number("levels")}, {"}"}});
    return true;
}

// Values within values.

std::uint64_t valuesWithin(const json& value) {
    std::uint64_t count = 0;
    if (value.is_structured()) {
        for (const json& child : value) {
            count += 1 + valuesWithin(child);
        }
    }
    return count;
}

json* valueWithin(json& value, std::uint64_t& before) {
    if (value.is_structured()) {
        for (json& child : value) {
            if (before-- == 0) {
                return &child;
            }
            if (json* const found = valueWithin(child, before)) {
                return found;
            }
        }
    }
    return nullptr;
}

json* chosenValue(FaultRule& rule, json& document) {
    const std::string& pointer = rule.form.at("pointer").get_ref<const std::string&>();
    if (pointer != "any") {
        const Place place(pointer);
        return document.contains(place) ? &document.at(place) : nullptr;
    }
    const std::uint64_t count = valuesWithin(document);
    std::uint64_t before = count == 0 ? 0 : rule.draw(count);
    return valueWithin(document, before);
}

bool changeType(FaultRule& rule, std::string& text) {
    json document;
    try {
        document = parsed(text);
    } catch (const Refusal&) {
        return false;
    }
    json* const value = chosenValue(rule, document);
    if (value == nullptr) {
        return false;
    }
    json others = {nullptr, true, 7, "text", json::array(), json::object()};
    std::erase_if(others.get_ref<json::array_t&>(),
                  [value](const json& other) { return std::string_view(other.type_name()) == value->type_name(); });
    *value = others.at(rule.draw(others.size()));
    text = document.dump();
    return true;
}

bool wrongTypeInReply(FaultRule& rule, Reply& reply) {
    return !reply.stream && reply.pieces.empty() && changeType(rule, reply.body);
}

// Reports.

bool wrongTypeInReport(FaultRule& rule, Delivery& delivery) { return changeType(rule, delivery.report.body); }

bool truncateReport(FaultRule& rule, Delivery& delivery) {
    delivery.spoils.emplace_back(
        [most = rule.number("bytes")](std::string& event) { event.resize(std::min<std::size_t>(event.size(), most)); });
    delivery.cut = !rule.form.at("quiet");
    return true;
}

bool drop(FaultRule&, Delivery& delivery) {
    delivery.copies = 0;
    return true;
}

bool duplicate(FaultRule& rule, Delivery& delivery) {
    delivery.copies += static_cast<int>(rule.number("times"));
    return true;
}

bool late(FaultRule& rule, Delivery& delivery) {
    delivery.wait = rule.number("reports");
    return true;
}

bool gap(FaultRule& rule, Delivery& delivery) {
    delivery.skip += rule.number("numbers");
    return true;
}

// An event is a line each for report, number and source, then the body's lines and an empty one.
enum class EventPart { Report, Number, Source, Body, End };

struct Way {
    const char* name;
    EventPart part;
    const char* instead;
};
constexpr std::array kWays = {
    Way{"noReport", EventPart::Report, ""}, Way{"badReport", EventPart::Report, "event: report\n"},
    Way{"noNumber", EventPart::Number, ""}, Way{"badNumber", EventPart::Number, "id: one-two\n"},
    Way{"noSource", EventPart::Source, ""}, Way{"badSource", EventPart::Source, "data: {\"token\":\n"},
    Way{"noBody", EventPart::Body, ""},     Way{"badBody", EventPart::Body, "data: [{\"layerId\":1,\n"},
    Way{"noEnd", EventPart::End, ""},       Way{"strangeLine", EventPart::End, "retry: \xff\n:\n\n"},
};
constexpr const char* kWayNames =
    "any noReport badReport noNumber badNumber noSource badSource noBody badBody noEnd strangeLine";

void breakEvent(std::string& event, const Way& way) {
    std::size_t begin = 0;
    for (int line = 0; line < std::min(static_cast<int>(way.part), static_cast<int>(EventPart::Body)); ++line) {
        begin = event.find('\n', begin) + 1;
    }
    std::size_t end = event.size();
    if (way.part < EventPart::Body) {
        end = event.find('\n', begin) + 1;
    } else if (way.part == EventPart::Body) {
        --end;
    } else {
        begin = end - 1;
    }
    event.replace(begin, end - begin, way.instead);
}

bool malformed(FaultRule& rule, Delivery& delivery) {
    const std::string& name = rule.form.at("way").get_ref<const std::string&>();
    const Way& way = name == "any" ? kWays.at(rule.draw(kWays.size())) : *std::ranges::find(kWays, name, &Way::name);
    delivery.spoils.emplace_back([&way](std::string& event) { breakEvent(event, way); });
    return true;
}

// The device as a whole.

void expire(Interior& device) { device.tokens.expire(); }
void restart(Interior& device) { device.restart(); }
void cutStreams(Interior& device) { device.reports.cutStreams(); }
void fallSilent(Interior& device) { device.reports.mute(true); }
void speakAgain(Interior& device) { device.reports.mute(false); }
void refuse(Interior& device) { device.refuseConnections(true); }
void acceptAgain(Interior& device) { device.refuseConnections(false); }

constexpr Parameter kActs{"acts", Form::Flag, "false"};
constexpr Parameter kBytes{"bytes", Form::Whole, nullptr, 0, kTera};
constexpr Parameter kQuiet{"quiet", Form::Flag, "false"};

}  // namespace

std::span<const FaultKind> faultKinds() {
    static const std::vector<FaultKind> kKinds = {
        {"delay", {{"ms", Form::Whole, nullptr, 0, kHour}, {"jitterMs", Form::Whole, "0", 0, kHour}}, delay},
        {"drip", {{"bytesPerSecond", Form::Whole, nullptr, 1, kTera}}, drip},
        {"status", {{"status", Form::Whole, nullptr, 200, 599}, {"body", Form::Any, kOptional}, kActs}, status},
        {"code",
         {{"code", Form::Whole, "1", 1, std::numeric_limits<int>::max()},
          {"message", Form::Text, "\"a fault was asked for\""},
          kActs},
         code},
        {"cut", {{"acts", Form::Flag, "true"}}, cut},
        {"truncate", {kBytes, kQuiet}, truncate, truncateReport},
        {"garbage", {{"bytes", Form::Whole, "256", 0, 1 << 20}}, garbage},
        {"oversized", {kBytes}, oversized},
        {"endless", {}, endless},
        {"deep", {{"levels", Form::Whole, nullptr, 1, kTera}}, deep},
        {"wrongType", {{"pointer", Form::Pointer, "\"any\""}}, wrongTypeInReply, wrongTypeInReport},
        {"drop", {}, nullptr, drop},
        {"duplicate", {{"times", Form::Whole, "1", 1, 100}}, nullptr, duplicate},
        {"late", {{"reports", Form::Whole, "1", 1, 1000}}, nullptr, late},
        {"gap", {{"numbers", Form::Whole, "1", 1, 1 << 20}}, nullptr, gap},
        {"malformed", {{"way", Form::Choice, "\"any\"", 0, 0, kWayNames}}, nullptr, malformed},
        {"cutStream", {}, nullptr, nullptr, cutStreams},
        {"expire", {}, nullptr, nullptr, expire},
        {"restart", {}, nullptr, nullptr, restart},
        {"silent", {{"ms", Form::Whole, "0", 0, kHour}}, nullptr, nullptr, fallSilent, speakAgain},
        {"refuse", {{"ms", Form::Whole, nullptr, 1, kHour}}, nullptr, nullptr, refuse, acceptAgain},
    };
    return kKinds;
}

}  // namespace devicesim
