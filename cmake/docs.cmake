# The documentation site: cmake --build build --target docs

find_package(Doxygen QUIET)
find_package(Python3 QUIET COMPONENTS Interpreter)
if(NOT DOXYGEN_FOUND OR NOT Python3_FOUND)
  message(STATUS "Doxygen or Python isn't installed (on Debian: scripts/setup docs): "
                 "there is no target docs")
  return()
endif()
configure_file(docs/Doxyfile.in Doxyfile @ONLY)
add_custom_target(
  docs
  COMMAND ${CMAKE_COMMAND} -E rm -rf ${PROJECT_BINARY_DIR}/docs
  COMMAND ${CMAKE_COMMAND} -E make_directory ${PROJECT_BINARY_DIR}/docs
  COMMAND Doxygen::doxygen ${PROJECT_BINARY_DIR}/Doxyfile
  COMMENT "Documentation: ${PROJECT_BINARY_DIR}/docs/html/index.html"
  VERBATIM)
