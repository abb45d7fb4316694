#include "devicesim/faults.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "devicesim/faultkinds.h"
#include "devicesim/table.h"

namespace devicesim {

namespace {

using Form = Parameter::Form;

constexpr std::size_t kMostRules = 256;
constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();

const Parameter kOfAllRules[] = {
    {"kind", Form::Text},
    {"path", Form::Text, "\"\""},
    {"verb", Form::Choice, kOptional, 0, 0, "GET POST PUT DELETE PATCH"},
    {"count", Form::Whole, kOptional, 1, kMost},
    {"after", Form::Whole, kOptional, 0, kMost},
    {"probability", Form::Share, kOptional},
    {"random", Form::Whole, "1", 0, kMost},
};

const FaultKind& kindOf(const json& given) {
    const auto kinds = faultKinds();
    const auto name = given.is_object() ? given.find("kind") : given.end();
    const auto found = name == given.end() || !name->is_string()
                           ? kinds.end()
                           : std::ranges::find(kinds, name->get_ref<const std::string&>(), &FaultKind::name);
    if (found == kinds.end()) {
        std::string names;
        for (const FaultKind& each : kinds) {
            names.append(names.empty() ? "" : ", ").append(each.name);
        }
        throw Refusal(Failure::Unknown, fmt::format("kind must be one of {}", names));
    }
    return *found;
}

json formOf(const json& given, const FaultKind& kind) {
    std::vector<Parameter> parameters(std::begin(kOfAllRules), std::end(kOfAllRules));
    parameters.insert(parameters.begin() + 1, kind.parameters.begin(), kind.parameters.end());
    return completed(given, kind.name, parameters);
}

// A pattern with a star or a question mark fits as a whole, one without as the beginning.
bool matches(std::string_view pattern, std::string_view text) {
    if (pattern.find_first_of("*?") == std::string_view::npos) {
        return text.starts_with(pattern);
    }
    std::size_t p = 0;
    std::size_t t = 0;
    std::size_t star = std::string_view::npos;  // the latest one, and what it has eaten
    std::size_t eaten = 0;
    while (t < text.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = p++;
            eaten = t;
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == text[t])) {
            ++p;
            ++t;
        } else if (star != std::string_view::npos) {
            p = star + 1;
            t = ++eaten;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

}  // namespace

FaultRule::FaultRule(const json& given)
    : kind(&kindOf(given)),
      form(formOf(given, *kind)),
      path(form["path"]),
      verb(form.value("verb", "")),
      after(form.value("after", std::uint64_t{0})),
      count(form.value("count", std::numeric_limits<std::uint64_t>::max())),
      probability(form.value("probability", 1.0)),
      random(form["random"].get<std::uint64_t>()) {
    if (kind->begin != nullptr && path.empty()) {
        for (const char* field : {"verb", "count", "after", "probability"}) {
            if (form.contains(field)) {
                throw Refusal(Failure::Incomplete,
                              fmt::format("{} needs a path: without one {} happens at once, once", field, kind->name));
            }
        }
        requests = reports = false;
        return;
    }
    const bool ofReplies = kind->reply != nullptr || kind->begin != nullptr;
    const bool ofReports = kind->report != nullptr || kind->begin != nullptr;
    const bool anything = path.empty() || path == "*";
    requests = ofReplies && (anything || path.front() == '/');
    reports = ofReports && verb.empty() && (anything || path.find_first_not_of("0123456789abcdef*?") == path.npos);
    if (!requests && !verb.empty()) {
        throw Refusal(Failure::WrongType, fmt::format("verb must go: {} is about reports here", kind->name));
    }
    if (!requests && !reports) {
        throw Refusal(Failure::WrongType, fmt::format("path must begin with {}{}{}", ofReplies ? "/" : "",
                                                      ofReplies && ofReports ? ", or " : "",
                                                      ofReports ? "be a report's number in hexadecimal, small letters, "
                                                                  "without 0x"
                                                                : ""));
    }
}

bool FaultRule::isAbout(const Request& request) const {
    return requests && (verb.empty() || verb == request.verb) && matches(path, request.path);
}

bool FaultRule::isAbout(std::string_view reportId) const { return reports && matches(path, reportId); }

bool FaultRule::strikes() {
    if (++passed <= after || fired >= count) {
        return false;
    }
    constexpr double kRange = 1ULL << 53;
    return probability >= 1 || static_cast<double>(random() >> 11) < probability * kRange;
}

json Faults::add(const json& given, Interior& device) {
    std::vector<FaultRule> fresh;
    if (given.is_array()) {
        for (const json& each : given) {
            try {
                fresh.emplace_back(each);
            } catch (const Refusal& refusal) {
                throw Refusal(refusal.failure, fmt::format("rule {}: {}", fresh.size() + 1, refusal.what()));
            }
        }
    } else {
        fresh.emplace_back(given);
    }
    if (rules_.size() + fresh.size() > kMostRules) {
        throw Refusal(Failure::Unknown, fmt::format("there can be {} rules at most: remove some", kMostRules));
    }
    json ids = json::array();
    for (FaultRule& rule : fresh) {
        rule.id = ++lastId_;
        ids.push_back(rule.id);
        rules_.push_back(std::move(rule));
        if (FaultRule& added = rules_.back(); !added.requests && !added.reports) {
            ++added.passed;
            begin(added, device);
        }
    }
    return ids;
}

void Faults::remove(std::optional<int> id, Interior& device) {
    if (id && find(*id) == nullptr) {
        throw Refusal(Failure::Unknown, fmt::format("id: there is no rule {}", *id));
    }
    for (FaultRule& rule : rules_) {
        if (!id || rule.id == *id) {
            end(rule, device);
        }
    }
    std::erase_if(rules_, [id](const FaultRule& rule) { return !id || rule.id == *id; });
}

json Faults::show() const {
    json all = json::array();
    for (const FaultRule& rule : rules_) {
        all.push_back(rule.form);
        all.back().update({{"id", rule.id}, {"passed", rule.passed}, {"fired", rule.fired}});
    }
    return all;
}

Faults::Struck Faults::meet(const Request& request, Interior& device) {
    Struck struck;
    for (FaultRule& rule : rules_) {
        if (!rule.isAbout(request) || !rule.strikes()) {
            continue;
        }
        if (rule.kind->begin != nullptr) {
            begin(rule, device);
        } else {
            struck.push_back(&rule);
        }
    }
    return struck;
}

bool Faults::prevented(const Struck& struck) {
    return std::ranges::any_of(struck, [](const FaultRule* rule) { return !rule->form.value("acts", true); });
}

void Faults::spoil(const Struck& struck, Reply& reply) {
    for (FaultRule* const rule : struck) {
        rule->fired += rule->kind->reply(*rule, reply) ? 1 : 0;
    }
}

void Faults::meet(Delivery& delivery, Interior& device) {
    if (rules_.empty()) {
        return;
    }
    const std::string id = fmt::format("{:x}", delivery.report.id);
    for (FaultRule& rule : rules_) {
        if (!rule.isAbout(id) || !rule.strikes()) {
            continue;
        }
        if (rule.kind->begin != nullptr) {
            begin(rule, device);
        } else {
            rule.fired += rule.kind->report(rule, delivery) ? 1 : 0;
        }
    }
}

void Faults::begin(FaultRule& rule, Interior& device) {
    if (rule.lasts) {
        return;
    }
    ++rule.fired;
    rule.kind->begin(device);
    if (rule.kind->end == nullptr) {
        return;
    }
    rule.lasts = true;
    if (const std::uint64_t ms = rule.number("ms"); ms > 0) {
        device.agenda.after(std::chrono::milliseconds(ms), [id = rule.id](Interior& later) {
            if (FaultRule* const ended = later.faults.find(id)) {
                later.faults.end(*ended, later);
            }
        });
    }
}

// What several rules have begun lasts until the last of them ends.
void Faults::end(FaultRule& rule, Interior& device) {
    if (!std::exchange(rule.lasts, false)) {
        return;
    }
    if (std::ranges::none_of(rules_,
                             [&rule](const FaultRule& other) { return other.lasts && other.kind == rule.kind; })) {
        rule.kind->end(device);
    }
}

FaultRule* Faults::find(int id) {
    const auto found = std::ranges::find(rules_, id, &FaultRule::id);
    return found == rules_.end() ? nullptr : &*found;
}

}  // namespace devicesim
