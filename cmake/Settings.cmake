# The compiler settings of every target in this tree.
function(zserial_settings target)
    target_compile_features(${target} PUBLIC cxx_std_17)
    set_target_properties(${target} PROPERTIES CXX_EXTENSIONS OFF)
    target_compile_definitions(${target} PRIVATE
        QT_DISABLE_DEPRECATED_BEFORE=0x050F00
        QT_NO_CAST_FROM_ASCII
        QT_NO_CAST_TO_ASCII
        QT_NO_FOREACH
        QT_NO_KEYWORDS
        QT_NO_NARROWING_CONVERSIONS_IN_CONNECT
        QT_NO_URL_CAST_FROM_STRING)
    target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
        -Woverloaded-virtual -Wcast-align -Wconversion -Wsign-conversion -Wold-style-cast)
    if(ZSERIAL_WERROR)
        target_compile_options(${target} PRIVATE -Werror)
    endif()
    if(ZSERIAL_SANITIZE)
        target_compile_options(${target} PRIVATE -fsanitize=${ZSERIAL_SANITIZE}
            -fno-sanitize-recover=all -fno-omit-frame-pointer)
        target_link_options(${target} PUBLIC -fsanitize=${ZSERIAL_SANITIZE})
    endif()
    if(ZSERIAL_COVERAGE)
        target_compile_options(${target} PRIVATE --coverage)
        target_link_options(${target} PUBLIC --coverage)
    endif()
endfunction()

# The settings of a library of this tree. Only libraries declare Qt objects. All of them share the
# headers that the first one parses.
function(zserial_library target)
    zserial_settings(${target})
    set_target_properties(${target} PROPERTIES AUTOMOC ON)
    if(target STREQUAL zserial_core)
        target_precompile_headers(${target} PRIVATE ${PROJECT_SOURCE_DIR}/cmake/precompiled.h)
    else()
        target_precompile_headers(${target} REUSE_FROM zserial_core)
    endif()
endfunction()

# A program that a plain build leaves at the top of the build folder, and that is installed with its
# manual page.
function(zserial_program target)
    zserial_settings(${target})
    set_target_properties(${target} PROPERTIES RUNTIME_OUTPUT_DIRECTORY ${PROJECT_BINARY_DIR})
    if(ZSERIAL_INSTALL)
        install(TARGETS ${target} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT programs)
        install(FILES ${PROJECT_SOURCE_DIR}/packaging/man/${target}.1
            DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT programs)
    endif()
endfunction()
