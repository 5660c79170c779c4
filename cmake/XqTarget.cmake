# SPDX-License-Identifier: Apache-2.0

# Applies the compiler settings that all code of this repository shares.
function(xq_target name)
    target_compile_features(${name} PUBLIC cxx_std_17)
    target_compile_options(${name} PRIVATE -Wall -Wextra -Wpedantic -Wnon-virtual-dtor)
    if(XQ_WERROR)
        target_compile_options(${name} PRIVATE -Werror)
    endif()
    if(XQ_SANITIZE)
        target_compile_options(${name} PRIVATE
            -fsanitize=${XQ_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
        target_link_options(${name} PUBLIC -fsanitize=${XQ_SANITIZE})
    endif()
    target_compile_definitions(${name} PRIVATE
        QT_NO_KEYWORDS QT_NO_CAST_FROM_ASCII QT_NO_FOREACH
        QT_DEPRECATED_WARNINGS QT_DISABLE_DEPRECATED_BEFORE=0x050f00)
    set_target_properties(${name} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
    )
endfunction()
