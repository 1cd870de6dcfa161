# Debian packages, by the target `package`: the library, what programs are built with,
# and the program mvk.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "Mavok developers <developers@mavok.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "") # each component has its own
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PRE_BUILD_SCRIPTS ${PROJECT_SOURCE_DIR}/cmake/compress.cmake)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^(aarch64|arm64)$")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE arm64)
elseif(CMAKE_SYSTEM_PROCESSOR MATCHES "^(x86_64|AMD64)$")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE amd64)
endif()
set(same_library "libmavokresampler (= ${PROJECT_VERSION})")

# The library's SONAME has no version: hosts load it by this name. So there can't be a
# shlibs file, nor two versions side by side, and what depends on it says so itself.
set(CPACK_COMPONENTS_ALL library dev)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libmavokresampler)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SHLIBDEPS ON)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION
    "${PROJECT_DESCRIPTION}
A resampler as a loadable component, a limiter, Fourier and cosine transforms,
filter banks, a phase shifter, and kernels over blocks and vectors.")

set(CPACK_DEBIAN_DEV_PACKAGE_NAME libmavokresampler-dev)
set(CPACK_DEBIAN_DEV_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEV_PACKAGE_DEPENDS ${same_library})
set(CPACK_COMPONENT_DEV_DESCRIPTION
    "${PROJECT_DESCRIPTION}: development files
C headers, the CMake package, the pkg-config file, and an example for each family.")

set(packages libmavokresampler=library libmavokresampler-dev=dev)
if(TARGET mvk)
  list(APPEND CPACK_COMPONENTS_ALL tools)
  list(APPEND packages mavokresampler-tools=tools)
  # The program loads the library at run time, which nobody sees but us.
  set(CPACK_DEBIAN_TOOLS_PACKAGE_NAME mavokresampler-tools)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SECTION sound)
  set(CPACK_DEBIAN_TOOLS_PACKAGE_DEPENDS ${same_library})
  set(CPACK_DEBIAN_TOOLS_PACKAGE_SHLIBDEPS ON)
  set(CPACK_COMPONENT_TOOLS_DESCRIPTION
      "${PROJECT_DESCRIPTION}: the program mvk
Changes rate, level and phase of audio files, and shows their spectra.")
endif()

foreach(package IN LISTS packages)
  string(REPLACE "=" ";" package ${package})
  list(GET package 0 name)
  list(GET package 1 component)
  install(FILES LICENSE DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} RENAME copyright
          COMPONENT ${component})
  install(FILES CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/${name} RENAME changelog
          COMPONENT ${component})
endforeach()
install(
  DIRECTORY examples
  DESTINATION ${CMAKE_INSTALL_DATADIR}/doc/libmavokresampler-dev
  COMPONENT dev
  FILES_MATCHING
  PATTERN "*.[ch]")

include(CPack)
