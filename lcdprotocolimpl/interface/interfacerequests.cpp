#include "lcdprotocolimpl/interface/interfacerequests.h"

#include "lcdprotocolimpl/core/report.h"
#include "lcdprotocolimpl/core/request.h"

namespace LCD::ProtocolImpl {

bool getInterfaceBriefList(Comm::IHttpChannel* channel, std::list<s_InterfaceBrief>& out) {
    return Request(channel, "/zelto/v1/interface/list-thumb").getFilledList<s_InterfaceBriefPage>(out);
}

bool decodeGeneral(const std::string& body, std::vector<s_InterfaceGeneral>& out) {
    return decodeReport(body, out, "interface general");
}

}  // namespace LCD::ProtocolImpl
