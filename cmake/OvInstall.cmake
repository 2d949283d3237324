# Install rules and the package that find_package(OrvaneVeldris) finds.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# ov_install_library(<target>): installs a library made by ov_add_library with its public headers.
function(ov_install_library name)
    if(NOT OV_INSTALL)
        return()
    endif()
    set_property(GLOBAL APPEND PROPERTY OV_INSTALLED_LIBRARIES ${name})
    install(TARGETS ${name} EXPORT OrvaneVeldrisTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
        RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    install(DIRECTORY "${CMAKE_CURRENT_SOURCE_DIR}/" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${name}"
        FILES_MATCHING PATTERN "*.h" PATTERN "*Internal.h" EXCLUDE PATTERN "detail" EXCLUDE)
endfunction()

if(OV_INSTALL)
    # Installed libraries and programs find each other wherever the prefix is moved to.
    file(RELATIVE_PATH bin_to_lib "${CMAKE_INSTALL_FULL_BINDIR}" "${CMAKE_INSTALL_FULL_LIBDIR}")
    set(CMAKE_INSTALL_RPATH "$ORIGIN" "$ORIGIN/${bin_to_lib}")

    install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DOCDIR}")
endif()

# ov_install_package(): the files by which others find the installed libraries; called when all libraries are known.
function(ov_install_package)
    if(NOT OV_INSTALL)
        return()
    endif()
    get_property(libraries GLOBAL PROPERTY OV_INSTALLED_LIBRARIES)
    list(TRANSFORM libraries REPLACE "^ov" "" OUTPUT_VARIABLE OV_COMPONENTS)
    set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/OrvaneVeldris")
    configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/OrvaneVeldrisConfig.cmake.in"
        "${PROJECT_BINARY_DIR}/OrvaneVeldrisConfig.cmake" INSTALL_DESTINATION "${package_dir}")
    write_basic_package_version_file("${PROJECT_BINARY_DIR}/OrvaneVeldrisConfigVersion.cmake"
        VERSION ${PROJECT_VERSION} COMPATIBILITY SameMinorVersion)
    install(FILES "${PROJECT_BINARY_DIR}/OrvaneVeldrisConfig.cmake"
        "${PROJECT_BINARY_DIR}/OrvaneVeldrisConfigVersion.cmake" DESTINATION "${package_dir}")
    install(EXPORT OrvaneVeldrisTargets NAMESPACE Orvane:: DESTINATION "${package_dir}")

    set(pkgconfig_dir "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
    file(RELATIVE_PATH OV_PC_TO_PREFIX "/${pkgconfig_dir}" "/")
    set(OV_PC_LIBS "")
    foreach(library IN LISTS libraries)
        get_target_property(type ${library} TYPE)
        if(NOT type STREQUAL "INTERFACE_LIBRARY")
            string(PREPEND OV_PC_LIBS "-l${library} ") # those that stand on others first
        endif()
    endforeach()
    configure_file("${PROJECT_SOURCE_DIR}/cmake/OrvaneVeldris.pc.in" "${PROJECT_BINARY_DIR}/OrvaneVeldris.pc" @ONLY)
    install(FILES "${PROJECT_BINARY_DIR}/OrvaneVeldris.pc" DESTINATION "${pkgconfig_dir}")
endfunction()
