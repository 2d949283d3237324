# ov_add_tests(<library> [LINK <targets>...] [ALONE <regex>...])
#
# One test program, <library>Tests, from every *Test.cpp below the calling folder; each suite is a CTest test.
# ALONE: see ov_compile_by_folder.
if(OV_BUILD_TESTS)
    find_package(GTest REQUIRED)
    include(GoogleTest)
endif()

# Mesa's own shader cache makes a second test process warm up in milliseconds instead of hundreds; keep it in
# the build folder, so that tests write nothing in the user's home.
set(OV_TEST_ENVIRONMENT
    "MESA_SHADER_CACHE_DIR=${PROJECT_BINARY_DIR}/mesa_shader_cache"
    "ASAN_OPTIONS=detect_leaks=1:intercept_tls_get_addr=0"
    "LSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/lsan.supp:print_suppressions=0"
    "TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/support/tsan.supp:halt_on_error=1"
    "UBSAN_OPTIONS=print_stacktrace=1"
    "OV_TEST_OUTPUT_DIR=${PROJECT_BINARY_DIR}/test_output")
# intercept_tls_get_addr=0: with it on, GCC 12's leak checker itself crashes at the end of tests that loaded the driver.

# What test programs compile otherwise than the product. Linked behind ovCompilerSettings: the later option holds.
add_library(ovTestSettings INTERFACE)
if(OV_SANITIZE)
    # Optimising what the sanitizers add to tests takes three times as long as compiling them.
    target_compile_options(ovTestSettings INTERFACE -O0)
endif()
if(OV_SANITIZE MATCHES "undefined")
    # These three are a quarter of the work on a test. They watch the libraries; in the test itself a null pointer ends in
    # the address sanitizer all the same.
    target_compile_options(ovTestSettings INTERFACE -fno-sanitize=vptr,null,alignment)
endif()

function(ov_add_tests library)
    cmake_parse_arguments(arg "" "" "LINK;ALONE" ${ARGN})
    if(NOT OV_BUILD_TESTS)
        return()
    endif()
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
    list(FILTER sources EXCLUDE REGEX "/fuzz/")
    set(program "${library}Tests")
    add_executable(${program} ${sources})
    ov_compile_by_folder(${program} ALONE ${arg_ALONE})
    # Fixtures live in unnamed namespaces; GCC takes a source that is included for a header.
    target_compile_options(${program} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
    target_include_directories(${program} PRIVATE "${PROJECT_SOURCE_DIR}/tests" "${CMAKE_CURRENT_SOURCE_DIR}")
    target_link_libraries(${program} PRIVATE ${library} ${arg_LINK} ovCompilerSettings ovTestSettings
        GTest::gtest_main)
    if(OV_SANITIZE STREQUAL "thread")
        ov_discover_cases(${program} ${library} "")
    else()
        ov_discover_suites(${program} ${library})
    endif()
endfunction()

# ov_add_thread_tests(<library> [LINK <target>...])
#
# The tests of a large library that start threads, as a program of their own for the thread sanitizer: compiling all
# others for it takes minutes. They are the sources of this folder that have a test named after its threads.
function(ov_add_thread_tests library)
    cmake_parse_arguments(arg "" "" "LINK" ${ARGN})
    if(NOT OV_BUILD_TESTS OR NOT OV_SANITIZE STREQUAL "thread")
        return()
    endif()
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*Test.cpp")
    set(threaded "")
    foreach(source IN LISTS sources)
        file(STRINGS "${source}" tests REGEX "^TEST.*Thread")
        if(tests)
            list(APPEND threaded "${source}")
        endif()
    endforeach()
    set(program "${library}ThreadTests")
    add_executable(${program} ${threaded})
    ov_compile_by_folder(${program})
    target_compile_options(${program} PRIVATE $<$<CXX_COMPILER_ID:GNU>:-Wno-subobject-linkage>)
    target_include_directories(${program} PRIVATE "${PROJECT_SOURCE_DIR}/tests" "${CMAKE_CURRENT_SOURCE_DIR}")
    target_link_libraries(${program} PRIVATE ${library} ${arg_LINK} ovCompilerSettings ovTestSettings
        GTest::gtest_main)
    ov_discover_cases(${program} ${library} "threads.")
endfunction()

# ov_discover_cases(<program> <label> <prefix>): a CTest test for each case of a built test program. Those with threads
# are chosen by their names. Started through env, because gtest_discover_tests takes lists apart and would keep the
# first variable only.
function(ov_discover_cases program label prefix)
    set_target_properties(${program} PROPERTIES CROSSCOMPILING_EMULATOR "env;${OV_TEST_ENVIRONMENT}")
    gtest_discover_tests(${program} TEST_PREFIX "${prefix}" DISCOVERY_TIMEOUT 120
        PROPERTIES TIMEOUT 300 LABELS ${label})
endfunction()

# ov_discover_suites(<program> <label>): a CTest test for each suite of a built test program.
function(ov_discover_suites program label)
    set(tests "${CMAKE_CURRENT_BINARY_DIR}/${program}.cmake")
    set(script "${PROJECT_SOURCE_DIR}/cmake/OvDiscoverSuites.cmake")
    if(NOT EXISTS "${tests}") # fails until the program is built
        file(WRITE "${tests}" "add_test(${program}_NOT_BUILT ${program}_NOT_BUILT)\n")
    endif()
    list(JOIN OV_TEST_ENVIRONMENT "|" environment)
    add_custom_command(TARGET ${program} POST_BUILD
        COMMAND ${CMAKE_COMMAND} "-DPROGRAM=$<TARGET_FILE:${program}>" "-DOUTPUT=${tests}" "-DLABEL=${label}"
            -DTIMEOUT=600 "-DENVIRONMENT=${environment}" "-DFOLDER=${CMAKE_CURRENT_BINARY_DIR}" -P "${script}" VERBATIM)
    set_property(TARGET ${program} APPEND PROPERTY LINK_DEPENDS "${script}")
    set_property(DIRECTORY APPEND PROPERTY TEST_INCLUDE_FILES "${tests}")
endfunction()

# ov_add_fuzzer(<name> <source> LINK <targets>...): a libFuzzer program, built only by the fuzz preset.
function(ov_add_fuzzer name source)
    cmake_parse_arguments(arg "" "" "LINK" ${ARGN})
    if(NOT OV_BUILD_FUZZERS)
        return()
    endif()
    add_executable(${name} "${source}")
    target_include_directories(${name} PRIVATE "${PROJECT_SOURCE_DIR}/tests")
    target_compile_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    target_link_libraries(${name} PRIVATE ${arg_LINK} ovCompilerSettings)
endfunction()
