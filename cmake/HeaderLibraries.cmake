# CLI11::CLI11 and nlohmann_json::nlohmann_json, the header-only libraries of the programs around the
# module. A cross build cannot take their package's include directory, /usr/include, for that holds
# this machine's C library too: it gets a folder in the build that links to the two alone.
include_guard(GLOBAL)

if(CMAKE_CROSSCOMPILING)
    set(header_folder ${CMAKE_BINARY_DIR}/header-libraries)
    file(MAKE_DIRECTORY ${header_folder})
    foreach(library CLI nlohmann)
        if(NOT EXISTS /usr/include/${library})
            message(FATAL_ERROR "/usr/include/${library} is missing: run scripts/setup")
        endif()
        file(CREATE_LINK /usr/include/${library} ${header_folder}/${library} SYMBOLIC)
    endforeach()
    foreach(target CLI11::CLI11 nlohmann_json::nlohmann_json)
        add_library(${target} INTERFACE IMPORTED GLOBAL)
        target_include_directories(${target} SYSTEM INTERFACE ${header_folder})
    endforeach()
else()
    find_package(CLI11 CONFIG REQUIRED GLOBAL)
    find_package(nlohmann_json CONFIG REQUIRED GLOBAL)
endif()
