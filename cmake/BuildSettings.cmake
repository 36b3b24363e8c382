# build_settings: what every target of this project is compiled with.
# project_warnings: warnings as errors, for this project's own sources (not for GoogleTest's).
add_library(build_settings INTERFACE)
target_include_directories(build_settings INTERFACE ${PROJECT_SOURCE_DIR})

add_library(project_warnings INTERFACE)

if(MSVC)
    target_compile_options(build_settings INTERFACE /utf-8 /EHsc /permissive- /Zc:__cplusplus)
    target_compile_definitions(build_settings INTERFACE _CRT_SECURE_NO_WARNINGS)
    target_compile_options(project_warnings INTERFACE /W4 /WX)
else()
    target_compile_options(project_warnings INTERFACE
        -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror)
    # The same tree gives the same bytes wherever it is checked out.
    target_compile_options(build_settings INTERFACE
        -ffile-prefix-map=${PROJECT_SOURCE_DIR}=. -ffile-prefix-map=${PROJECT_BINARY_DIR}=build)
endif()

if(WIN32)
    target_compile_definitions(build_settings INTERFACE
        WIN32_LEAN_AND_MEAN NOMINMAX _WIN32_WINNT=0x0601 WINVER=0x0601)
endif()

if(MINGW)
    # DWARF 4 is what Wine's crash dump reads; lines and functions are all it shows. (What ships keeps
    # more: small_code.)
    target_compile_options(build_settings INTERFACE -gdwarf-4 -g1)
    target_link_options(build_settings INTERFACE
        -static -Wl,--no-insert-timestamp,--disable-auto-image-base)
    if(TOOLBOX_CHECKED)
        # The sanitizer runtimes do not exist for mingw; trap mode needs none.
        # The sources of tests are spared, for the compiler's time. (Their property NOT_UNDER_TEST.)
        set(under_test $<NOT:$<BOOL:$<TARGET_PROPERTY:NOT_UNDER_TEST>>>)
        target_compile_options(build_settings INTERFACE
            -g1 -fno-omit-frame-pointer -fstack-protector-strong
            "$<${under_test}:-O1;-fsanitize=undefined;-fsanitize-undefined-trap-on-error>")
        target_compile_definitions(build_settings INTERFACE _GLIBCXX_ASSERTIONS TOOLBOX_CHECKED)
        target_link_options(build_settings INTERFACE -fstack-protector-strong)
    endif()
elseif(TOOLBOX_SANITIZE)
    target_compile_options(build_settings INTERFACE
        -O1 -g1 -fno-omit-frame-pointer -fsanitize=address,undefined -fno-sanitize-recover=all)
    target_compile_definitions(build_settings INTERFACE _GLIBCXX_ASSERTIONS)
    target_link_options(build_settings INTERFACE -fsanitize=address,undefined)
    if(CMAKE_CXX_COMPILER_ID STREQUAL Clang)
        # Lets the fuzzers see which way an input took through the module, not through the machine
        # that it works on.
        target_compile_options(build_settings INTERFACE
            $<$<NOT:$<BOOL:$<TARGET_PROPERTY:NOT_UNDER_TEST>>>:-fsanitize=fuzzer-no-link>)
    endif()
endif()

if(TOOLBOX_COVERAGE)
    target_compile_options(build_settings INTERFACE --coverage -O0 -fprofile-update=atomic)
    target_link_options(build_settings INTERFACE --coverage)
endif()
