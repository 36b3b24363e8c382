// The base of every fake COM object: reference counts kept in the ledger, calls recorded in the
// trace.
#pragma once

#include <windows.h>

#include <objbase.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "machine/Call.h"
#include "machine/Core.h"

namespace machine {

/// Owned by the core until the simulation ends, so that a call after the last Release finds valid
/// memory and is reported instead of crashing.
class ComObjectBase {
public:
    ComObjectBase(Core& core, std::string_view interfaceName)
        : core_(core), interfaceName_(interfaceName) {}
    virtual ~ComObjectBase() = default;
    ComObjectBase(const ComObjectBase&) = delete;
    ComObjectBase& operator=(const ComObjectBase&) = delete;

    bool IsHeld() const { return references_ != 0; }

protected:
    Core& Machine() const { return core_; }
    std::string_view InterfaceName() const { return interfaceName_; }

    /// Frees what the object holds when its last reference goes.
    virtual void Discard() {}

    ULONG CountReference(std::string origin);
    ULONG TakeReferenceBack();
    std::uintptr_t Identity() const { return reinterpret_cast<std::uintptr_t>(this); }
    /// Records misuse: a call on a released object, or on a thread without COM.
    void CheckUsable(Call& call);

private:
    Core& core_;
    std::string_view interfaceName_;
    ULONG references_ = 0;
};

/// Implements IUnknown for the interface of this identity.
template <typename Interface, const IID& id>
class ComObject : public Interface, public ComObjectBase {
public:
    using ComObjectBase::ComObjectBase;

    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override {
        Call call(Machine(), InterfaceName(), "QueryInterface", {}, Failing::kNever);
        CheckUsable(call);
        if (object == nullptr) {
            return call.Hresult(E_POINTER);
        }
        *object = nullptr;
        if (!Supports(wanted)) {
            return call.Hresult(E_NOINTERFACE);
        }
        CountReference(call.Origin());
        *object = static_cast<Interface*>(this);
        return call.Hresult(S_OK);
    }

    ULONG STDMETHODCALLTYPE AddRef() override {
        Call call(Machine(), InterfaceName(), "AddRef", {}, Failing::kNever);
        CheckUsable(call);
        const ULONG references = CountReference(call.Origin());
        call.Note(std::to_string(references));
        return references;
    }

    ULONG STDMETHODCALLTYPE Release() override {
        Call call(Machine(), InterfaceName(), "Release", {}, Failing::kNever);
        CheckUsable(call);
        const ULONG references = TakeReferenceBack();
        call.Note(std::to_string(references));
        return references;
    }

    /// What the module knows the object by.
    const void* Address() const { return static_cast<const Interface*>(this); }

    /// The interface with one reference, as an out-parameter of the call wants it.
    Interface* HandOut(Call& call) {
        CountReference(call.Origin());
        return this;
    }

protected:
    virtual bool Supports(REFIID wanted) const {
        return IsEqualIID(wanted, IID_IUnknown) || IsEqualIID(wanted, id);
    }

    /// For the methods that the simulated machine leaves out: reported as unexpected.
    HRESULT NotServed(std::string_view function) {
        Call call(Machine(), InterfaceName(), function, {}, Failing::kNever);
        call.Unexpected("the simulated machine does not serve this method");
        return call.Hresult(E_NOTIMPL);
    }
};

/// Makes an object that the core owns.
template <typename Object, typename... Arguments>
Object& MakeComObject(Core& core, Arguments&&... arguments) {
    auto object = std::make_unique<Object>(core, std::forward<Arguments>(arguments)...);
    Object& made = *object;
    core.objects.emplace(made.Address(), std::move(object));
    return made;
}

/// The simulation's object behind an interface pointer of the module; null when it is none of the
/// type.
template <typename Object>
Object* FindComObject(Core& core, const void* address) {
    const auto found = core.objects.find(address);
    return found == core.objects.end() ? nullptr : dynamic_cast<Object*>(found->second.get());
}

}  // namespace machine
