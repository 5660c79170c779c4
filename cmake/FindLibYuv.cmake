# SPDX-License-Identifier: Apache-2.0

# Finds libyuv, which comes without a CMake package and without a pkg-config file.
# Defines LibYuv_FOUND and the target LibYuv::LibYuv.
find_path(LibYuv_INCLUDE_DIR NAMES libyuv.h)
find_library(LibYuv_LIBRARY NAMES yuv)
mark_as_advanced(LibYuv_INCLUDE_DIR LibYuv_LIBRARY)

include(FindPackageHandleStandardArgs)
find_package_handle_standard_args(LibYuv REQUIRED_VARS LibYuv_LIBRARY LibYuv_INCLUDE_DIR)

if(LibYuv_FOUND AND NOT TARGET LibYuv::LibYuv)
    add_library(LibYuv::LibYuv UNKNOWN IMPORTED)
    set_target_properties(LibYuv::LibYuv PROPERTIES
        IMPORTED_LOCATION "${LibYuv_LIBRARY}"
        INTERFACE_INCLUDE_DIRECTORIES "${LibYuv_INCLUDE_DIR}"
    )
endif()
