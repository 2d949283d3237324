# Compiler settings that every target of the project shares, as the interface target ovCompilerSettings.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)

mark_as_advanced(CMAKE_CXX_FLAGS_DEV)
if(NOT CMAKE_BUILD_TYPE AND PROJECT_IS_TOP_LEVEL)
    set(CMAKE_BUILD_TYPE Dev CACHE STRING "Dev, Release, RelWithDebInfo or Debug" FORCE)
endif()

find_program(OV_CCACHE ccache)
if(OV_CCACHE AND PROJECT_IS_TOP_LEVEL)
    # Paths relative to the tree, so that every clone of it shares what was compiled in another.
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CMAKE_COMMAND} -E env "CCACHE_BASEDIR=${PROJECT_SOURCE_DIR}"
        CCACHE_NOHASHDIR=true "${OV_CCACHE}")
endif()

add_library(ovCompilerSettings INTERFACE)
target_compile_features(ovCompilerSettings INTERFACE cxx_std_20)
target_compile_options(ovCompilerSettings INTERFACE -Wall -Wextra -Wshadow -Wnon-virtual-dtor -Wold-style-cast
    $<$<BOOL:${OV_WARNINGS_AS_ERRORS}>:-Werror>)
# GCC 12 at full optimisation sees overlapping copies in std::string's assignments (GCC bug 105651).
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(ovCompilerSettings INTERFACE $<$<CONFIG:Release,RelWithDebInfo>:-Wno-restrict>)
endif()
# Nobody reads errno after a root. Without it a root is one instruction, and loops with roots take several at once.
target_compile_options(ovCompilerSettings INTERFACE -fno-math-errno)
# Nobody replaces functions of our libraries by preloading others, so that calls inside a library need not be ready
# for it: GCC inlines them, and a scene that moves takes a tenth less time. Clang does so by itself.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    target_compile_options(ovCompilerSettings INTERFACE
        $<$<CONFIG:Release,RelWithDebInfo>:-fno-semantic-interposition>)
endif()
# GCC looks for memory that it no longer needs from 128 MB on, again and again while it compiles a folder. From 512 MB on
# it takes a tenth less time.
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND PROJECT_IS_TOP_LEVEL)
    target_compile_options(ovCompilerSettings INTERFACE --param=ggc-min-heapsize=524288)
endif()
if(OV_SANITIZE)
    target_compile_options(ovCompilerSettings INTERFACE -fsanitize=${OV_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all)
    target_link_options(ovCompilerSettings INTERFACE -fsanitize=${OV_SANITIZE})
    # What the sanitizers add hides from GCC that a value was set, as its manual says of this warning: GCC 12 warns of the
    # string in every variant that holds something else.
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        target_compile_options(ovCompilerSettings INTERFACE -Wno-maybe-uninitialized)
    endif()
endif()
if(OV_BUILD_FUZZERS)
    # The libraries too: without it the fuzzer does not see which inputs reach new code, and never gets past a header.
    target_compile_options(ovCompilerSettings INTERFACE -fsanitize=fuzzer-no-link)
    # Three checks of Clang's that read no input: they made a third of the code of what is bound to scripts.
    target_compile_options(ovCompilerSettings INTERFACE -fno-sanitize=object-size,vptr,function)
endif()

# ov_compile_by_folder(<target> [ALONE <regex>...])
#
# With CMAKE_UNITY_BUILD, which the presets set, the sources of a folder are compiled as one: what they include is most
# of the work. A folder is small enough that its unnamed namespaces hold different names. Families that follow one
# pattern (encoders, tests) give the same names to the same things on purpose: ALONE keeps these sources single.
# Editors see single sources in the preset lint; clang-tidy looks at these and at the folders (cmake/lint.sh).
function(ov_compile_by_folder target)
    cmake_parse_arguments(arg "" "" "ALONE" ${ARGN})
    get_target_property(sources ${target} SOURCES)
    list(FILTER sources INCLUDE REGEX "\\.cpp$")
    foreach(source IN LISTS sources)
        get_filename_component(folder "${source}" DIRECTORY)
        file(RELATIVE_PATH folder "${CMAKE_CURRENT_SOURCE_DIR}" "${folder}")
        string(MAKE_C_IDENTIFIER "folder_${folder}" group)
        set_source_files_properties("${source}" PROPERTIES UNITY_GROUP "${group}")
        foreach(pattern IN LISTS arg_ALONE)
            if(source MATCHES "${pattern}")
                set_source_files_properties("${source}" PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
            endif()
        endforeach()
    endforeach()
    set_target_properties(${target} PROPERTIES UNITY_BUILD_MODE GROUP)
endfunction()
