# Install rules and the package that find_package(OrvaneVeldris) finds.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

# ov_install_library(<target>): installs a library made by ov_add_library with its public headers.
function(ov_install_library name)
    if(NOT OV_INSTALL)
        return()
    endif()
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

    set(package_dir "${CMAKE_INSTALL_LIBDIR}/cmake/OrvaneVeldris")
    configure_package_config_file("${CMAKE_CURRENT_LIST_DIR}/OrvaneVeldrisConfig.cmake.in"
        "${PROJECT_BINARY_DIR}/OrvaneVeldrisConfig.cmake" INSTALL_DESTINATION "${package_dir}")
    write_basic_package_version_file("${PROJECT_BINARY_DIR}/OrvaneVeldrisConfigVersion.cmake"
        COMPATIBILITY SameMinorVersion)
    install(FILES "${PROJECT_BINARY_DIR}/OrvaneVeldrisConfig.cmake"
        "${PROJECT_BINARY_DIR}/OrvaneVeldrisConfigVersion.cmake" DESTINATION "${package_dir}")
    install(EXPORT OrvaneVeldrisTargets NAMESPACE Orvane:: DESTINATION "${package_dir}")
endif()
