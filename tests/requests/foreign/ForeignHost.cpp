#include "ForeignHost.h"

namespace {

// The module's interface, declared once more: nothing is shared but the order of the slots.
class Message {
public:
    virtual void WriteInteger(const char* name, int value) = 0;
    virtual void WriteText(const char* name, const char* value) = 0;
    virtual void SetField(const char* name, const char* value) = 0;
    virtual const char* GetKind() = 0;
    virtual const char* GetName() = 0;
    virtual const char* GetField(const char* name) = 0;
    virtual void ReadInteger(const char* name, int* value) = 0;
};

class Sink {
public:
    virtual void Log(unsigned level, const char* format, ...) = 0;
};

struct Api {
    int interfaceVersion;
    void (*getVersion)(unsigned* major, unsigned* minor, unsigned* build);
    int (*doMagic)(Message* message, Sink* sink);
};

bool Equal(const char* left, const char* right) {
    while (*left != 0 && *left == *right) {
        ++left;
        ++right;
    }
    return *left == *right;
}

int Number(const char* text) {
    int number = 0;
    for (; *text >= '0' && *text <= '9'; ++text) {
        number = number * 10 + (*text - '0');
    }
    return number;
}

constexpr int kMark = 0x5A17;

/// Notes each call; `mark_` shows that `this` arrived whole.
class ForeignMessage : public Message {
public:
    ForeignMessage(const char* kind, const char* name, const char* fieldName,
                   const char* fieldValue)
        : kind_(kind), name_(name), fieldName_(fieldName), fieldValue_(fieldValue) {}

    void WriteInteger(const char* name, int value) override {
        NoteInteger(Operation("WriteInteger"), name, value);
    }
    void WriteText(const char* name, const char* value) override {
        NoteCall(Operation("WriteText"), name, value);
    }
    void SetField(const char* name, const char* value) override {
        NoteCall(Operation("SetField"), name, value);
    }
    const char* GetKind() override {
        NoteCall(Operation("GetKind"), "", "");
        return kind_;
    }
    const char* GetName() override {
        NoteCall(Operation("GetName"), "", "");
        return name_;
    }
    const char* GetField(const char* name) override {
        NoteCall(Operation("GetField"), name, "");
        return Equal(name, fieldName_) ? fieldValue_ : "";
    }
    void ReadInteger(const char* name, int* value) override {
        NoteInteger(Operation("ReadInteger"), name, *value);
        if (Equal(name, fieldName_)) {
            *value = Number(fieldValue_);
        }
    }

private:
    const char* Operation(const char* name) const { return mark_ == kMark ? name : "wrong this"; }

    const char* kind_;
    const char* name_;
    const char* fieldName_;
    const char* fieldValue_;
    int mark_ = kMark;
};

class ForeignSink : public Sink {
public:
    void Log(unsigned level, const char* format, ...) override {
        va_list arguments;
        va_start(arguments, format);
        NoteLine(mark_ == kMark ? level : 99, format, arguments);
        va_end(arguments);
    }

private:
    int mark_ = kMark;
};

}  // namespace

extern "C" {

int ForeignInterfaceVersion(const void* api) {
    return static_cast<const Api*>(api)->interfaceVersion;
}

void ForeignGetVersion(const void* api, unsigned* major, unsigned* minor, unsigned* build) {
    static_cast<const Api*>(api)->getVersion(major, minor, build);
}

int ForeignSend(const void* api, const char* kind, const char* name, const char* fieldName,
                const char* fieldValue) {
    ForeignMessage message(kind, name, fieldName, fieldValue);
    ForeignSink sink;
    try {
        return static_cast<const Api*>(api)->doMagic(kind == nullptr ? nullptr : &message, &sink);
    } catch (...) {
        return -1;
    }
}
}
