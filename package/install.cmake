# What "cmake --install" puts where a host finds it, by find_package(acg) or by pkg-config.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/acg)

install(TARGETS acg EXPORT acgTargets FILE_SET HEADERS)
# In a folder of its own: where the system's loader searches, it would serve for a vendor's library that is missing.
install(TARGETS ACGReader330 EXPORT acgTargets DESTINATION ${CMAKE_INSTALL_LIBDIR}/acg)

write_basic_package_version_file(acgConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(EXPORT acgTargets NAMESPACE acg:: DESTINATION ${package})
install(FILES package/acgConfig.cmake ${PROJECT_BINARY_DIR}/acgConfigVersion.cmake DESTINATION ${package})

# The tree can be moved: the prefix follows from the place of the file.
file(RELATIVE_PATH to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
get_target_property(system_libraries acg LINK_LIBRARIES)
list(TRANSFORM system_libraries PREPEND -l)
list(JOIN system_libraries " " system_libraries)
configure_file(package/acg.pc.in acg.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/acg.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
