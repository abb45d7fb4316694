#include <fmt/format.h>

#include <nlohmann/json.hpp>

#include "panel/commands.h"
#include "panel/output.h"

namespace panel {

using nlohmann::json;

namespace {

[[noreturn]] void refuse(const Component& component, const Kind& kind, const std::string& why) {
    throw std::runtime_error(fmt::format("{} {}: {}", component.name, kind.name, why));
}

std::string whyNothing(const Kind& kind, const Sent& fetch) {
    const std::string remark = kind.remark.empty() ? "" : " (" + kind.remark + ")";
    return fetch.name.empty() ? "nothing was asked of the device and nothing was delivered" + remark
           : fetch.good       ? fmt::format("{} was answered, but nothing was delivered{}", fetch.name, remark)
                              : fmt::format("nothing was delivered{}; {}: {}", remark, fetch.name, fetch.how);
}

}  // namespace

bool runGet(const CommandOptions& options, const std::string& componentName, const std::string& kindName,
            const std::string& keyText) {
    const Component& component = componentNamed(componentName);
    const Kind& kind = kindNamed(component, kindName);
    const std::any key = keyOf(component, kind, keyText);
    if (!kind.print) {
        refuse(component, kind, "is never delivered: " + kind.remark);
    }
    if (kind.onlyTold) {
        refuse(
            component, kind,
            fmt::format("tells of events alone, {}: see them with \"lcdpanel watch {}\"", kind.remark, component.name));
    }
    Session session(options.session);
    session.start();
    session.login(options.timeout);
    const auto one = session.ask(component, kind, key, Clock::now() + options.timeout);
    if (!one) {
        refuse(component, kind, whyNothing(kind, session.lastFetch()));
    }
    const Sent& fetch = one->origin.fetch;
    const bool fetched = fetch.name.empty() || fetch.good;
    Output out;
    const json payload = json::parse(one->text);
    if (options.json) {
        out.line(json{{"component", component.name},
                      {"kind", kind.name},
                      {"payload", payload},
                      {"request", fetch.name},
                      {"answer", fetch.how},
                      {"fetched", fetched}}
                     .dump());
    } else {
        out.line(payload.dump(2));
    }
    if (!fetched) {
        refuse(component, kind,
               fmt::format("the fetch failed, what is shown is what the mirror held; {}: {}", fetch.name, fetch.how));
    }
    return true;
}

}  // namespace panel
