// What goes wrong on demand, as a client sees it.
#include <fmt/format.h>
#include <gmock/gmock.h>

#include <chrono>

#include "tests/support/devicesimclient.h"
#include "tests/support/processguard.h"

namespace {

using namespace lcdtest;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;
using devicesim::Device;
using testing::HasSubstr;

constexpr const char* kSwap = "/zelto/v1/screen/global/swap";
constexpr const char* kEffect = "/zelto/v1/screen/global/switch-effect";

class Faults : public testing::Test {
protected:
    // What a reply's status and body are; "<cut>" follows a body that is no whole one.
    std::string reply() {
        std::string text;
        const auto head = [&](const httplib::Response& start) { return text = fmt::format("{} ", start.status), true; };
        const auto more = [&](const char* data, std::size_t size) { return text.append(data, size), true; };
        const httplib::Headers headers{{"Authorization", "Bearer " + DeviceClient(device_).token}};
        return httplib::Client(device_.url()).Get(kSwap, headers, head, more) ? text : text + "<cut>";
    }
    bool answers() const { return bool(httplib::Client(device_.url()).Get(kSwap)); }
    void add(const json& rule) { device_.control("POST", "/sim/faults", rule.dump()); }
    void push(const char* id) {
        device_.control("POST", "/sim/report", json{{"id", id}, {"body", {{"n", 1}}}, {"token", ""}}.dump());
    }
    void clear() { device_.control("DELETE", "/sim/faults"); }
    // Which of some requests are struck, "x", and which aren't.
    static std::string pattern(Device& device, std::vector<json> rules, int count = 8) {
        for (json& rule : rules) {
            rule.emplace("kind", "code");
        }
        device.control("POST", "/sim/faults", json(rules).dump());
        DeviceClient client(device, false);
        std::string text;
        for (int number = 0; number < count; ++number) {
            client.send(number % 4 < 2 ? "GET" : "PUT", number % 2 == 0 ? kSwap : kEffect);
            text += client.status == 200 ? 'x' : '.';
        }
        device.control("DELETE", "/sim/faults");
        return text;
    }

    Device device_{{.heartbeat = 1h}};
};

TEST_F(Faults, OfRepliesShowAtTheClient) {
    const std::string good = R"(200 {"code":0,"message":"","data":{"enable":1}})";
    const struct {
        const char* rule;
        std::string shows;
        std::chrono::milliseconds least{};
    } cases[] = {
        {R"({"kind":"delay","ms":60,"jitterMs":9})", good, 60ms},
        {R"({"kind":"drip","bytesPerSecond":999})", good, 60ms},
        {R"({"kind":"status","status":503})", R"(503 {"code":503,"message":"a fault was asked for","data":null})"},
        {R"({"kind":"status","status":500,"body":[1]})", "500 [1]"},
        {R"({"kind":"code","code":7,"message":"m"})", R"(200 {"code":7,"message":"m","data":null})"},
        {R"({"kind":"truncate","bytes":9})", "200 {\"code\":0<cut>"},
        {R"({"kind":"truncate","bytes":9,"quiet":true})", "200 {\"code\":0"},
        {R"({"kind":"wrongType","pointer":"/data/enable"})", R"(200 {"code":0,"data":{"enable":[]},"message":""})"},
        {R"({"kind":"deep","levels":3})", R"(200 {"code":0,"message":"","data":[[[]]]})"},
        {R"({"kind":"expire"})",
         R"(401 {"code":401,"message":"the token is missing or no longer valid, log in","data":null})"},
    };
    for (const auto& [rule, shows, least] : cases) {
        json striking = json::parse(rule);
        striking["path"] = "/*swap";
        add(striking);
        const auto start = Clock::now();
        EXPECT_EQ(reply(), shows) << rule;
        EXPECT_GE(Clock::now() - start, least) << rule;
        clear();
    }
    add({{"kind", "refuse"}, {"ms", 3'600'000}});
    EXPECT_FALSE(answers());
    clear();
    EXPECT_TRUE(answers());
    add({{"kind", "refuse"}, {"ms", 20}});
    EXPECT_TRUE(eventually([this] { return answers(); }));
}

TEST_F(Faults, OfReportsShowInTheStream) {
    ReportReader reader(device_, DeviceClient(device_).token);
    for (const char* fault :
         {R"({"kind":"gap","numbers":5})", R"({"kind":"late","reports":2})", R"({"kind":"duplicate","times":2})",
          R"({"kind":"drop"})", R"({"kind":"wrongType","pointer":"/n"})"}) {
        json rule = json::parse(fault);
        rule.update({{"path", "1"}, {"count", 1}});
        add(rule);
        push("1"), push("1"), push("1");
        clear();
    }
    std::string seen;
    for (const Event& event : reader.events(16)) {
        seen += fmt::format("{}{} ", event.number, event.body == R"({"n":1})" ? "" : event.body);
    }
    EXPECT_EQ(seen, R"(6 7 8 10 11 9 12 12 12 13 14 16 17 18{"n":[]} 19 20 )");
}

TEST_F(Faults, KeepToTheirLimitsInEveryRunAlike) {
    const std::pair<std::vector<json>, const char*> cases[] = {
        {{json::object()}, "xxxxxxxx"},
        {{{{"path", kSwap}}}, "x.x.x.x."},
        {{{{"path", "/*/sw*-ef?ect"}}}, ".x.x.x.x"},
        {{{{"path", "/zelto/v1/node"}}}, "........"},
        {{{{"verb", "PUT"}}}, "..xx..xx"},
        {{{{"count", 3}}}, "xxx....."},
        {{{{"after", 2}, {"count", 2}, {"path", kSwap}}}, "....x.x."},
        {{{{"probability", 0}}}, "........"},
        {{{{"count", 1}}, {{"path", kEffect}, {"after", 3}}}, "x......x"},
    };
    for (const auto& [rules, struck] : cases) {
        EXPECT_EQ(pattern(device_, rules), struck) << json(rules);
    }
    const json often = {{"probability", 0.25}, {"random", 7}};
    const std::string first = pattern(device_, {often}, 400);
    Device other;
    EXPECT_EQ(pattern(other, {often}, 400), first);
    EXPECT_EQ(pattern(other, {{{"kind", "delay"}, {"ms", 0}, {"probability", 0.5}}, often}, 400), first)
        << "each rule draws for itself";
    EXPECT_NE(pattern(other, {{{"probability", 0.25}, {"random", 8}}}, 400), first);
    EXPECT_NEAR(static_cast<double>(std::count(first.begin(), first.end(), 'x')), 100, 40);
}

TEST_F(Faults, ARuleThatIsWrongIsRefusedWithAllOfItsList) {
    const std::pair<json, const char*> cases[] = {
        {{{"kind", "none"}}, "kind must be one of delay, "},
        {{{"kind", "delay"}}, "ms is missing"},
        {{{"kind", "delay"}, {"ms", -1}}, "ms must be a whole number from 0"},
        {{{"kind", "cut"}, {"probability", 2}}, "probability must be a number from 0 to 1"},
        {{{"kind", "cut"}, {"path", "zelto"}}, "path must begin with /"},
        {{{"kind", "cut"}, {"colour", 1}}, "cut has no field colour"},
        {{{"kind", "drop"}, {"path", "/zelto"}}, "report's number"},
        {{{"kind", "expire"}, {"count", 2}}, "needs a path"},
    };
    for (const auto& [rule, message] : cases) {
        const auto adding = [&, &wrong = rule] { add(json::array({{{"kind", "cut"}}, wrong})); };
        EXPECT_THAT(adding, testing::ThrowsMessage<std::runtime_error>(HasSubstr(message)));
    }
    EXPECT_EQ(device_.control("GET", "/sim/faults"), "[]");
}

}  // namespace
