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
if(OV_SANITIZE)
    target_compile_options(ovCompilerSettings INTERFACE -fsanitize=${OV_SANITIZE} -fno-omit-frame-pointer
        -fno-sanitize-recover=all)
    target_link_options(ovCompilerSettings INTERFACE -fsanitize=${OV_SANITIZE})
endif()
if(OV_BUILD_FUZZERS)
    # The libraries too: without it the fuzzer does not see which inputs reach new code, and never gets past a header.
    target_compile_options(ovCompilerSettings INTERFACE -fsanitize=fuzzer-no-link)
endif()
