// The host's file: what it may hold, and how mistakes are told.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "platform/ktp/hostconfig.h"
#include "platform/ktp/hosterror.h"
#include "platform/ktp/knownsettings.h"
#include "tests/support/processguard.h"

namespace {

using ktp::HostConfig;
using ktp::HostError;

class ConfigTest : public testing::Test {
protected:
    ConfigTest() { std::filesystem::create_directories(folder_ / "plugins"); }

    std::filesystem::path write(const std::string& name, const std::string& text) const {
        const std::filesystem::path file = folder_ / name;
        std::ofstream(file) << text;
        return file;
    }

    HostConfig read(const std::string& text) const { return HostConfig::fromFile(write("host.toml", text)); }

    const lcdtest::TempFolder folder_;
};

TEST_F(ConfigTest, ReadsEverythingThatAFileMayHold) {
    write("plugins/libone.so", "");
    write("other.so", "");
    const HostConfig config = read(R"(
plugin-folder = "plugins"
plugins = ["one", "./other.so"]
[device]
url = "https://[::1]:8443"
stop-grace-ms = 0
[program-edit-status]
1 = 0
-2 = 7
[[component]]
name = "a"
lookup = "A"
[[component]]
name = "b"
)");
    EXPECT_EQ(config.plugins.at(0).file, folder_ / "plugins/libone.so");
    EXPECT_EQ(config.plugins.at(1).file, folder_ / "other.so");
    EXPECT_EQ(config.components.at(0).lookup, "A");
    EXPECT_EQ(config.components.at(1).name, "b");
    EXPECT_EQ(config.settings.value(ktp::kDeviceUrl), "https://[::1]:8443");
    EXPECT_EQ(config.settings.value(ktp::kStopGraceMs), 0);
    EXPECT_EQ(config.settings.value(ktp::kHeartbeatMs), 1000);
    EXPECT_EQ(config.settings.value(ktp::kProgramEditStatus), (std::map<int, int>{{-2, 7}, {1, 0}}));
}

TEST(DeviceUrlTest, HasSchemeHostAndPerhapsAPort) {
    for (const char* url :
         {"http://a", "https://a-b.c:1", "http://10.0.0.1:65535", "http://[::1]", "https://[fe80::1]:80"}) {
        EXPECT_TRUE(ktp::isDeviceUrl(url)) << url;
    }
    std::istringstream bad(
        "a ftp://a http:// http://:80 http://a: http://a:0 http://a:65536 http://a:8x http://a/ http://a:80/ "
        "http://me@a http://me:secret@a http://[::1 http://[] http://[::1]8 http://[g] http://a?b");
    for (std::string url; bad >> url;) {
        EXPECT_FALSE(ktp::isDeviceUrl(url)) << url;
    }
    for (const char* url : {"", "http://a b", "http://a\r\n"}) {
        EXPECT_FALSE(ktp::isDeviceUrl(url)) << url;
    }
}

TEST_F(ConfigTest, EveryMistakeIsToldWithItsPlace) {
    const std::string good = "[[component]]\nname = \"a\"\nlookup = \"A\"\n";
    write("plugins/libone.so", "");
    const std::pair<std::string, std::string> cases[] = {
        {"", " component: there is none"},
        {"a = = 1", "1: Error while parsing"},
        {"[device]\nurl = 1", "2: device.url: 1 is not a text"},
        {"[device]\nurl = \"ftp://x\"", "2: device.url: \"ftp://x\" is not of the form http://HOST"},
        {"[device]\nport = 1", "2: unknown key \"device.port\", known here: connect-timeout-ms, "},
        {"[reports]\nheartbeat-ms = 1.5", "2: reports.heartbeat-ms: 1.5 is not a whole number"},
        {"[reports]\nheartbeat-ms = 9", "2: reports.heartbeat-ms: 9 is out of range, use 10 to 60000"},
        {"[reports]\nheartbeat-ms = 10\nheartbeat-ms = 11", "3: "},
        {"[devices]\nurl = 1", "1: unknown key \"devices\", known here: component, device, "},
        {"device = 5", "1: device: 5 is not a section"},
        {"[program-edit-status]\nx = 1", "2: program-edit-status.x: 1 has a key that is not a whole number"},
        {"[program-edit-status]\n01 = 1", "2: program-edit-status.01: 1 has a key"},
        {"[program-edit-status]\n1 = 5000000000", "2: program-edit-status.1: 5000000000 is out of range"},
        {"plugins = \"one\"", "1: plugins: \"one\" is not a list"},
        {"plugins = [\n\"one\",\n1]", "3: plugins: 1 is not a text"},
        {"plugins = [\n\"two\"]\n" + good, "2: plugins: there is no plug-in file \""},
        {"plugin-folder = \"plugins\"\nplugins = [\n\"one\",\n\"plugins/libone.so\"]\n" + good, "4: plugins: \""},
        {"[component]\nname = \"a\"", "1: component: is not a list, write [[component]]"},
        {good + "[[component]]\nlookup = \"B\"", "4: component: name is missing"},
        {good + "[[component]]\nname = \"b\"\nstart = 1", "6: unknown key \"component.start\""},
        {good + "[[component]]\nname = \"a\"", "4: component.name: \"a\" is there twice"},
        {good + "[[component]]\nname = \"b\"\nlookup = \"A\"", "4: component.lookup: \"A\" is there twice"},
        {"[[component]]\nname = \"a\"\nlookup = \"ktp_default_settings\"",
         "1: component.lookup: \"ktp_default_settings\" is"},
    };
    for (const auto& [text, error] : cases) {
        const std::string start = (folder_ / "host.toml").string() + ":" + error;
        const auto reading = [&, &given = text] { read(given); };
        EXPECT_THAT(reading, testing::ThrowsMessage<HostError>(testing::StartsWith(start))) << text;
    }
    EXPECT_THROW(HostConfig::fromFile(folder_ / "nowhere.toml"), HostError);
    EXPECT_THROW(HostConfig::fromFile(folder_ / "."), HostError);
    EXPECT_THROW(read(std::string(2 << 20, '#')), HostError);
}

// The file that people start from shows each setting, with the value that holds without it.
TEST_F(ConfigTest, TheShippedFileShowsEverySettingWithItsStandardValue) {
    std::ifstream shipped(LCD_TEST_HOST_FILE);
    std::string text;
    std::string line;
    std::size_t shown = 0;
    while (std::getline(shipped, line) && line != "[[component]]") {
        const std::size_t keyEnd = line.find_first_not_of("abcdefghijklmnopqrstuvwxyz-", 2);
        if (line.rfind("# ", 0) == 0 && keyEnd != line.npos && line.compare(keyEnd, 3, " = ") == 0) {
            line.erase(0, 2);
            ++shown;
        }
        if (line.rfind("plugins", 0) != 0) {
            text += line + "\n";
        }
    }
    const HostConfig config = read(text + "[[component]]\nname = \"a\"");
    EXPECT_EQ(shown, std::size(ktp::kNumberSettings));
    for (const ktp::NumberSetting* setting : ktp::kNumberSettings) {
        EXPECT_EQ(config.settings.value(*setting), setting->standard) << setting->key;
    }
    EXPECT_EQ(config.settings.value(ktp::kDeviceUrl), ktp::kDeviceUrl.standard);
    EXPECT_FALSE(config.settings.value(ktp::kProgramEditStatus).empty());
}

}  // namespace
