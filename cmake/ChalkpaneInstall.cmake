# What `cmake --install` lays down: module, programs with their man pages and completion, guides and examples, engine
# headers and a CMake package. The guides and examples lie to each other as in the repository, so that their links hold.
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Chalkpane)
set(module_dir ${CMAKE_INSTALL_LIBDIR}/chalkpane)
set(share_dir ${CMAKE_INSTALL_DATADIR}/chalkpane)
set(guide_dir ${CMAKE_INSTALL_DATADIR}/doc/chalkpane)

install(TARGETS chalkpane_engine EXPORT ChalkpaneTargets ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
        FILE_SET public_headers DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(TARGETS Chalkpane LIBRARY DESTINATION ${module_dir})

# Man page and completion are read off the program itself, so that they name what it has.
function(install_program program)
  set(man ${PROJECT_BINARY_DIR}/packaging/${program}.1)
  set(completion ${PROJECT_BINARY_DIR}/packaging/${program})
  set(sources ${PROJECT_SOURCE_DIR}/packaging)
  add_custom_command(
    OUTPUT ${man} ${completion}
    COMMAND ${sources}/make_man_page $<TARGET_FILE:${program}> ${PROJECT_VERSION} > ${man}
    COMMAND ${sources}/make_completion $<TARGET_FILE:${program}> > ${completion}
    DEPENDS ${program} ${sources}/make_man_page ${sources}/make_completion VERBATIM)
  add_custom_target(${program}_man ALL DEPENDS ${man} ${completion})
  add_dependencies(programs ${program}_man)
  install(TARGETS ${program} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
  install(FILES ${man} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
  install(FILES ${completion} DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions)
endfunction()
file(MAKE_DIRECTORY ${PROJECT_BINARY_DIR}/packaging)
foreach(program kel chalkpane)
  if(TARGET ${program} AND NOT CHALKPANE_SANITIZE)
    install_program(${program})
  endif()
endforeach()
if(TARGET kel)
  install(FILES examples/pitch.json examples/pitch.png DESTINATION ${share_dir}) # what `kel window` opens by itself
endif()
if(TARGET kel_window)
  install(FILES packaging/kel.desktop DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
endif()
install(FILES README.md CHANGELOG.md DESTINATION ${guide_dir})
install(DIRECTORY docs DESTINATION ${guide_dir} PATTERN "make_*" EXCLUDE PATTERN "*.in" EXCLUDE PATTERN "api*" EXCLUDE
        PATTERN "CMakeLists.txt" EXCLUDE)
install(DIRECTORY examples DESTINATION ${guide_dir} PATTERN "*.cpp" EXCLUDE PATTERN "*.h" EXCLUDE
        PATTERN "CMakeLists.txt" EXCLUDE PATTERN "embed*" EXCLUDE)
install(DIRECTORY examples/embed DESTINATION ${guide_dir}/examples)

install(EXPORT ChalkpaneTargets NAMESPACE Chalkpane:: DESTINATION ${package_dir})
configure_package_config_file(cmake/ChalkpaneConfig.cmake.in ${PROJECT_BINARY_DIR}/ChalkpaneConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(${PROJECT_BINARY_DIR}/ChalkpaneConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/ChalkpaneConfig.cmake ${PROJECT_BINARY_DIR}/ChalkpaneConfigVersion.cmake
        DESTINATION ${package_dir})

# `cpack` in the build folder makes the Debian package; scripts/check_package tries it.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME chalkpane)
set(CPACK_PACKAGE_CONTACT "Chalkpane developers <chalkpane@localhost>")
set(CPACK_PACKAGE_DESCRIPTION "Chalkpane is a telestrator module with its paint engine. With it come kel, a small renderer
to draw in, and chalkpane, which runs the engine's filters and brushes on picture files.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION graphics)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libgl1-mesa-dri, fonts-dejavu-core") # opened at run time, so no library names them
include(CPack)
