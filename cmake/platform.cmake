# The platform's liblog and libcutils. Debian keeps them in a private folder,
# which the library's run path therefore names.

add_library(mvk_platform INTERFACE)
set(MVK_PLATFORM_DIR "")

if(NOT MVK_LOG STREQUAL standin)
  find_library(MVK_LIBLOG log PATH_SUFFIXES android)
  find_path(MVK_LIBLOG_INCLUDE android/log.h PATH_SUFFIXES android)
endif()
if(MVK_LIBLOG AND MVK_LIBLOG_INCLUDE)
  target_link_libraries(mvk_platform INTERFACE ${MVK_LIBLOG})
  target_include_directories(mvk_platform SYSTEM INTERFACE ${MVK_LIBLOG_INCLUDE})
  get_filename_component(MVK_PLATFORM_DIR ${MVK_LIBLOG} DIRECTORY)
elseif(MVK_LOG STREQUAL liblog)
  message(FATAL_ERROR "liblog isn't installed (on Debian: apt-get install android-liblog-dev)")
else()
  if(MVK_LOG STREQUAL auto)
    message(WARNING "liblog isn't installed (on Debian: apt-get install android-liblog-dev): "
                    "the library will write its log to standard error instead")
  endif()
  set(MVK_LOG_STANDIN ON)
  target_compile_definitions(mvk_platform INTERFACE MVK_LOG_STANDIN)
  target_sources(mvk_platform INTERFACE ${PROJECT_SOURCE_DIR}/core/log_standin.cpp)
endif()

# Hosts expect libcutils to come with the library, though nothing of it is called.
find_library(MVK_LIBCUTILS cutils PATH_SUFFIXES android)
if(MVK_LIBCUTILS)
  target_link_libraries(mvk_platform INTERFACE "-Wl,--push-state,--no-as-needed" ${MVK_LIBCUTILS}
                                               "-Wl,--pop-state")
  get_filename_component(MVK_PLATFORM_DIR ${MVK_LIBCUTILS} DIRECTORY)
else()
  message(WARNING "libcutils isn't installed (on Debian: apt-get install android-libcutils-dev): "
                  "the library will be linked without it")
endif()

if(MVK_PLATFORM_DIR)
  set(CMAKE_BUILD_RPATH ${MVK_PLATFORM_DIR})
  set(CMAKE_INSTALL_RPATH ${MVK_PLATFORM_DIR})
endif()
