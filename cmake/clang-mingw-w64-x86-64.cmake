# clang for 64-bit Windows with mingw-w64's headers, so that clang-tidy sees what ships. Nothing is
# built this way. clang 14 looks for gcc's files in another layout than Debian's.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-x86-64.cmake)

set(CMAKE_C_COMPILER clang)
set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_C_COMPILER_TARGET ${triple})
set(CMAKE_CXX_COMPILER_TARGET ${triple})
set(CMAKE_TRY_COMPILE_TARGET_TYPE STATIC_LIBRARY)

set(CMAKE_SYSROOT ${CMAKE_CURRENT_LIST_DIR}/../build/clang-sysroot)
execute_process(COMMAND ${triple}-gcc-posix -print-file-name=include
    OUTPUT_VARIABLE gcc_headers OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
get_filename_component(gcc_folder ${gcc_headers} DIRECTORY)
get_filename_component(gcc_version ${gcc_folder} NAME)
string(REGEX MATCH "^[0-9]+" gcc_version ${gcc_version})
file(MAKE_DIRECTORY ${CMAKE_SYSROOT}/lib/gcc/${triple})
file(CREATE_LINK ${gcc_folder} ${CMAKE_SYSROOT}/lib/gcc/${triple}/${gcc_version} SYMBOLIC)
file(CREATE_LINK /usr/${triple} ${CMAKE_SYSROOT}/${triple} SYMBOLIC)
