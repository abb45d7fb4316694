#include "devicesim/parameters.h"

#include <fmt/format.h>

#include <algorithm>

#include "devicesim/table.h"

namespace devicesim {

namespace {

std::string wanted(const Parameter& parameter) {
    switch (parameter.form) {
        case Parameter::Form::Whole:
            return fmt::format("a whole number from {} to {}", parameter.least, parameter.most);
        case Parameter::Form::Share:
            return "a number from 0 to 1";
        case Parameter::Form::Text:
            return "a text";
        case Parameter::Form::Choice:
            return fmt::format("one of {}", parameter.choices);
        case Parameter::Form::Pointer:
            return "\"any\" or a JSON pointer such as /data/list/0/name";
        case Parameter::Form::Flag:
            return "true or false";
        case Parameter::Form::Any:
            break;
    }
    return "any JSON";
}

bool isOneOf(const std::string& word, std::string_view choices) {
    return word.find(' ') == std::string::npos &&
           fmt::format(" {} ", choices).find(fmt::format(" {} ", word)) != std::string::npos;
}

bool isPointer(const std::string& text) {
    try {
        return !Place(text).empty();
    } catch (const json::exception&) {
        return false;
    }
}

bool fits(const json& value, const Parameter& parameter) {
    switch (parameter.form) {
        case Parameter::Form::Whole:
            return value.is_number_integer() && value >= parameter.least && value <= parameter.most;
        case Parameter::Form::Share:
            return value.is_number() && value >= 0 && value <= 1;
        case Parameter::Form::Text:
            return value.is_string();
        case Parameter::Form::Choice:
            return value.is_string() && isOneOf(value.get_ref<const std::string&>(), parameter.choices);
        case Parameter::Form::Pointer:
            return value.is_string() && (value == "any" || isPointer(value.get_ref<const std::string&>()));
        case Parameter::Form::Flag:
            return value.is_boolean();
        case Parameter::Form::Any:
            break;
    }
    return true;
}

void requireKnown(const json& form, std::string_view what, std::span<const Parameter> parameters) {
    for (const auto& item : form.items()) {
        if (std::ranges::find(parameters, item.key(), &Parameter::name) == parameters.end()) {
            std::string names;
            for (const Parameter& parameter : parameters) {
                names.append(names.empty() ? "" : ", ").append(parameter.name);
            }
            throw Refusal(Failure::Unknown, fmt::format("{} has no field {}: it has {}", what, item.key(), names));
        }
    }
}

}  // namespace

json completed(const json& form, std::string_view what, std::span<const Parameter> parameters) {
    if (!form.is_object()) {
        throw Refusal(Failure::WrongType, fmt::format("{} must be a JSON object with its fields", what));
    }
    requireKnown(form, what, parameters);
    json complete = form;
    for (const Parameter& parameter : parameters) {
        const std::string name(parameter.name);
        if (const auto found = form.find(name); found != form.end()) {
            if (!fits(*found, parameter)) {
                throw Refusal(Failure::WrongType, fmt::format("{} must be {}", name, wanted(parameter)));
            }
        } else if (parameter.otherwise == nullptr) {
            throw Refusal(Failure::Incomplete,
                          fmt::format("{} is missing: {} needs it, {}", name, what, wanted(parameter)));
        } else if (std::string_view(parameter.otherwise) != kOptional) {
            complete[name] = json::parse(parameter.otherwise);
        }
    }
    return complete;
}

}  // namespace devicesim
