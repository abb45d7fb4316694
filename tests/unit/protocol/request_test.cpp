#include "lcdprotocolimpl/core/request.h"

#include <gtest/gtest.h>

#include <functional>

#include "lcdprotocolimpl/core/report.h"
#include "lcdprotocolimpl/screen/switchsettingsrequests.h"
#include "lcdprotocolimpl/system/authrequests.h"
#include "tests/support/fakes.h"
#include "tests/support/logcapture.h"

namespace {

using namespace LCD::ProtocolImpl;
using LCD::Comm::IHttpChannel;
using lcdtest::FakeChannel;
using lcdtest::LogCapture;

constexpr const char* kPath = "/zelto/v1/thing";

struct Item {
    int id = -1;
    AJSON(id)
};
struct ItemPage {
    int count = -1;
    int page = -1;
    int totalCount = -1;
    int totalPage = -1;
    std::vector<Item> list;
    AJSON(count, page, totalCount, totalPage, list)
};

using Function = std::function<bool(IHttpChannel*)>;

Item received;

Request request(IHttpChannel* channel) {
    return Request(channel, kPath, KT::LogSite{"thingrequests.cpp", "setThing", 7});
}

bool plainGet(IHttpChannel* channel) { return request(channel).get(received); }
bool plainPut(IHttpChannel* channel) { return request(channel).put(Item{1}); }

/// What the channel was given: an empty query, header or body is told from none.
std::string textOf(const FakeChannel::Call& call) {
    std::string text = call.verb + " " + call.path + (call.hasQuery ? "?" : "");
    for (const auto& [key, value] : call.query) {
        text += key + "=" + value + "&";
    }
    return text + (call.hasHeaders ? " headers" : "") + (call.hasBody ? " " + call.body : "") + " #" +
           std::to_string(call.tag);
}

TEST(Request, whatGoesOut) {
    const std::pair<Function, const char*> cases[] = {
        {plainGet, "GET /zelto/v1/thing? #0"},
        {[](auto* c) { return request(c).withoutQuery().get(received); }, "GET /zelto/v1/thing #0"},
        {[](auto* c) { return request(c).query("nodeId", "1").query("b", "x").get(received); },
         "GET /zelto/v1/thing?nodeId=1&b=x& #0"},
        {[](auto* c) { return request(c).header("h", "v").getWith(Item{1}); },
         R"(GET /zelto/v1/thing? headers {"id":1} #0)"},
        {plainPut, R"(PUT /zelto/v1/thing {"id":1} #0)"},
        {[](auto* c) { return request(c).withEmptyQuery().put(Item{1}); }, R"(PUT /zelto/v1/thing? {"id":1} #0)"},
        {[](auto* c) { return request(c).sequence(5).post(Item{1}); }, R"(POST /zelto/v1/thing {"id":1} #5)"},
        {[](auto* c) { return request(c).remove(std::vector<Item>{{1}}); }, R"(DELETE /zelto/v1/thing [{"id":1}] #0)"},
        {[](auto* c) { return request(c).put(Item{1}, received); }, R"(PUT /zelto/v1/thing {"id":1} #0)"},
    };
    for (const auto& [call, expected] : cases) {
        FakeChannel channel;
        channel.answer(kPath, R"({"code":0,"message":"","data":{"id":3}})");
        received = {};
        EXPECT_TRUE(call(&channel)) << expected;
        ASSERT_EQ(channel.calls().size(), 1u);
        EXPECT_EQ(textOf(channel.calls()[0]), expected);
    }
    EXPECT_EQ(received.id, 3);
}

TEST(Request, whatComesBack) {
    FakeChannel channel;
    channel.answer(kPath, R"({"code":0,"data":{"count":2,"list":[{"id":1},{"id":2}]}})");
    std::list<Item> items;
    struct ListPage {
        std::list<Item> list;
        AJSON(list)
    };
    EXPECT_TRUE(request(&channel).getList<ListPage>(items));
    EXPECT_EQ(items.size(), 2u);
    std::vector<Item> same{Item{9}};
    EXPECT_TRUE(request(&channel).getList<ItemPage>(same));
    ASSERT_EQ(same.size(), 2u) << "a list replaces what was there";

    channel.answer(kPath, R"({"code":12,"message":"no","data":{"id":4}})");
    received.id = 1;
    int code = -1;
    EXPECT_FALSE(request(&channel).codeInto(code).get(received));
    EXPECT_EQ(received.id, 1) << "a refused request leaves its result";
    EXPECT_EQ(code, 12);
    channel.answer(kPath, "{");
    code = -1;
    EXPECT_FALSE(request(&channel).codeInto(code).get(received));
    EXPECT_EQ(code, -1);

    request(&channel).timeout(60000).put(Item{1});
    EXPECT_EQ(channel.timeoutMs(), 60000);
}

TEST(Request, eachFailureHasItsWords) {
    const FakeChannel::Answer silence{false, 0, ""};
    const FakeChannel::Answer notFound{true, 404, ""};
    const FakeChannel::Answer refused{true, 200, R"({"code":7,"message":"busy"})"};
    const FakeChannel::Answer garbage{true, 200, R"({"code":0,"message":"m","data":)"};
    struct Case {
        Function call;
        FakeChannel::Answer answer;
        bool result;
        const char* line;  // null: nothing is logged
    };
    const auto sends = [](SendLog text) { return [text](auto* c) { return request(c).logSend(text).get(received); }; };
    const auto replies = [](ReplyLog text) {
        return [text](auto* c) { return request(c).logReply(text, "42").put(Item{1}); };
    };
    const Function byCode = [](auto* c) { return request(c).judgeByCodeAlone().put(Item{1}); };
    const Function withQuery = [](auto* c) { return request(c).query("a", "1").query("b", "2").get(received); };
    const Case cases[] = {
        {plainGet, silence, false, nullptr},
        {plainGet, notFound, false, nullptr},
        {plainPut, silence, false, " sendSetRequest failed:false,0"},
        {plainPut, notFound, false, " sendSetRequest failed:true,404"},
        {sends(SendLog::sendGet), notFound, false, " sendGetRequest failed:true,404"},
        {sends(SendLog::resultCode), notFound, false, "result:true,status code:404"},
        {sends(SendLog::retCode), silence, false, "ret:false,status code:0"},
        {sends(SendLog::failToGet), notFound, false, "Fail to get data: 404 ret:true"},
        {sends(SendLog::failToSend), silence, false, "Fail to send data: 0 ret:false"},
        {plainGet, refused, false,
         "url:http://device/zelto/v1/thing decode has failed. Error Message=, code=7, message=busy"},
        {withQuery, garbage, false,
         "url:http://device/zelto/v1/thing?a=1&b=2 decode has failed. Error Message=error at line :0 col :31 msg:read "
         "object must start with {!, code=0, message=m"},
        {plainPut, refused, false,
         "url:http://device/zelto/v1/thing decode has failed. Response Code=7 Reponse Message=busy"},
        {plainPut, garbage, false, "url:http://device/zelto/v1/thing decode has failed. Response Code=0"},
        {replies(ReplyLog::plain), refused, false,
         "url:http://device/zelto/v1/thing has failed. Response Code=7 Reponse Message=busy"},
        {replies(ReplyLog::interfaceId), refused, false, "thing interfaceId=42 has failed. Response Code=7 Reponse"},
        {replies(ReplyLog::layerId), refused, false, "thing layerId=42 has failed. Response Code=7 Reponse"},
        {byCode, notFound, false, nullptr},
        {byCode, garbage, true, nullptr},
        {byCode, refused, false, "decode has failed. Response Code=7"},
    };
    int index = 0;
    for (const Case& each : cases) {
        FakeChannel channel;
        channel.answer(kPath, each.answer);
        LogCapture log;
        EXPECT_EQ(each.call(&channel), each.result) << index;
        EXPECT_EQ(log.lines().size(), each.line == nullptr ? 0u : 1u) << index;
        if (each.line != nullptr) {
            EXPECT_TRUE(log.contains(each.line)) << index << ": " << log.lines()[0];
            EXPECT_TRUE(log.contains(" \n //thing.h:setThing()#7.")) << log.lines()[0];
            EXPECT_TRUE(log.contains("warning: ")) << log.lines()[0];
        }
        ++index;
    }
}

TEST(Request, loginLogsEveryFailureAndGivesNoToken) {
    const std::string path = "/zelto/v1/system/auth/login";
    FakeChannel channel;
    channel.answer(path, R"({"code":0,"message":"","data":{"token":"t1"}})");
    EXPECT_EQ(login(&channel, "admin", "pw"), "t1");
    EXPECT_EQ(channel.calls()[0].body, R"({"username":"admin","password":"pw"})");
    for (const FakeChannel::Answer& answer :
         {FakeChannel::Answer{false, 0, ""}, FakeChannel::Answer{true, 500, ""},
          FakeChannel::Answer{true, 200, R"({"code":3,"message":"wrong","data":{"token":"t2"}})"}}) {
        LogCapture log;
        channel.answer(path, answer);
        EXPECT_EQ(login(&channel, "admin", "pw"), "");
        ASSERT_EQ(log.lines().size(), 1u);
        EXPECT_TRUE(log.contains("url:http://device/zelto/v1/system/auth/login loginName=admin has failed. "));
        EXPECT_TRUE(log.contains(" \n //auth.h:login()#"));
        EXPECT_FALSE(log.contains("pw"));
    }
}

TEST(Report, aBodyThatCantBeReadIsLoggedWhole) {
    LogCapture log;
    s_SwitchMode out;
    EXPECT_TRUE(decodeScreenSwitchMode(R"({"enable":1})", out));
    EXPECT_EQ(out.enable, 1);
    EXPECT_FALSE(decodeScreenSwitchMode("{]", out));
    EXPECT_TRUE(
        log.contains("warning: decode screen switch mode has failed. Error Code={] \nerror at line :0 col :2 "
                     "msg:object key must be string \n //switchsettings.h:decodeScreenSwitchMode()#"));
}

}  // namespace
