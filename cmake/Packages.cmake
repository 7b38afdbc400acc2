# Debian packages and the source archive, by CPack. scripts/package.sh builds them.
set(CPACK_VERBATIM_VARIABLES ON)
set(CPACK_PACKAGE_NAME zserial)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "The zserial developers <zserial@packages.invalid>")
# CPack's default: anything else would stand in front of the descriptions of both packages.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_NAME} built using CMake")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_GENERATOR DEB)
set(CPACK_COMPONENTS_ALL programs development)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/DebianDocuments.cmake)

set(CPACK_DEBIAN_PROGRAMS_PACKAGE_NAME zserial)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PROGRAMS_PACKAGE_SUGGESTS udev)
set(CPACK_COMPONENT_PROGRAMS_DESCRIPTION "uploader for the serial bootloaders of microcontrollers
zserial erases, writes, verifies and reads the flash and EEPROM of
microcontroller devices through their serial bootloader, and takes what it
must know about a device from a table that users can edit.

The package also has zserial-sim, a simulated device on a pseudo-terminal,
zserial-inspect, which checks tables and images before they are used, and
zserial-gang, which programs many devices side by side.")

# What the headers include and the libraries link.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libzserial-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "qtbase5-dev (>= 5.15), libqt5serialport5-dev (>= 5.15)")
# The documents of the libraries and their examples are beside all others.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_RECOMMENDS zserial)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SUGGESTS "cmake, libgtest-dev")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "libraries of the uploader zserial and its simulated device
The library zserial::core erases, writes, verifies and reads the flash and
EEPROM of microcontroller devices through their serial bootloader.

The library zserial::sim is a simulated device on a pseudo-terminal, for
tests of programs that do the same. Both are static and made for CMake:
find_package(zserial).")

set(CPACK_SOURCE_GENERATOR TGZ)
set(CPACK_SOURCE_PACKAGE_FILE_NAME zserial-${PROJECT_VERSION})
string(REGEX REPLACE "([][+.*()^$?|\\\\])" "\\\\\\1" source_pattern "${PROJECT_SOURCE_DIR}")
set(CPACK_SOURCE_IGNORE_FILES "^${source_pattern}/([.]git|[.]cache|build|build-[^/]*)(/|$)"
    /__pycache__/ "/compile_commands[.]json$")
include(CPack)
