// Other JSON libraries, each by its fastest usual way straight into our records.
#pragma once

#include <rapidjson/document.h>
#include <rapidjson/writer.h>
#include <simdjson.h>

#include <boost/json.hpp>
#include <nlohmann/json.hpp>

#include "bench/records.h"
#include "lcdprotocolimpl/core/codec.h"

namespace bench {

/// The JSON layer itself.
class Ours {
public:
    static constexpr const char* kName = "ours";
    explicit Ours(const std::string& text) : text_(text) {}
    template <class T>
    void decode(T& out) {
        if (!LCD::ProtocolImpl::decode(text_, out, error_)) {
            throw std::runtime_error(error_);
        }
    }

private:
    const std::string& text_;
    std::string error_;
};

/// On-demand, with its parser and its padded input kept, as its guide advises. It can look each member up behind the
/// last one, which is best for keys in list order, or ask each key for its member.
template <bool listOrder>
class SimdJsonIn {
public:
    static constexpr const char* kName = listOrder ? "simdjson" : "simdjson, any order";
    explicit SimdJsonIn(const std::string& text) : text_(text) {}
    template <class T>
    void decode(T& out) {
        simdjson::ondemand::document document = parser_.iterate(text_);
        readMembers(document.get_object().value(), out);
    }

private:
    template <class T>
    static void readMembers(simdjson::ondemand::object object, T& out) {
        if constexpr (listOrder) {
            forEachMember(
                out, [&object](std::string_view name, auto& member) { read(object.find_field(name).value(), member); });
        } else {
            for (auto field : object) {
                const simdjson::ondemand::raw_json_string key = field.key().value();
                bool found = false;
                forEachMember(out, [&](std::string_view name, auto& member) {
                    if (!found && key.unsafe_is_equal(name)) {
                        found = true;
                        read(field.value().value(), member);
                    }
                });
            }
        }
    }
    template <class T>
    static void read(simdjson::ondemand::value value, T& out) {
        if constexpr (isRecord<T>) {
            readMembers(value.get_object().value(), out);
        } else if constexpr (isSequence<T>) {
            for (auto each : value.get_array()) {
                read(each.value(), out.emplace_back());
            }
        } else if constexpr (std::is_same_v<T, std::string>) {
            out = value.get_string().value();
        } else if constexpr (std::is_same_v<T, float>) {
            out = static_cast<float>(value.get_double().value());
        } else {
            out = static_cast<T>(value.get_int64().value());
        }
    }

    simdjson::padded_string text_;
    simdjson::ondemand::parser parser_;
};
using SimdJson = SimdJsonIn<true>;
using SimdJsonAnyOrder = SimdJsonIn<false>;

class Nlohmann {
public:
    static constexpr const char* kName = "nlohmann";
    explicit Nlohmann(const std::string& text) : text_(text) {}
    template <class T>
    void decode(T& out) {
        read(nlohmann::json::parse(text_), out);
    }

private:
    template <class T>
    static void read(const nlohmann::json& value, T& out) {
        if constexpr (isRecord<T>) {
            forEachMember(out, [&value](std::string_view name, auto& member) { read(value.at(name), member); });
        } else if constexpr (isSequence<T>) {
            for (const auto& each : value) {
                read(each, out.emplace_back());
            }
        } else {
            value.get_to(out);
        }
    }

    const std::string& text_;
};

class BoostJson {
public:
    static constexpr const char* kName = "boost";
    explicit BoostJson(const std::string& text) : text_(text) {}
    template <class T>
    void decode(T& out) {
        boost::json::monotonic_resource memory(buffer_, sizeof buffer_);
        read(boost::json::parse(text_, &memory), out);
    }

private:
    template <class T>
    static void read(const boost::json::value& value, T& out) {
        if constexpr (isRecord<T>) {
            forEachMember(out, [&object = value.as_object()](std::string_view name, auto& member) {
                read(object.at(name), member);
            });
        } else if constexpr (isSequence<T>) {
            for (const auto& each : value.as_array()) {
                read(each, out.emplace_back());
            }
        } else if constexpr (std::is_same_v<T, std::string>) {
            out = value.as_string();
        } else {
            out = value.to_number<T>();
        }
    }

    const std::string& text_;
    unsigned char buffer_[1 << 20];
};

class RapidJson {
public:
    static constexpr const char* kName = "rapidjson";
    explicit RapidJson(const std::string& text) : text_(text) {}
    template <class T>
    void decode(T& out) {
        rapidjson::Document document;
        document.Parse(text_.data(), text_.size());
        read(document, out);
    }

    /// The writer with its buffer kept.
    template <class T>
    static void encode(rapidjson::StringBuffer& out, const T& value) {
        out.Clear();
        rapidjson::Writer<rapidjson::StringBuffer> writer(out);
        write(writer, value);
    }

private:
    template <class T>
    static void read(const rapidjson::Value& value, T& out) {
        if constexpr (isRecord<T>) {
            forEachMember(out, [&value](std::string_view name, auto& member) {
                read(value.FindMember(rapidjson::Value(rapidjson::StringRef(name.data(), name.size())))->value, member);
            });
        } else if constexpr (isSequence<T>) {
            for (const auto& each : value.GetArray()) {
                read(each, out.emplace_back());
            }
        } else if constexpr (std::is_same_v<T, std::string>) {
            out.assign(value.GetString(), value.GetStringLength());
        } else {
            out = value.Get<T>();
        }
    }
    template <class Writer, class T>
    static void write(Writer& writer, const T& value) {
        if constexpr (isRecord<T>) {
            writer.StartObject();
            forEachMember(value, [&writer](std::string_view name, const auto& member) {
                writer.Key(name.data(), static_cast<rapidjson::SizeType>(name.size()));
                write(writer, member);
            });
            writer.EndObject();
        } else if constexpr (isSequence<T>) {
            writer.StartArray();
            for (const auto& each : value) {
                write(writer, each);
            }
            writer.EndArray();
        } else if constexpr (std::is_same_v<T, std::string>) {
            writer.String(value.data(), static_cast<rapidjson::SizeType>(value.size()));
        } else {
            writer.Int(value);
        }
    }

    const std::string& text_;
};

}  // namespace bench
