# embed_texts(<target> <header> <file>...): builds text files into a target. The header, which the
# target's sources include, declares a std::string_view for each of them: of "page.html" kPageHtml, in
# the namespace embedded. The same files give the same bytes wherever they stand. It is made where the
# build is configured, and again when a file changes: lint looks at builds that are only configured.
function(embed_texts target header)
    string(CONCAT contents "// Made of the files that it names.\n#pragma once\n\n"
        "#include <string_view>\n\nnamespace embedded {\n")
    foreach(file IN LISTS ARGN)
        set(file ${CMAKE_CURRENT_SOURCE_DIR}/${file})
        set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${file})
        get_filename_component(name ${file} NAME)
        string(REGEX MATCHALL "[A-Za-z0-9]+" words ${name})
        set(identifier k)
        foreach(word IN LISTS words)
            string(SUBSTRING ${word} 0 1 initial)
            string(SUBSTRING ${word} 1 -1 rest)
            string(TOUPPER ${initial} initial)
            string(APPEND identifier ${initial}${rest})
        endforeach()
        # As numbers: a compiler takes a literal of some kilobytes only.
        file(READ ${file} bytes HEX)
        string(REGEX REPLACE "(................................)" "\\1\n" bytes "${bytes}")
        string(REGEX REPLACE "([0-9a-f][0-9a-f])" "'\\\\x\\1'," bytes "${bytes}")
        string(APPEND contents
            "\n/// ${name}\ninline constexpr char ${identifier}Bytes[] = {\n${bytes}};\n"
            "inline constexpr std::string_view ${identifier}(${identifier}Bytes, "
            "sizeof ${identifier}Bytes);\n")
    endforeach()
    string(APPEND contents "\n}  // namespace embedded\n")
    set(folder ${CMAKE_CURRENT_BINARY_DIR}/embedded)
    # Left alone where nothing differs: what includes it is then not compiled again.
    file(CONFIGURE OUTPUT ${folder}/${header} CONTENT "${contents}" @ONLY)
    target_include_directories(${target} PRIVATE ${folder})
endfunction()
