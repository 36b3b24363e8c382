#include "common/sys/Wmi.h"

namespace sys {

void WmiRow::ReadAddress(const wchar_t* property, ipc::IPv4Address& address) {
    std::string text;
    if (ReadText(property, text)) {
        address.Resolve(text);
    }
}

void WmiRow::ReadAddresses(const wchar_t* property, std::vector<ipc::IPv4Address>& addresses) {
    std::vector<std::string> texts;
    ReadTexts(property, texts);
    const std::vector<ipc::IPv4Address> resolved(texts.begin(), texts.end());
    addresses.insert(addresses.end(), resolved.begin(), resolved.end());
}

void WmiRow::ReadFirstAddress(const wchar_t* property, ipc::IPv4Address& address) {
    std::string text;
    if (ReadFirstText(property, text)) {
        address.Resolve(text);
    }
}

void WmiInParameters::PutAddresses(const wchar_t* name,
                                   const std::vector<ipc::IPv4Address>& addresses) {
    std::vector<std::string> texts;
    texts.reserve(addresses.size());
    for (const ipc::IPv4Address& address : addresses) {
        texts.push_back(address.ToString());
    }
    PutTexts(name, texts);
}

std::string ComputerPath(const std::string& name) {
    return "Win32_ComputerSystem.Name=\"" + name + "\"";
}

}  // namespace sys
