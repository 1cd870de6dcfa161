# Manuals and changelogs are compressed in a package.
file(GLOB_RECURSE texts ${CPACK_TEMPORARY_DIRECTORY}/*)
list(FILTER texts INCLUDE REGEX "/share/man/man[1-9]/[^/]+[1-9]$|/share/doc/[^/]+/changelog$")
foreach(text IN LISTS texts)
  execute_process(COMMAND gzip -9n ${text} COMMAND_ERROR_IS_FATAL ANY)
endforeach()
