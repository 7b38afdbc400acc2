# Where everything goes: the GNU directories, which a packager can move. The component `programs` is for
# users of the tools, `development` for those who build on the libraries.
include(CMakePackageConfigHelpers)

set(ZSERIAL_UDEV_RULES_DIR lib/udev/rules.d CACHE STRING "Where udev looks for rules")
set(ZSERIAL_BASH_COMPLETIONS_DIR ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
    CACHE STRING "Where bash looks for completions")
set(ZSERIAL_ZSH_COMPLETIONS_DIR ${CMAKE_INSTALL_DATADIR}/zsh/site-functions
    CACHE STRING "Where zsh looks for completions")
set(ZSERIAL_FISH_COMPLETIONS_DIR ${CMAKE_INSTALL_DATADIR}/fish/vendor_completions.d
    CACHE STRING "Where fish looks for completions")

# ---- Libraries ----

# The headers that other projects may include, which docs/embedding.md lists. They include no others.
target_sources(zserial_core PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES
    device/ZarnSerialDevice.h
    memory/AddressedBLOB.h
    memory/IntelHexFileRecordType.h
    memory/MemoryMap.h
    memory/zarnBLOB.h
    profile/MemoryType.h
    profile/Profile.h
    profile/Profiles.h)
set(libraries zserial_core)
if(ZSERIAL_BUILD_SIMULATOR)
    target_sources(zserial_sim PUBLIC FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR} FILES
        sim/device/Command.h
        sim/device/DeviceMemory.h
        sim/device/Error.h
        sim/device/Filters.h
        sim/device/Options.h
        sim/device/SimulatedDevice.h
        sim/rig/MemoryImage.h)
    list(APPEND libraries zserial_process zserial_sim)
endif()
set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/zserial)
install(TARGETS ${libraries} EXPORT zserialTargets
    ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT development
    FILE_SET HEADERS DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/zserial COMPONENT development)
install(EXPORT zserialTargets NAMESPACE zserial:: DESTINATION ${package_dir} COMPONENT development)
configure_package_config_file(cmake/zserialConfig.cmake.in zserialConfig.cmake
    INSTALL_DESTINATION ${package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(zserialConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/zserialConfig.cmake ${PROJECT_BINARY_DIR}/zserialConfigVersion.cmake
    DESTINATION ${package_dir} COMPONENT development)

# ---- Documents and examples, beside each other as in the source tree, so that their links work ----

install(FILES README.md CHANGELOG.md CONTRIBUTING.md DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT programs)
install(DIRECTORY docs DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT programs)
install(DIRECTORY inspect/schema DESTINATION ${CMAKE_INSTALL_DOCDIR}/inspect COMPONENT programs)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT programs
    PATTERN __pycache__ EXCLUDE
    REGEX "[.](sh|py)$" PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE
        GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
install(FILES packaging/man/zserial-device-table.5 DESTINATION ${CMAKE_INSTALL_MANDIR}/man5
    COMPONENT programs)

# ---- The system's side: completions and device rules ----

# Shells look for a file by the name of the command; one file completes all of our commands.
function(zserial_completions source name suffix directory)
    set(folder ${PROJECT_BINARY_DIR}/completions)
    configure_file(packaging/completions/${source} ${folder}/${source}/zserial${suffix} COPYONLY)
    install(FILES packaging/completions/${source} DESTINATION ${directory} RENAME ${name}
        COMPONENT programs)
    foreach(command IN LISTS ARGN)
        set(link ${folder}/${source}/${command}${suffix})
        file(CREATE_LINK zserial${suffix} ${link} SYMBOLIC)
        install(FILES ${link} DESTINATION ${directory} COMPONENT programs)
    endforeach()
endfunction()

set(companions zserial-inspect)
if(ZSERIAL_BUILD_SIMULATOR)
    list(APPEND companions zserial-sim)
endif()
if(ZSERIAL_BUILD_GANG)
    list(APPEND companions zserial-gang)
endif()
zserial_completions(zserial.bash zserial "" ${ZSERIAL_BASH_COMPLETIONS_DIR} ${companions})
zserial_completions(zserial.fish zserial.fish .fish ${ZSERIAL_FISH_COMPLETIONS_DIR} ${companions})
install(FILES packaging/completions/_zserial DESTINATION ${ZSERIAL_ZSH_COMPLETIONS_DIR}
    COMPONENT programs)
install(FILES packaging/udev/70-zserial.rules DESTINATION ${ZSERIAL_UDEV_RULES_DIR}
    COMPONENT programs)

include(cmake/Packages.cmake)
