#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "toolbox/config/HostInterface.h"

namespace host {

/// One field of a message. Texts are in the system code page.
struct Field {
    std::string name;
    std::variant<std::string, std::int32_t> value;

    /// The value as text; an integer in decimal.
    std::string Text() const;
};

/// A message of this host: fields in the order in which they were added. Names are compared byte by
/// byte; writing a field that is there replaces its value. A null text from the module counts as an
/// empty one.
class Message final : public IHostMessage {
public:
    Message(std::string kind, std::string name);

    /// Adds a field of the request.
    void Add(const std::string& name, const std::string& value);

    void WriteInteger(const char* name, std::int32_t value) override;
    void WriteText(const char* name, const char* value) override;
    void SetField(const char* name, const char* value) override;
    const char* GetKind() override { return kind_.c_str(); }
    const char* GetName() override { return name_.c_str(); }
    /// The text stays valid until the next field is asked for or written.
    const char* GetField(const char* name) override;
    /// A text that is no whole decimal number counts as absent.
    void ReadInteger(const char* name, std::int32_t* value) override;

    /// The fields that the module has written, in the order of their first writing.
    const std::vector<Field>& Reply() const noexcept { return reply_; }
    /// The text of a reply field; empty where the module did not write it.
    std::string ReplyText(const std::string& name) const;

private:
    const Field* Find(const std::string& name) const;
    void Write(const char* name, std::variant<std::string, std::int32_t> value);

    std::string kind_;
    std::string name_;
    std::vector<Field> request_;
    std::vector<Field> reply_;
    std::string lent_;  // the text that GetField lends to the module
};

}  // namespace host
