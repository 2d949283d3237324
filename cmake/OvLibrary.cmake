# ov_add_library(<name> [PUBLIC <targets>...] [PRIVATE <targets>...] [ALONE <regex>...] [HEADER_ONLY])
#
# Makes the library of the calling folder from every .cpp below it, as the target <name> with the alias
# Orvane::<name without ov>. PUBLIC and PRIVATE are the targets it stands on; the layers of the project are
# exactly these lists. Public headers are every .h below the folder but those of a folder named `detail` and
# those that reach for a third-party library (they end in Internal.h). ALONE: see ov_compile_by_folder.
set(OV_EXPORTS "${PROJECT_BINARY_DIR}/exports.map")
configure_file("${CMAKE_CURRENT_LIST_DIR}/exports.map.in" "${OV_EXPORTS}" @ONLY)

function(ov_add_library name)
    cmake_parse_arguments(arg "HEADER_ONLY" "" "PUBLIC;PRIVATE;ALONE" ${ARGN})
    file(GLOB_RECURSE sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
    string(REGEX REPLACE "^ov" "" short "${name}")

    if(arg_HEADER_ONLY)
        add_library(${name} INTERFACE)
        set(scope INTERFACE)
    else()
        add_library(${name} SHARED ${sources})
        set(scope PUBLIC)
        ov_compile_by_folder(${name} ALONE ${arg_ALONE})
        target_link_libraries(${name} PRIVATE ${arg_PRIVATE} $<BUILD_INTERFACE:ovCompilerSettings>)
        target_link_options(${name} PRIVATE "LINKER:--version-script=${OV_EXPORTS}")
        set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS "${OV_EXPORTS}")
        set_target_properties(${name} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}.${PROJECT_VERSION_MINOR})
    endif()
    add_library(Orvane::${short} ALIAS ${name})
    set_target_properties(${name} PROPERTIES EXPORT_NAME ${short})
    target_compile_features(${name} ${scope} cxx_std_20)
    target_include_directories(${name} ${scope}
        $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/src>
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
    target_link_libraries(${name} ${scope} ${arg_PUBLIC})
    ov_install_library(${name})
endfunction()
