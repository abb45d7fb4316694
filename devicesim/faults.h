// Faults on demand: rules that say what goes wrong, where and how often.
#pragma once

#include <cstddef>
#include <cstdint>
#include <nlohmann/json.hpp>
#include <optional>
#include <random>
#include <string>
#include <string_view>
#include <vector>

namespace devicesim {

using nlohmann::json;

struct Delivery;
struct FaultKind;
struct Interior;
struct Reply;
struct Request;

/// Which of the things that pass a rule is about, and how many of those it lets go.
struct FaultRule {
    /// Throws a Refusal that names the field and what it must be.
    explicit FaultRule(const json& given);

    bool isAbout(const Request& request) const;
    bool isAbout(std::string_view reportId) const;
    /// Counts one that the rule is about; whether the fault is to happen to it.
    bool strikes();
    /// A number below `bound`, the same in each run.
    std::uint64_t draw(std::uint64_t bound) { return random() % bound; }
    std::uint64_t number(const char* name) const { return form.at(name).get<std::uint64_t>(); }

    const FaultKind* kind;
    json form;  // as it was given, with what stands for the missing fields
    std::string path;
    std::string verb;
    bool requests = true;
    bool reports = true;
    std::uint64_t after;
    std::uint64_t count;
    double probability;
    std::mt19937_64 random;  // of its own: what other rules do changes nothing here

    int id = 0;
    std::uint64_t passed = 0;
    std::uint64_t fired = 0;
    bool lasts = false;  // what it began is still in force
};

/// The rules in force. Not synchronised: belongs to the owner of the state, so that rules meet requests and
/// reports in the order in which these are served.
class Faults {
public:
    using Struck = std::vector<FaultRule*>;  // in the order of the rules

    /// One rule or a list of them, all or none. The ids of the new ones. Throws a Refusal.
    json add(const json& given, Interior& device);
    /// Removes that rule, or all. Throws a Refusal if there is none of that id.
    void remove(std::optional<int> id, Interior& device);
    json show() const;

    /// Before the request is served. What befalls the device as a whole happens here.
    Struck meet(const Request& request, Interior& device);
    /// Whether a request that is struck isn't carried out at all.
    static bool prevented(const Struck& struck);
    /// Spoils the reply on its way out.
    static void spoil(const Struck& struck, Reply& reply);

    /// A report on its way out.
    void meet(Delivery& delivery, Interior& device);

private:
    static void begin(FaultRule& rule, Interior& device);
    void end(FaultRule& rule, Interior& device);
    FaultRule* find(int id);

    std::vector<FaultRule> rules_;
    int lastId_ = 0;
};

}  // namespace devicesim
