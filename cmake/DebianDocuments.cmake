# Run by CPack once the files of the packages are gathered: what Debian wants beside them. Each package
# gets its copyright file and changelogs; manual pages and changelogs are compressed.
cmake_minimum_required(VERSION 3.25)
if(NOT CPACK_GENERATOR STREQUAL "DEB")
    return()
endif()

set(debian ${CMAKE_CURRENT_LIST_DIR}/../packaging/debian)
file(GLOB folders LIST_DIRECTORIES true ${CPACK_TEMPORARY_DIRECTORY}/*)
foreach(folder IN LISTS folders)
    get_filename_component(component ${folder} NAME)
    string(TOUPPER ${component} key)
    set(package ${CPACK_DEBIAN_${key}_PACKAGE_NAME})
    set(documents ${folder}/usr/share/doc/${package})
    file(MAKE_DIRECTORY ${documents})
    file(COPY ${debian}/copyright DESTINATION ${documents} NO_SOURCE_PERMISSIONS)
    configure_file(${debian}/changelog ${documents}/changelog.Debian COPYONLY NO_SOURCE_PERMISSIONS)
    configure_file(${debian}/../../CHANGELOG.md ${documents}/changelog COPYONLY NO_SOURCE_PERMISSIONS)
    file(GLOB_RECURSE pages ${folder}/usr/share/man/*)
    # Without the time and the name of the file, so that the same tree gives the same packages.
    execute_process(COMMAND gzip -9n ${documents}/changelog ${documents}/changelog.Debian ${pages}
        COMMAND_ERROR_IS_FATAL ANY)
endforeach()
