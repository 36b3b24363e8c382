#include "toolbox/config/CreateHandler.h"

#include <new>

#include "toolbox/config/Configure.h"
#include "toolbox/config/UpdateInfo.h"

namespace {

template <typename Handler>
std::unique_ptr<CMessageHandler> Make() {
    return std::unique_ptr<CMessageHandler>(new (std::nothrow) Handler);
}

}  // namespace

std::unique_ptr<CMessageHandler> CreateHandler(const std::string& kind, const std::string& name) {
    const bool isInternal = kind == "Internal";
    if (isInternal && name == "Configure") {
        return Make<Configure>();
    }
    if (isInternal && name == "UpdateInfo") {
        return Make<UpdateInfo>();
    }
    return isInternal || kind == "Request" || kind == "Reply" ? Make<DefaultHandler>() : nullptr;
}
