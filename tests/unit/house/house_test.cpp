// What holds for the tree and for what is built from it.
#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

#include "ktp/plugin.h"

namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

const fs::path kSources = LCD_TEST_SOURCES;
const fs::path kPlugins = LCD_TEST_PLUGINS;

/// The room that an include names, or nothing for a library's header. `include/` is three rooms.
std::string roomOf(const std::string& path) {
    static const std::set<std::string> kRooms{"json",     "ini",       "lcdprotocolimpl", "lcdmemorycacheimpl",
                                              "platform", "devicesim", "panel",           "ktp",
                                              "kt",       "lcd",       "tests",           "bench",
                                              "fuzz"};
    const std::string first = path.substr(0, path.find('/'));
    return kRooms.count(first) == 0 ? std::string() : first;
}

/// "FILE includes X" for each include of a room that `allowed` doesn't name.
std::vector<std::string> brokenArrows(const fs::path& folder, const std::set<std::string>& allowed) {
    constexpr std::string_view kInclude = "#include \"";
    std::vector<std::string> broken;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".h" && entry.path().extension() != ".cpp") {
            continue;
        }
        std::ifstream file(entry.path());
        const std::string text{std::istreambuf_iterator<char>(file), {}};
        for (std::size_t at = text.find(kInclude); at != text.npos; at = text.find(kInclude, at)) {
            at += kInclude.size();
            const std::string target = text.substr(at, text.find('"', at) - at);
            const std::string room = roomOf(target);
            const bool precisely = allowed.count(target.substr(0, target.rfind('/'))) != 0;
            if (allowed.count(room) == 0 && !precisely) {
                broken.push_back(fs::relative(entry.path(), kSources).string() + " includes " + target);
            }
        }
    }
    return broken;
}

TEST(House, includesFollowTheArrows) {
    const std::map<std::string, std::set<std::string>> arrows{
        {"json", {"json"}},
        {"kt", {"kt"}},
        {"include/ktp", {"ktp"}},
        {"include/kt", {"kt"}},
        {"include/lcd", {"lcd", "lcdprotocolimpl"}},
        {"lcdprotocolimpl", {"lcdprotocolimpl", "json", "kt", "lcd/comm"}},
        {"lcdmemorycacheimpl", {"lcdmemorycacheimpl", "lcdprotocolimpl", "ini", "lcd", "kt", "ktp"}},
        {"platform/ktp", {"platform/ktp", "ktp", "kt"}},
        {"platform/ktspdlog", {"kt"}},
        {"platform/lcdconfig", {"platform/ktp", "ktp", "kt", "lcd"}},
        {"platform/lcdcomm", {"platform/lcdcomm", "platform/ktp", "ktp", "kt", "lcd", "json"}},
        {"devicesim", {"devicesim"}},
        {"panel",
         {"panel", "platform/ktp", "platform/lcdcomm", "ktp", "kt", "lcd", "lcdprotocolimpl", "json", "devicesim"}},
    };
    std::vector<std::string> broken;
    for (const auto& [folder, allowed] : arrows) {
        for (std::string& each : brokenArrows(kSources / folder, allowed)) {
            broken.push_back(std::move(each));
        }
    }
    EXPECT_THAT(broken, ElementsAre());
}

std::string outputOf(const std::string& command) {
    const std::unique_ptr<FILE, int (*)(FILE*)> pipe(popen(command.c_str(), "r"), &pclose);
    std::string text;
    std::array<char, 4096> buffer;
    while (std::fgets(buffer.data(), buffer.size(), pipe.get()) != nullptr) {
        text += buffer.data();
    }
    return text;
}

TEST(House, pluginsExportTheirEntryPointsAlone) {
    for (const std::string name : {"lcdmemorycacheimpl", "lcdcomm", "lcdconfig"}) {
        const std::string library = (kPlugins / ("lib" + name + ".so")).string();
        EXPECT_EQ(outputOf("nm -D --defined-only " + library + " | cut -d' ' -f3 | LC_ALL=C sort"),
                  name + "_ktp_componentInfoTable\npluginfo\npluginit\n");
        EXPECT_EQ(outputOf("readelf -d " + library + " | grep -E 'RPATH|RUNPATH'"), "") << name;
        EXPECT_THAT(outputOf("readelf -d " + library + " | grep SONAME"), testing::HasSubstr("[lib" + name + ".so]"));
    }
}

TEST(House, thePluginsTableNeedsNoPlatform) {
    const std::unique_ptr<void, int (*)(void*)> library(
        dlopen((kPlugins / "liblcdmemorycacheimpl.so").c_str(), RTLD_NOW | RTLD_LOCAL), &dlclose);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto* info = reinterpret_cast<decltype(&pluginfo)>(dlsym(library.get(), "pluginfo"))();
    EXPECT_STREQ(info->recordVersion, "0.1");
    EXPECT_STREQ(info->name, "lcdmemorycacheimpl");
    EXPECT_STREQ(info->version, "1.0.0");
    EXPECT_STREQ(info->metadata, "{\"end\":0 }");
    EXPECT_EQ(static_cast<const void*>(info->components),
              dlsym(library.get(), "lcdmemorycacheimpl_ktp_componentInfoTable"));
    std::vector<std::string> deaf;
    for (const ktp::ComponentInfo* const* row = info->components; *row != nullptr; ++row) {
        const ktp::ComponentInfo& component = **row;
        EXPECT_STREQ(component.metadata, "{\"end\":0 }\r\n");
        EXPECT_EQ(component.getMessageHandler(nullptr), nullptr);
        component.deletor(nullptr);
        void* const object = component.creator();
        if (component.getMessageHandler(object) == nullptr) {
            deaf.emplace_back(component.name);
        }
        component.deletor(object);
    }
    EXPECT_THAT(deaf, ElementsAre("lcd.memorycacheimpl.sequence"));
}

}  // namespace
