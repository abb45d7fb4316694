// The panel tool as a person has it: the program, its output and its exit status.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <nlohmann/json.hpp>

#include "devicesim/devicesim.h"
#include "panel/simcontrol.h"
#include "tests/support/processguard.h"
#include "tests/support/program.h"

namespace {

using namespace lcdtest;
using nlohmann::json;
using testing::HasSubstr;

struct Ran {
    int status;
    std::string text;
};

Ran ran(const std::string& options) {
    Program program("lcdpanel", options);
    std::string text;
    for (std::string line = program.line(); !line.empty(); line = program.line()) {
        text += line;
    }
    return {program.exitStatus(), text};
}

struct PanelTool : testing::Test {
    devicesim::Device device{};
    panel::SimControl sim{device.url()};

    Ran on(const std::string& options) { return ran(options + " --device " + device.url()); }
};

TEST_F(PanelTool, saysWhatWasMistyped) {
    const struct {
        const char* options;
        int status;
        const char* text;
    } cases[] = {
        {"get SwichMode SwitchModeChanged", 2, R"(no component "SwichMode": did you mean "SwitchMode"?)"},
        {"get SwitchMode SwitchModeChange", 2, R"(did you mean "SwitchModeChanged"?)"},
        {"get SwitchMode SwitchModeChanged 4", 2, R"(without a key: leave "4" out)"},
        {"get LayerBrief LayersChanged all", 2, R"(whole number, not "all")"},
        {"get Assess LayerWindow", 2, "asked with a std::list<s_LayerWindow>"},
        {"get InterfaceBrief GeneralChanged", 1, "is never delivered: the lists tell of new names"},
        {"get ScreenTake ScreenTakeSet", 1, "tells of events alone"},
        {"set SwitchMode SwitchModeChanged {", 2, "is no JSON"},
        {R"(set SwitchMode SwitchModeChanged '{"enabled":1}')", 2, R"(/enabled can't be 1 in a s_SwitchMode)"},
        {R"(set SwitchMode SwitchModeChanged '{"enable":"on"}')", 2, R"(can't be "on")"},
        {"set AboutUs AboutUsChanged {}", 2, "can't be set"},
        {"get SwitchMode SwitchModeChanged --device 127.0.0.1", 2, "is not of the form http://HOST"},
        {"get SwitchMode SwitchModeChanged --device http://127.0.0.1:9", 3, "http://127.0.0.1:9: the login failed"},
        {"watch --device http://127.0.0.1:9", 3, "http://127.0.0.1:9"},
        {"config check /nowhere.toml", 2, "/nowhere.toml: there is no such file"},
    };
    for (const auto& [options, status, text] : cases) {
        const Ran result = ran(options);
        EXPECT_EQ(result.status, status) << options << ": " << result.text;
        EXPECT_THAT(result.text, HasSubstr(text)) << options;
    }
}

TEST_F(PanelTool, namesEveryMistakeInAHostsFile) {
    const TempFolder folder;
    const auto file = folder / "host.toml";
    std::ofstream(file) << "plugins = [\"lcdcomm\", 5]\n[reports]\nheart = 1\n[[component]]\nname = 7\n";
    const Ran result = ran("config check " + file.string());
    EXPECT_EQ(result.status, 2);
    for (const char* text :
         {":1: plugins: 5 is not a text", ":3: unknown key \"reports.heart\"", ":5: component.name: 7 is not a text"}) {
        EXPECT_THAT(result.text, HasSubstr(text));
    }
    EXPECT_EQ(ran(std::string("config check ") + LCD_TEST_HOST_FILE).status, 0);
}

TEST_F(PanelTool, getsSetsAndTellsWhatBecameOfIt) {
    const char* const swap = "/zelto/v1/screen/global/swap";
    EXPECT_EQ(json::parse(on("get SwitchMode SwitchModeChanged").text), json({{"enable", 1}}));
    EXPECT_THAT(on(R"(set SwitchMode SwitchModeChanged '{"enable":0}')").text, HasSubstr("status 200"));
    EXPECT_EQ(sim.state().at("/screen/global/swap/enable"_json_pointer), 0);
    EXPECT_EQ(json::parse(on("get LayerBrief TypeChanged 3 --json").text)["payload"]["layerId"], 3);
    const Ran silent = on("get LayerBrief TypeChanged 77 --timeout 0.5");
    EXPECT_EQ(silent.status, 1);
    EXPECT_THAT(silent.text, HasSubstr("nothing for one that isn't there"));

    const Ran dropped = on(R"(set SystemDetail SystemDetailChanged '{"ftbAudioFollow":0}' --timeout 0.5)");
    EXPECT_EQ(dropped.status, 1);
    EXPECT_THAT(dropped.text, HasSubstr("the component takes no such change"));
    sim.addFault({{"kind", "delay"}, {"ms", 300}, {"path", swap}, {"verb", "PUT"}});
    const TempFolder folder;
    std::ofstream(folder / "changes") << "{\"enable\":1}\n{\"enable\":2}\n{\"enable\":3}\n";
    EXPECT_THAT(on("set SwitchMode SwitchModeChanged - <" + (folder / "changes").string()).text,
                HasSubstr("}: merged into a later one"));
    EXPECT_EQ(sim.state().at("/screen/global/swap/enable"_json_pointer), 3);
    sim.removeFaults();
    sim.addFault({{"kind", "code"}, {"code", 17}, {"message", "busy"}, {"path", swap}});
    const Ran refused = on(R"(set SwitchMode SwitchModeChanged '{"enable":1}')");
    EXPECT_EQ(refused.status, 1);
    EXPECT_THAT(refused.text, HasSubstr(R"(code 17 "busy")"));
    const Ran failed = on("get SwitchMode SwitchModeChanged");
    EXPECT_EQ(failed.status, 1);
    EXPECT_THAT(failed.text, HasSubstr("the fetch failed, what is shown is what the mirror held"));
    sim.removeFaults();
    sim.addFault({{"kind", "status"}, {"status", 200}, {"body", "{}"}, {"path", swap}});
    EXPECT_GE(on("get SwitchMode SwitchModeChanged").status, 0) << "an answer without a code ends nothing";
}

TEST_F(PanelTool, tellsOwnChangesFromThoseOfAnotherPanel) {
    Program watch("lcdpanel", "watch SwitchMode LayerBrief PresetSetting --json --device " + device.url());
    const auto next = [&watch](const std::string& kind, const std::string& origin) {
        json line;
        do {
            line = json::parse(watch.line());
        } while (line["kind"] != kind || line["origin"] != origin);
        return line;
    };
    EXPECT_EQ(next("SwitchModeChanged", "fetch")["payload"]["enable"], 1);
    EXPECT_EQ(on(R"(set SwitchMode SwitchModeChanged '{"enable":0}')").status, 0);
    const json other = next("SwitchModeChanged", "other client");
    EXPECT_EQ(other["payload"]["enable"], 0);
    EXPECT_LT(other["age"], 1.0);
    EXPECT_EQ(on(R"(set PresetSetting PresetApplyChanged '{"presetId":2,"sceneType":0}')").status, 0);
    EXPECT_EQ(next("PresetApplyChanged", "other client")["payload"][0], "") << "no requester of this panel's";
    sim.change("/layers/list/0/transitionFollow", 1);
    EXPECT_EQ(next("LayerTransFollow", "report")["payload"][1]["enable"], 1);
    watch.signal(SIGINT);
    EXPECT_EQ(watch.exitStatus(), 0);
}

TEST_F(PanelTool, verifiesEveryMirror) {
    const Ran equal = on("verify --json");
    EXPECT_EQ(equal.status, 0) << equal.text;
    sim.addFault({{"kind", "status"}, {"status", 500}, {"path", "/zelto/v1/custom"}});
    const Ran differs = on("verify --timeout 3");
    EXPECT_EQ(differs.status, 1);
    EXPECT_THAT(differs.text, HasSubstr("/softwareName: mirror \"\", device \"Video Control\""));
}

TEST_F(PanelTool, showsTheDemo) {
    const Ran demo = ran("demo");
    EXPECT_EQ(demo.status, 0) << demo.text;
    EXPECT_THAT(demo.text, HasSubstr("Everything held."));
}

}  // namespace
