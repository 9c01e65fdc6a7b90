# What "cmake --install" puts where a host finds it, by find_package(acg) or by pkg-config.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(package ${CMAKE_INSTALL_LIBDIR}/cmake/acg)

install(DIRECTORY ${PROJECT_BINARY_DIR}/include/acg DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS acg EXPORT acgTargets)
install(TARGETS acg-program)
# In a folder of its own: where the system's loader searches, it would serve for a vendor's library that is missing.
install(TARGETS ACGReader330 EXPORT acgTargets DESTINATION ${CMAKE_INSTALL_LIBDIR}/acg)

write_basic_package_version_file(acgConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(EXPORT acgTargets NAMESPACE acg:: DESTINATION ${package})
install(FILES cmake/acgConfig.cmake ${PROJECT_BINARY_DIR}/acgConfigVersion.cmake DESTINATION ${package})

# The tree can be moved: the prefix follows from the place of the file.
file(RELATIVE_PATH to_prefix /${CMAKE_INSTALL_LIBDIR}/pkgconfig /)
list(TRANSFORM platform_libraries PREPEND -l OUTPUT_VARIABLE system_libraries)
list(JOIN system_libraries " " system_libraries)
configure_file(cmake/acg.pc.in acg.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/acg.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
