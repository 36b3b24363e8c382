// The directory service: ADsOpenObject and the container that it opens.
#include <windows.h>

#include <oaidl.h>

#include <iads.h>

#include "machine/Call.h"
#include "machine/Text.h"
#include "machine/WideText.h"
#include "machine/com/ComObject.h"
#include "machine/hooks/Hooks.h"
#include "machine/model/Directory.h"

namespace machine {
namespace {

/// IDispatch, which no caller uses on this machine's directory objects.
template <typename Interface, const IID& id>
class Automation : public ComObject<Interface, id> {
public:
    using ComObject<Interface, id>::ComObject;

    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT*) override {
        return this->NotServed("GetTypeInfoCount");
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override {
        return this->NotServed("GetTypeInfo");
    }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override {
        return this->NotServed("GetIDsOfNames");
    }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*,
                                     UINT*) override {
        return this->NotServed("Invoke");
    }

protected:
    bool Supports(REFIID wanted) const override {
        return IsEqualIID(wanted, IID_IDispatch) || ComObject<Interface, id>::Supports(wanted);
    }
};

/// A computer object after its move.
class MovedObject : public Automation<IDispatch, IID_IDispatch> {
public:
    explicit MovedObject(Core& core) : Automation(core, "IDispatch") {}
};

class ContainerObject : public Automation<IADsContainer, IID_IADsContainer> {
public:
    ContainerObject(Core& core, std::string path, Account account)
        : Automation(core, "IADsContainer"), path_(std::move(path)), account_(std::move(account)) {}

    HRESULT STDMETHODCALLTYPE MoveHere(BSTR sourceName, BSTR newName, IDispatch** moved) override {
        const std::string source = Narrow(sourceName);
        Call call(Machine(), InterfaceName(), "MoveHere", {{"into", path_}, {"source", source}});
        CheckUsable(call);
        if (moved != nullptr) {
            *moved = nullptr;
        }
        if (const auto fault = call.Fault()) {
            return call.Hresult(*fault);
        }
        const std::uint32_t code =
            model::MoveComputer(Machine().state, path_, account_, source, Narrow(newName));
        if (code == model::kDirectoryOk && moved != nullptr) {
            *moved = MakeComObject<MovedObject>(Machine()).HandOut(call);
        }
        return call.Hresult(code);
    }

    HRESULT STDMETHODCALLTYPE get_Count(LONG*) override { return NotServed("get_Count"); }
    HRESULT STDMETHODCALLTYPE get__NewEnum(IUnknown**) override {
        return NotServed("get__NewEnum");
    }
    HRESULT STDMETHODCALLTYPE get_Filter(VARIANT*) override { return NotServed("get_Filter"); }
    HRESULT STDMETHODCALLTYPE put_Filter(VARIANT) override { return NotServed("put_Filter"); }
    HRESULT STDMETHODCALLTYPE get_Hints(VARIANT*) override { return NotServed("get_Hints"); }
    HRESULT STDMETHODCALLTYPE put_Hints(VARIANT) override { return NotServed("put_Hints"); }
    HRESULT STDMETHODCALLTYPE GetObject(BSTR, BSTR, IDispatch**) override {
        return NotServed("GetObject");
    }
    HRESULT STDMETHODCALLTYPE Create(BSTR, BSTR, IDispatch**) override {
        return NotServed("Create");
    }
    HRESULT STDMETHODCALLTYPE Delete(BSTR, BSTR) override { return NotServed("Delete"); }
    HRESULT STDMETHODCALLTYPE CopyHere(BSTR, BSTR, IDispatch**) override {
        return NotServed("CopyHere");
    }

private:
    void Discard() override { account_ = {}; }

    std::string path_;
    Account account_;
};

HRESULT ServeADsOpenObject(Core& core, LPCWSTR path, LPCWSTR userName, LPCWSTR password,
                           DWORD flags, REFIID wanted, void** object) {
    const std::string pathText = Narrow(path);
    Call call(core, "ADsOpenObject",
              {{"path", pathText},
               {"user", Narrow(userName)},
               {"password", password == nullptr ? "null" : "***"},
               {"flags", Hex(flags)}});
    if (object != nullptr) {
        *object = nullptr;
    }
    if (const auto fault = call.Fault()) {
        return call.Hresult(*fault);
    }
    if (object == nullptr || path == nullptr) {
        return call.Hresult(E_INVALIDARG);
    }
    if (!call->ComIsInitialised()) {
        return call.Hresult(CO_E_NOTINITIALIZED);
    }
    if ((flags & ADS_SECURE_AUTHENTICATION) == 0) {
        call.Unexpected("a bind that sends the password in clear");
    }
    model::Container container;
    Account account;
    const std::uint32_t code =
        model::Bind(call->state, pathText, Narrow(userName), Narrow(password), container, account);
    if (code != model::kDirectoryOk) {
        return call.Hresult(code);
    }
    if (!IsEqualIID(wanted, IID_IADsContainer)) {
        call.Unexpected("an interface other than IADsContainer");
        return call.Hresult(E_NOINTERFACE);
    }
    *object =
        MakeComObject<ContainerObject>(call.Machine(), pathText, std::move(account)).HandOut(call);
    return call.Hresult(S_OK);
}

}  // namespace

void AddDirectoryHooks(Hooks& hooks) {
    hooks.push_back(MakeHook<&ServeADsOpenObject>("ADsOpenObject"));
}

}  // namespace machine
