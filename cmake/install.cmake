# Library, headers, CMake package and pkg-config file, manual and completion, in the
# components library, dev and tools.

include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/mavokresampler)

install(TARGETS mavokresampler EXPORT mavokresampler LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
                                                             COMPONENT library)
install(
  DIRECTORY include/
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/mavokresampler
  COMPONENT dev
  FILES_MATCHING
  PATTERN "*.h")

install(EXPORT mavokresampler NAMESPACE mavokresampler:: FILE mavokresamplerTargets.cmake
        DESTINATION ${package_dir} COMPONENT dev)
configure_package_config_file(cmake/mavokresamplerConfig.cmake.in mavokresamplerConfig.cmake
                              INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(mavokresamplerConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/mavokresamplerConfig.cmake
              ${PROJECT_BINARY_DIR}/mavokresamplerConfigVersion.cmake
        DESTINATION ${package_dir} COMPONENT dev)

# The prefix is found from the file's own place, so that a copied tree works.
set(pc_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
cmake_path(RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${pc_dir}
           OUTPUT_VARIABLE pc_prefix)
configure_file(cmake/mavokresampler.pc.in mavokresampler.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/mavokresampler.pc DESTINATION ${pc_dir} COMPONENT dev)

if(TARGET mvk)
  configure_file(docs/man/mvk.1.in mvk.1 @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/mvk.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1
          COMPONENT tools)
  install(FILES tools/completion/mvk
          DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tools)
endif()
