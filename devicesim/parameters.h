// The form of a request to the control plane: which fields it has and what they may be.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <span>
#include <string>
#include <string_view>

namespace devicesim {

using nlohmann::json;

struct Parameter {
    enum class Form { Whole, Share, Text, Choice, Pointer, Flag, Any };

    std::string_view name;
    Form form;
    const char* otherwise = nullptr;  // JSON that stands for a missing one; null: must be there
    std::int64_t least = 0;           // of a whole number
    std::int64_t most = 0;
    std::string_view choices = {};  // with a blank between them
};

/// For `otherwise`: the field may be missing, and nothing stands for it.
inline constexpr const char* kOptional = "";

/// `form` with what stands for the missing fields. Throws a Refusal that names the field and what it must be;
/// `what` has these fields: "a drag".
json completed(const json& form, std::string_view what, std::span<const Parameter> parameters);

}  // namespace devicesim
