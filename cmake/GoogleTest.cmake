# GTest::gmock, where there is one. Debian ships the sources, so that every target builds its own;
# elsewhere it is a package.
if(EXISTS /usr/src/googletest/CMakeLists.txt)
    set(INSTALL_GTEST OFF)
    add_subdirectory(/usr/src/googletest ${CMAKE_BINARY_DIR}/googletest EXCLUDE_FROM_ALL SYSTEM)
    if(MINGW)
        foreach(library gtest gmock)
            target_compile_options(${library} PRIVATE -gdwarf-4 -g1)
        endforeach()
    endif()
else()
    find_package(GTest CONFIG)
endif()
