#pragma once

#include <stdarg.h>

/// A host built by another compiler: ForeignHost.cpp is compiled for the Microsoft C++ ABI, without
/// a standard library, and knows the module's interface from its own declarations alone. This
/// header is what it and the test program share: plain C functions.
extern "C" {

/// Provided by the foreign host. `api` is what GetToolboxAPI returned.
int ForeignInterfaceVersion(const void* api);
void ForeignGetVersion(const void* api, unsigned* major, unsigned* minor, unsigned* build);
/// Sends a message with at most one field; a null kind for a null message. -1 where an exception
/// of this compiler's own kind is caught.
int ForeignSend(const void* api, const char* kind, const char* name, const char* fieldName,
                const char* fieldValue);

/// Provided by the test program, called by the foreign host for each call that reaches it.
void NoteCall(const char* operation, const char* name, const char* value);
void NoteInteger(const char* operation, const char* name, int value);
void NoteLine(unsigned level, const char* format, va_list arguments);
}
