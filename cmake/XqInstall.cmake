# SPDX-License-Identifier: Apache-2.0

# What an installation holds: the library, the reference platform unless another one is used, their
# headers under the paths by which they are included, the files that let other projects find them,
# and the host's program with its data. Everything in it may be moved to another folder as a whole.

set(XQ_CMAKE_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/XqVideoOverlay")
set(XQ_PKGCONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")

set(installed_libraries XqVideoOverlay)
if(NOT VELMAR_PLATFORM_PACKAGE)
    list(APPEND installed_libraries VelmarPlatform)
endif()
set_target_properties(${installed_libraries} PROPERTIES INSTALL_RPATH "$ORIGIN")

# The platform has an export set of its own, so that a host can take another one in its place.
install(TARGETS XqVideoOverlay EXPORT XqVideoOverlayTargets
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
)

foreach(header IN LISTS XQ_OVERLAY_HEADERS)
    get_filename_component(folder "${header}" DIRECTORY)
    install(FILES "videooverlay/${header}"
        DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/videooverlay/${folder}")
endforeach()
install(FILES "${PROJECT_BINARY_DIR}/videooverlay/xqvideooverlay_export.h"
    DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/videooverlay")

# A foreign platform package brings the headers of its own.
set(XQ_PLATFORM_FILE "")
set(XQ_PLATFORM_MOC_HEADERS "")
if(NOT VELMAR_PLATFORM_PACKAGE)
    set(XQ_PLATFORM_FILE "libVelmarPlatform.so.1")
    install(TARGETS VelmarPlatform EXPORT VelmarPlatformTargets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}"
    )
    install(EXPORT VelmarPlatformTargets NAMESPACE Velmar:: DESTINATION "${XQ_CMAKE_DIR}")
    foreach(header IN LISTS VELMAR_PLATFORM_HEADERS)
        get_filename_component(folder "${header}" DIRECTORY)
        install(FILES "platform/${header}"
            DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/platform/${folder}")
        file(STRINGS "${PROJECT_SOURCE_DIR}/platform/${header}" has_meta_object REGEX "^ *Q_(OBJECT|GADGET)$")
        if(has_meta_object)
            list(APPEND XQ_PLATFORM_MOC_HEADERS "platform/${header}")
        endif()
    endforeach()
endif()

install(EXPORT XqVideoOverlayTargets NAMESPACE Velmar:: DESTINATION "${XQ_CMAKE_DIR}")
configure_package_config_file(
    "${PROJECT_SOURCE_DIR}/cmake/XqVideoOverlayConfig.cmake.in"
    "${PROJECT_BINARY_DIR}/cmake/XqVideoOverlayConfig.cmake"
    INSTALL_DESTINATION "${XQ_CMAKE_DIR}"
    PATH_VARS CMAKE_INSTALL_INCLUDEDIR
    NO_SET_AND_CHECK_MACRO
)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/cmake/XqVideoOverlayConfigVersion.cmake"
    COMPATIBILITY SameMajorVersion)
install(FILES
    "${PROJECT_BINARY_DIR}/cmake/XqVideoOverlayConfig.cmake"
    "${PROJECT_BINARY_DIR}/cmake/XqVideoOverlayConfigVersion.cmake"
    DESTINATION "${XQ_CMAKE_DIR}"
)

# The pkg-config file finds its prefix from where it lies itself.
file(RELATIVE_PATH XQ_PC_PREFIX
    "${CMAKE_INSTALL_PREFIX}/${XQ_PKGCONFIG_DIR}" "${CMAKE_INSTALL_PREFIX}")
string(REGEX REPLACE "/$" "" XQ_PC_PREFIX "${XQ_PC_PREFIX}")
set(XQ_PC_PLATFORM_LIBS "")
if(NOT VELMAR_PLATFORM_PACKAGE)
    set(XQ_PC_PLATFORM_LIBS " -lVelmarPlatform")
endif()
configure_file("${PROJECT_SOURCE_DIR}/cmake/xqvideooverlay.pc.in"
    "${PROJECT_BINARY_DIR}/cmake/xqvideooverlay.pc" @ONLY)
install(FILES "${PROJECT_BINARY_DIR}/cmake/xqvideooverlay.pc" DESTINATION "${XQ_PKGCONFIG_DIR}")

if(TARGET xqosd)
    file(RELATIVE_PATH XQ_LIBRARIES_FROM_PROGRAM
        "${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_BINDIR}"
        "${CMAKE_INSTALL_PREFIX}/${CMAKE_INSTALL_LIBDIR}")
    set_target_properties(xqosd PROPERTIES INSTALL_RPATH "$ORIGIN/${XQ_LIBRARIES_FROM_PROGRAM}")
    install(TARGETS xqosd RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
    install(DIRECTORY data/catalogs data/demo data/profiles data/schema data/translations
        DESTINATION "${CMAKE_INSTALL_DATADIR}/xqosd"
        FILES_MATCHING PATTERN "*.csv" PATTERN "*.png" PATTERN "*.json" PATTERN "*.rng"
        PATTERN "*.xml")
    install(FILES data/OsdSettings.xml DESTINATION "${CMAKE_INSTALL_DATADIR}/xqosd")
endif()
