// Reads a host's configuration from a TOML file.
#include <fmt/format.h>
#include <toml++/toml.h>

#include <cerrno>
#include <fstream>
#include <limits>
#include <map>
#include <set>
#include <sstream>

#include "platform/ktp/hostconfig.h"
#include "platform/ktp/hosterror.h"
#include "platform/ktp/knownsettings.h"

namespace ktp {

namespace {

constexpr std::size_t kLargestFile = 1 << 20;

std::string readText(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(file, error);
    if (!stream.is_open() || error) {
        throw HostError(fmt::format("{}: there is no such file that can be read", file.string()));
    }
    std::string text(std::min<std::uintmax_t>(size, kLargestFile) + 1, '\0');
    stream.read(text.data(), static_cast<std::streamsize>(text.size()));
    text.resize(static_cast<std::size_t>(stream.gcount()));
    if (text.size() > kLargestFile) {
        throw HostError(fmt::format("{}: larger than {} bytes", file.string(), kLargestFile));
    }
    return text;
}

// One node of the file with its full key, for errors.
struct Entry {
    std::string key;
    const toml::node& node;
};

class Reader {
public:
    explicit Reader(const std::filesystem::path& file) : file_(file) { config_.place = file.string() + ": "; }

    HostConfig read() {
        attempt([this] { readRoot(parse()); });
        return std::move(config_);
    }
    const std::vector<HostError>& mistakes() const { return mistakes_; }

private:
    // A mistake ends the reading of the smallest thing around it.
    template <class Read>
    void attempt(Read read) {
        try {
            read();
        } catch (const HostError& error) {
            mistakes_.push_back(error);
        }
    }

    void readRoot(const toml::table& root) {
        if (const toml::node* folder = root.get("plugin-folder")) {
            attempt([&] { pluginFolder_ = text({"plugin-folder", *folder}); });
        }
        // The table is sorted by name; a person reads a file from its top.
        std::map<std::pair<std::uint32_t, std::string>, const toml::node*> inOrder;
        for (const auto& [key, node] : root) {
            inOrder[{node.source().begin.line, std::string(key.str())}] = &node;
        }
        for (const auto& [place, node] : inOrder) {
            attempt([&, &name = place.second, &value = *node] { readTop({name, value}); });
        }
    }

    toml::table parse() const {
        try {
            return toml::parse(readText(file_), file_.string());
        } catch (const toml::parse_error& error) {
            throw HostError(fmt::format("{}:{}: {}", file_.string(), error.source().begin.line, error.description()));
        }
    }

    std::string place(const toml::node& node) const {
        return fmt::format("{}:{}: ", file_.string(), node.source().begin.line);
    }

    [[noreturn]] void refuse(const Entry& entry, std::string_view problem) const {
        std::ostringstream value;
        if (entry.node.is_string()) {
            value << " \"" << entry.node.as_string()->get() << '"';
        } else if (entry.node.is_value()) {
            entry.node.visit([&value](const auto& concrete) { value << ' ' << concrete; });
        }
        throw HostError(fmt::format("{}{}:{} {}", place(entry.node), entry.key, value.str(), problem));
    }

    [[noreturn]] void refuseUnknown(const Entry& entry, const std::set<std::string>& known) const {
        throw HostError(
            fmt::format("{}unknown key \"{}\", known here: {}", place(entry.node), entry.key, fmt::join(known, ", ")));
    }

    std::string text(const Entry& entry) const {
        if (!entry.node.is_string()) {
            refuse(entry, "is not a text, put it in quotes");
        }
        return entry.node.as_string()->get();
    }

    std::int64_t number(const Entry& entry) const {
        if (!entry.node.is_integer()) {
            refuse(entry, "is not a whole number");
        }
        return entry.node.as_integer()->get();
    }

    const toml::table& table(const Entry& entry) const {
        if (!entry.node.is_table()) {
            refuse(entry, fmt::format("is not a section, write [{}]", entry.key));
        }
        return *entry.node.as_table();
    }

    const toml::array& array(const Entry& entry, std::string_view form) const {
        if (!entry.node.is_array()) {
            refuse(entry, fmt::format("is not a list, write {}", form));
        }
        return *entry.node.as_array();
    }

    void readTop(const Entry& entry) {
        if (entry.key == "plugins") {
            for (const toml::node& node : array(entry, "plugins = [\"NAME\", ...]")) {
                attempt([&] { readPlugin({entry.key, node}); });
            }
        } else if (entry.key == "component") {
            for (const toml::node& node : array(entry, "[[component]]")) {
                attempt([&] { readComponent({entry.key, node}); });
            }
        } else if (entry.key != "plugin-folder" && !readTable(entry)) {
            readSection(entry);
        }
    }

    // A bare name stands for a file in the plug-in folder, anything else is a path from the file's folder.
    void readPlugin(const Entry& entry) {
        const std::string name = text(entry);
        if (name.empty()) {
            refuse(entry, "is empty, give a plug-in's name or path");
        }
        const bool isPath = name.find('/') != std::string::npos;
        const std::filesystem::path path(isPath ? name : fmt::format("{}/lib{}.so", pluginFolder_, name));
        config_.plugins.push_back({(file_.parent_path() / path).lexically_normal(), place(entry.node)});
    }

    void readComponent(const Entry& entry) {
        ComponentConfig component;
        component.place = place(entry.node);
        for (const auto& [key, node] : table(entry)) {
            const Entry member{fmt::format("component.{}", key.str()), node};
            if (key == "name") {
                component.name = text(member);
            } else if (key == "lookup") {
                component.lookup = text(member);
            } else {
                refuseUnknown(member, {"name", "lookup"});
            }
        }
        config_.components.push_back(std::move(component));
    }

    bool readTable(const Entry& entry) {
        for (const TableSetting* setting : kTableSettings) {
            if (entry.key == setting->key) {
                std::map<int, int> values;
                for (const auto& [key, node] : table(entry)) {
                    const Entry member{fmt::format("{}.{}", entry.key, key.str()), node};
                    values[keyNumber(member, std::string(key.str()))] = inInt(member, number(member));
                }
                config_.settings.set(*setting, std::move(values));
                return true;
            }
        }
        return false;
    }

    int keyNumber(const Entry& entry, const std::string& key) const {
        std::size_t used = 0;
        std::int64_t value = 0;
        try {
            value = std::stoll(key, &used);
        } catch (const std::exception&) {
            used = 0;
        }
        if (used == 0 || std::to_string(value) != key) {
            refuse(entry, "has a key that is not a whole number");
        }
        return inInt(entry, value);
    }

    int inInt(const Entry& entry, std::int64_t value) const {
        if (value < std::numeric_limits<int>::min() || value > std::numeric_limits<int>::max()) {
            refuse(entry, "is out of range, use 32 bits");
        }
        return static_cast<int>(value);
    }

    void readSection(const Entry& entry) {
        const std::string prefix = entry.key + ".";
        std::set<std::string> known;
        const auto collect = [&](const auto& settings) {
            for (const auto* setting : settings) {
                if (std::string_view(setting->key).substr(0, prefix.size()) == prefix) {
                    known.insert(setting->key + prefix.size());
                }
            }
        };
        collect(kNumberSettings);
        collect(kTextSettings);
        if (known.empty()) {
            refuseUnknown(entry, topKeys());
        }
        for (const auto& [key, node] : table(entry)) {
            const Entry member{prefix + std::string(key.str()), node};
            attempt([&] {
                if (!readSetting(member)) {
                    refuseUnknown(member, known);
                }
            });
        }
    }

    bool readSetting(const Entry& entry) {
        for (const NumberSetting* setting : kNumberSettings) {
            if (entry.key == setting->key) {
                config_.settings.set(*setting, number(entry), place(entry.node));
                return true;
            }
        }
        for (const TextSetting* setting : kTextSettings) {
            if (entry.key == setting->key) {
                config_.settings.set(*setting, text(entry), place(entry.node));
                return true;
            }
        }
        return false;
    }

    static std::set<std::string> topKeys() {
        std::set<std::string> keys = {"plugin-folder", "plugins", "component"};
        const auto collect = [&keys](const auto& settings) {
            for (const auto* setting : settings) {
                const std::string_view key = setting->key;
                keys.emplace(key.substr(0, key.find('.')));
            }
        };
        collect(kNumberSettings);
        collect(kTextSettings);
        collect(kTableSettings);
        return keys;
    }

    const std::filesystem::path file_;
    std::string pluginFolder_ = ".";
    HostConfig config_;
    std::vector<HostError> mistakes_;
};

}  // namespace

HostConfig HostConfig::fromFile(const std::filesystem::path& file) {
    Reader reader(file);
    HostConfig config = reader.read();
    if (!reader.mistakes().empty()) {
        throw HostError(reader.mistakes().front());
    }
    config.check();
    return config;
}

std::vector<std::string> HostConfig::mistakesIn(const std::filesystem::path& file) {
    Reader reader(file);
    const HostConfig config = reader.read();
    std::vector<std::string> texts;
    for (const HostError& each : reader.mistakes()) {
        texts.emplace_back(each.what());
    }
    if (texts.empty()) {
        try {
            config.check();
        } catch (const HostError& error) {
            texts.emplace_back(error.what());
        }
    }
    return texts;
}

}  // namespace ktp
