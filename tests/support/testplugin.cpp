// A plug-in with one component, which writes down its life.
#include <fmt/format.h>

#include <string>
#include <vector>

#include "platform/ktp/pluginentry.h"

namespace {

class Witness : public ktp::IMessageHandler {
public:
    Witness() { write("created"); }
    virtual ~Witness() { write("deleted"); }

    int handleMessage(const ktp::IMessage* message) override {
        write(fmt::format("{:x}", message->id()));
        return 0;
    }

private:
    void write(const std::string& what) {
        if (journal_ != nullptr) {
            journal_->push_back("plugin " + what);
        }
    }

    // Lives longer than this, when the test has put it first.
    std::vector<std::string>* const journal_ = ktp::api::get().find<std::vector<std::string>>("testJournal");
};

ktp::ComponentInfo witness = ktp::describe<Witness>("test.plugin.witness");

}  // namespace

KTP_PLUGIN(testplugin, "1.0.0", &witness)
