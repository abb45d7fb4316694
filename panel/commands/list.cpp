#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "panel/commands.h"
#include "panel/output.h"

namespace panel {

using nlohmann::json;

namespace {

std::string deliveredText(const Kind& kind) { return kind.print ? kind.delivered : "never delivered"; }

std::string remarksOf(const Kind& kind) {
    std::string text = kind.remark;
    const auto add = [&text](const std::string& more) { text += (text.empty() ? "" : "; ") + more; };
    if (!kind.question.empty()) {
        add("asked with " + kind.question);
    }
    if (!kind.taken.empty()) {
        add("set by " + kind.taken);
    }
    return text;
}

std::string textOf(const Kind& kind) {
    std::string text = fmt::format("  {:<30}{:<38} {}", kind.name, deliveredText(kind), remarksOf(kind));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

json rowOf(const Component& component, const Kind& kind) {
    const auto orNull = [](const std::string& text) { return text.empty() ? json() : json(text); };
    return {{"component", component.name},  {"kind", kind.name},
            {"value", kind.value},          {"delivers", kind.print ? json(kind.delivered) : json()},
            {"set", orNull(kind.taken)},    {"key", orNull(kind.question.empty() ? component.key : kind.question)},
            {"remark", orNull(kind.remark)}};
}

}  // namespace

bool runList(const CommandOptions& options, const std::string& name) {
    Output out;
    const Component* const only = name.empty() ? nullptr : &componentNamed(name);
    for (const Component& component : components()) {
        if (only != nullptr && only != &component) {
            continue;
        }
        if (!options.json) {
            out.heading(component.name + (component.key.empty() ? "" : "  (get takes a key: " + component.key + ")"));
        }
        for (const Kind& kind : component.kinds) {
            out.line(options.json ? rowOf(component, kind).dump() : textOf(kind));
        }
    }
    return true;
}

}  // namespace panel
