# What a host installs, in four components that are also the Debian packages: the library, what is
# needed to build against it, the tool, and the documentation.
include(CMakePackageConfigHelpers)

set(plx_package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/plxutility)

install(TARGETS plxutility EXPORT plxutility
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR} COMPONENT library NAMELINK_SKIP)

# Development: headers, find_package, pkg-config.
install(DIRECTORY ${PROJECT_SOURCE_DIR}/include/plx
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development FILES_MATCHING PATTERN "*.h")
install(EXPORT plxutility NAMESPACE plxutility:: FILE plxutility-targets.cmake
  DESTINATION ${plx_package_dir} COMPONENT development)
configure_package_config_file(
  ${CMAKE_CURRENT_LIST_DIR}/plxutility-config.cmake.in plxutility-config.cmake
  INSTALL_DESTINATION ${plx_package_dir} NO_SET_AND_CHECK_MACRO)
write_basic_package_version_file(plxutility-config-version.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/plxutility-config.cmake
              ${PROJECT_BINARY_DIR}/plxutility-config-version.cmake
  DESTINATION ${plx_package_dir} COMPONENT development)

# Paths below the prefix stay relative to it, so that the file follows a moved tree
# (pkg-config --define-prefix).
foreach(kind LIB INCLUDE)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${kind}DIR}")
    set(plx_pc_${kind}DIR ${CMAKE_INSTALL_${kind}DIR})
  else()
    set(plx_pc_${kind}DIR "\${prefix}/${CMAKE_INSTALL_${kind}DIR}")
  endif()
endforeach()
# The prefix is known at install time alone (cmake --install --prefix).
set(plx_pc_prefix "@plx_prefix@")
configure_file(${CMAKE_CURRENT_LIST_DIR}/plxutility.pc.in plxutility.pc.in @ONLY)
install(CODE "
  set(plx_prefix \"\${CMAKE_INSTALL_PREFIX}\")
  configure_file(\"${PROJECT_BINARY_DIR}/plxutility.pc.in\" \"${PROJECT_BINARY_DIR}/plxutility.pc\" @ONLY)"
  COMPONENT development)
install(FILES ${PROJECT_BINARY_DIR}/plxutility.pc
  DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig COMPONENT development)

# The tool, its manual pages and completion, and the debugging twin that a program preloads.
if(PLX_BUILD_TOOLS)
  install(TARGETS plxutil RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR} COMPONENT tool)
  install(TARGETS plxutility-debug
    LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}/plxutility COMPONENT tool)
  install(DIRECTORY ${PROJECT_BINARY_DIR}/man/man1
    DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT tool OPTIONAL)
  install(FILES ${PROJECT_SOURCE_DIR}/tools/completion/plxutil
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/bash-completion/completions COMPONENT tool)
endif()

# Documentation: pages, examples, and the reference where scripts/docs has made one.
set(PLX_REFERENCE_DIR "${PROJECT_SOURCE_DIR}/build/docs" CACHE PATH
    "Where scripts/docs has written html/ and man/")
install(FILES ${PROJECT_SOURCE_DIR}/README.md ${PROJECT_SOURCE_DIR}/CHANGELOG.md
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation OPTIONAL)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/docs
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation FILES_MATCHING PATTERN "*.md"
  PATTERN "*.svg" PATTERN reference EXCLUDE)
install(DIRECTORY ${PROJECT_SOURCE_DIR}/examples
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation FILES_MATCHING
  PATTERN "*.c" PATTERN "*.cc")
install(DIRECTORY ${PLX_REFERENCE_DIR}/html
  DESTINATION ${CMAKE_INSTALL_DOCDIR} COMPONENT documentation OPTIONAL)
install(DIRECTORY ${PLX_REFERENCE_DIR}/man/man3
  DESTINATION ${CMAKE_INSTALL_MANDIR} COMPONENT documentation OPTIONAL)
