// The plug-in's table.
#include "platform/ktp/pluginentry.h"
#include "platform/lcdcomm/autoreportreceiver.h"
#include "platform/lcdcomm/httpchannel.h"

namespace {

using namespace lcdcomm;

class CommStatus final : public ICommStatus {
public:
    ChannelStatus channel() const override { return link_->channel.status(); }
    ReceiverStatus receiver() const override { return link_->receiver.status(); }
    SessionStatus session() const override { return link_->session.status(); }
    void onLoginNeeded(std::function<void()> ask) override { link_->session.onLoginNeeded(std::move(ask)); }
    void observe(ICommObserver* observer) override { link_->observer = observer; }

private:
    const std::shared_ptr<Link> link_ = Link::shared();
};

ktp::ComponentInfo httpChannel = ktp::describe<HttpChannel>("lcd.comm.httpchannel");
ktp::ComponentInfo autoReportReceiver = ktp::describe<AutoReportReceiver>("lcd.comm.autoreportreceiver");
ktp::ComponentInfo commStatus = ktp::describe<CommStatus>("lcd.comm.status");

}  // namespace

KTP_PLUGIN(lcdcomm, "1.0.0", &httpChannel, &autoReportReceiver, &commStatus)
