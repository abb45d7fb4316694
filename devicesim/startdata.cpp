#include "devicesim/startdata.h"

#include <fmt/format.h>

#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>
#include <system_error>

#include "devicesim/devicesim.h"

namespace devicesim {

namespace fs = std::filesystem;
using nlohmann::json;

namespace {

json loadFile(const fs::path& path) {
    std::ifstream file(path);
    if (!file) {
        throw std::runtime_error(fmt::format("cannot read {}", path.string()));
    }
    try {
        return json::parse(file);
    } catch (const json::exception& error) {
        // Its text begins with the library's own name of the error, in brackets.
        const std::string_view text = error.what();
        const std::size_t bracket = text.find("] ");
        throw std::runtime_error(fmt::format("{} is not JSON: {}", path.string(),
                                             bracket == std::string_view::npos ? text : text.substr(bracket + 2)));
    }
}

// Records that leave out what is as in `fallback` get it from there.
void completeList(json& list, const json& fallback) {
    for (json& record : list) {
        json whole = fallback;
        whole.merge_patch(record);
        record = std::move(whole);
    }
}

// A file with a record named "default" means it for all its lists: its own, and those of the other modes.
void complete(json& file) {
    if (!file.is_object() || !file.contains("default")) {
        return;
    }
    const json fallback = file["default"];
    for (const auto& item : file.items()) {
        if (item.value().is_array()) {
            completeList(item.value(), fallback);
        } else if (item.key() == "modes") {
            for (json& list : item.value()) {
                completeList(list, fallback);
            }
        }
    }
}

}  // namespace

json loadStartData(const std::string& folder) {
    std::error_code error;
    json data = json::object();
    for (fs::directory_iterator entry(folder, error), end; !error && entry != end; entry.increment(error)) {
        if (entry->path().extension() == ".json") {
            json& file = data[entry->path().stem().string()] = loadFile(entry->path());
            complete(file);
        }
    }
    if (error) {
        throw std::runtime_error(fmt::format("cannot read the data folder {}: {}", folder, error.message()));
    }
    return data;
}

std::string defaultDataFolder() {
    std::error_code error;
    const fs::path program = fs::read_symlink("/proc/self/exe", error);
    return (program.parent_path().parent_path() / "share" / "lcddevicesim").string();
}

}  // namespace devicesim
