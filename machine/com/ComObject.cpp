#include "machine/com/ComObject.h"

namespace machine {

ULONG ComObjectBase::CountReference(std::string origin) {
    core_.ledger.HandOut(interfaceName_, Identity(), std::move(origin));
    return ++references_;
}

ULONG ComObjectBase::TakeReferenceBack() {
    if (references_ == 0) {
        return 0;  // CheckUsable has reported it
    }
    core_.ledger.TakeBack(interfaceName_, Identity());
    if (--references_ == 0) {
        Discard();
    }
    return references_;
}

void ComObjectBase::CheckUsable(Call& call) {
    if (references_ == 0) {
        core_.ledger.RecordMisuse(call.Origin() + ": the " + std::string(interfaceName_) +
                                  " was released before");
    } else if (!core_.ComIsInitialised()) {
        core_.ledger.RecordMisuse(call.Origin() + ": COM is not initialised for the " +
                                  std::string(interfaceName_));
    }
}

}  // namespace machine
