# What `cmake --install` puts down for other programs: headers, the two libraries as targets of
# find_package(GeneralUtilities) and as pkg-config files, and genutil.
include(CMakePackageConfigHelpers)

set_target_properties(generalutilities-core PROPERTIES EXPORT_NAME Core)
target_link_libraries(generalutilities-core
                      INTERFACE "$<INSTALL_INTERFACE:${GENERALUTILITIES_CORE_LINK_NAMES}>")

set(package_folder ${CMAKE_INSTALL_LIBDIR}/cmake/GeneralUtilities)
install(TARGETS GeneralUtilities EXPORT GeneralUtilitiesTargets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS generalutilities-core EXPORT GeneralUtilitiesCoreTargets
        ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR})
foreach(export GeneralUtilitiesTargets GeneralUtilitiesCoreTargets)
  install(EXPORT ${export} NAMESPACE GeneralUtilities:: DESTINATION ${package_folder})
endforeach()
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/generalutilities
        DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS genutil RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

configure_package_config_file(cmake/GeneralUtilitiesConfig.cmake.in GeneralUtilitiesConfig.cmake
                              INSTALL_DESTINATION ${package_folder})
write_basic_package_version_file(GeneralUtilitiesConfigVersion.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/GeneralUtilitiesConfig.cmake
              ${PROJECT_BINARY_DIR}/GeneralUtilitiesConfigVersion.cmake
        DESTINATION ${package_folder})

file(RELATIVE_PATH GENERALUTILITIES_PREFIX "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
list(TRANSFORM GENERALUTILITIES_CORE_LINK_NAMES PREPEND "-l" OUTPUT_VARIABLE core_link_flags)
list(JOIN core_link_flags " " GENERALUTILITIES_CORE_LINK_FLAGS)
foreach(name generalutilities generalutilities-core)
  configure_file(cmake/${name}.pc.in ${name}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${name}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()
