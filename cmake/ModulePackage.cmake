# package_module(<target>): the module's file under the name that its UpdateInfo announces.
#
# The mingw release is stripped where it is built, so that what the tests load is what ships; the
# debug symbols stand beside it, and a debugger finds them by the link in the module.
function(package_module target)
    set(name morvane-config-${PROJECT_VERSION}.X64)
    if(MINGW AND CMAKE_BUILD_TYPE STREQUAL Release)
        set(symbols ${CMAKE_BINARY_DIR}/${name}.debug)
        add_custom_command(TARGET ${target} POST_BUILD
            # -p: without it these tools write the time of day into the file's header.
            COMMAND ${CMAKE_OBJCOPY} -p --only-keep-debug $<TARGET_FILE:${target}> ${symbols}
            COMMAND ${CMAKE_STRIP} -p $<TARGET_FILE:${target}>
            COMMAND ${CMAKE_OBJCOPY} -p --add-gnu-debuglink=${symbols} $<TARGET_FILE:${target}>
            BYPRODUCTS ${symbols}
            VERBATIM)
        install(FILES ${symbols} DESTINATION .)
    elseif(MSVC)
        install(FILES $<TARGET_PDB_FILE:${target}> DESTINATION . RENAME ${name}.pdb OPTIONAL)
    endif()
    install(PROGRAMS $<TARGET_FILE:${target}> DESTINATION . RENAME ${name}.dll)
    set_target_properties(${target} PROPERTIES PACKAGED_NAME ${name}.dll)
endfunction()

# What stands around the module in a package; scripts/package adds the rest.
function(package_surroundings)
    install(TARGETS toolbox-host RUNTIME DESTINATION .)
    install(FILES CHANGELOG.md DESTINATION .)
    install(FILES cmake/package-readme.md DESTINATION . RENAME README.md)
    install(DIRECTORY examples integrations DESTINATION .)
    # Not the pages for those who work on the sources.
    install(DIRECTORY docs DESTINATION .
        REGEX "/(architecture|reliability|working-on-it)\\.md$" EXCLUDE)
endfunction()
