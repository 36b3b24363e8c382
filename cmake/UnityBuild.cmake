# Several sources compiled as one: most of a compilation's time goes into headers, so everything is
# built in about half the time, and a change of one source in somewhat more. The scripts build this
# way; by hand it is off.
option(TOOLBOX_UNITY "Compile several sources as one" OFF)

# What ships, and what coverage counts, is compiled source by source.
if(TOOLBOX_UNITY AND NOT TOOLBOX_COVERAGE AND NOT CMAKE_BUILD_TYPE STREQUAL Release)
    set(CMAKE_UNITY_BUILD ON)
endif()
set(CMAKE_UNITY_BUILD_BATCH_SIZE 12)

# unity_for_the_rest(): the same for the directories that are added after the module's.
macro(unity_for_the_rest)
    if(TOOLBOX_UNITY)
        set(CMAKE_UNITY_BUILD ON)
    endif()
endmacro()
