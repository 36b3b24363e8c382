// The checked build's allocator: a library that the programs and the module share, so that one of
// them may free what another allocated.
//
// Each block ends where an inaccessible page begins, and its pages become inaccessible when it is
// freed, so that an overrun or a use after free stops at the very instruction. What is known of the
// block is printed then; a second free ends the process with the exit code 77.
#pragma once

#include <cstddef>

#ifdef GUARD_IS_BUILT_HERE
#define GUARD_CALL extern "C" __declspec(dllexport)
#else
#define GUARD_CALL extern "C" __declspec(dllimport)
#endif

/// Null when there is no memory.
GUARD_CALL void* GuardAllocate(std::size_t size, std::size_t alignment) noexcept;
GUARD_CALL void GuardFree(void* block) noexcept;
