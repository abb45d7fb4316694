// Login and the stream of reports.
#include "devicesim/actions.h"
#include "devicesim/families/families.h"

namespace devicesim {

namespace {

void login(Call& call) {
    const json& user = member(call.body, "username", json::value_t::string);
    const json& password = member(call.body, "password", json::value_t::string);
    const json& account = call.device.state.at("session");
    if (user != account.at("username") || password != account.at("password")) {
        throw Refusal(Failure::WrongLogin, "wrong user name or password");
    }
    call.answer({{"token", call.device.tokens.open()}});
}

void openStream(Call& call) {
    call.reply.stream = call.device.reports.open();
    if (!call.reply.stream) {
        call.reply = {.status = 503, .body = envelope(503, "too many streams are open", nullptr)};
    }
}

}  // namespace

std::vector<Row> sessionRows() {
    return {
        {"POST", kLoginPath, login},
        {"GET", "/zelto/v1/report/stream", openStream},
    };
}

}  // namespace devicesim
