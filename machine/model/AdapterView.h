// What Windows shows of an adapter and of the machine's DNS suffixes, which is not always what they
// are set to.
#pragma once

#include "machine/State.h"

namespace machine::model {

/// Whether the adapter has IP: it is in use by itself and TCP/IP is bound to it. This is IPEnabled
/// of WMI; an adapter without it takes no settings.
bool HasIp(const Adapter& adapter);

/// Whether it is a PCI device: sections of a configuration get no other.
bool IsPci(const Adapter& adapter);

/// The adapter as WMI has it: of one without IP, the settings are NULL.
Adapter ShownAdapter(const Adapter& adapter);

/// DNSDomainSuffixSearchOrder, the same for every adapter with IP.
TextList ShownSuffixes(const State& state);

/// The list of a policy, which wins over the machine's own; empty where there is none.
TextList PolicySuffixes(const State& state);

}  // namespace machine::model
