# What a host needs to build against the library: headers, find_package(Zelto), pkg-config.
include(CMakePackageConfigHelpers)

install(TARGETS zelto EXPORT ZeltoTargets
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_COMPONENT development)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/zelto DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}
    COMPONENT development
    FILES_MATCHING PATTERN "*.h" PATTERN "internal" EXCLUDE)
install(EXPORT ZeltoTargets NAMESPACE Zelto::
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zelto COMPONENT development)

configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/ZeltoConfig.cmake.in
    ${PROJECT_BINARY_DIR}/ZeltoConfig.cmake
    INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zelto)
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ZeltoConfigVersion.cmake
    COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ZeltoConfig.cmake ${PROJECT_BINARY_DIR}/ZeltoConfigVersion.cmake
    DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/Zelto COMPONENT development)

file(RELATIVE_PATH ZELTO_PC_TO_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
string(REGEX REPLACE "/$" "" ZELTO_PC_TO_PREFIX "${ZELTO_PC_TO_PREFIX}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/zelto.pc.in ${PROJECT_BINARY_DIR}/zelto.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/zelto.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig
    COMPONENT development)
