// A module that does what a host must survive: the message's name says what.
#include <cstdlib>
#include <new>
#include <stdexcept>
#include <string>

#include "toolbox/config/HostInterface.h"

namespace {

void GetVersion(std::uint32_t* major, std::uint32_t* minor, std::uint32_t* build) {
    *major = 1;
    *minor = 2;
    *build = 3;
}

std::int32_t DoMagic(IHostMessage* message, IHostLogSink* log) {
    const std::string name = message->GetName();
    const std::string kind = message->GetKind();
    log->Log(7, "%s|%d|%x|%s", kind.c_str(), -5, 255U, message->GetField("field"));
    message->SetField("Reply", "one");
    if (name == "bad_alloc") {
        throw std::bad_alloc();
    }
    if (name == "invalid_argument") {
        throw std::invalid_argument("stoi");
    }
    if (name == "int") {
        throw 5;
    }
    if (name == "abort") {
        std::abort();
    }
    if (name == "crash") {
        *reinterpret_cast<volatile int*>(name.size()) = 1;
    }
    if (name == "fields") {
        message->SetField("Reply", "two");
        message->WriteText("Raw", "\xFF\xC3(\x81");
        message->WriteText("Controls", "a\nb\x1B[2Jc\x7F");
        message->WriteText(nullptr, nullptr);
        message->WriteInteger("Number", -2147483647 - 1);
        std::int32_t number = 11;
        message->ReadInteger("Absent", &number);
        message->ReadInteger("field", &number);
        message->WriteInteger("Read", number);
        log->Log(0, "\xFF %s", "\xC3(");
        log->Log(1, "%s", "");
    }
    message->SetField("Result", name.c_str());
    return name == "zero" ? 0 : 1;
}

ToolboxAPI api = {ODD_INTERFACE_VERSION, GetVersion, DoMagic};

}  // namespace

extern "C" ToolboxAPI* GetToolboxAPI() {
    return &api;
}
