# What `cmake --install` lays down: module, programs, engine headers and a CMake package.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Chalkpane)
set(module_dir ${CMAKE_INSTALL_LIBDIR}/chalkpane)

install(TARGETS chalkpane_engine EXPORT ChalkpaneTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        FILE_SET public_headers DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS Chalkpane LIBRARY DESTINATION ${module_dir})
foreach(program kel chalkpane)
  if(TARGET ${program})
    install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  endif()
endforeach()
if(TARGET kel)
  install(FILES examples/pitch.json examples/pitch.png DESTINATION ${CMAKE_INSTALL_DATADIR}/chalkpane)
endif()
install(EXPORT ChalkpaneTargets NAMESPACE Chalkpane:: DESTINATION ${package_dir})
configure_package_config_file(cmake/ChalkpaneConfig.cmake.in ${PROJECT_BINARY_DIR}/ChalkpaneConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ChalkpaneConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ChalkpaneConfig.cmake ${PROJECT_BINARY_DIR}/ChalkpaneConfigVersion.cmake
        DESTINATION ${package_dir})
