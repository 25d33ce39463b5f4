# Debian packages, one for each install component. scripts/package builds them for amd64 and armhf.
set(plx_packaging ${CMAKE_CURRENT_LIST_DIR}/packaging)
if(CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
  set(plx_debian_arch armhf)
else()
  set(plx_debian_arch amd64)
endif()

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME libplxutility)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "libplxutility maintainers <libplxutility@example.org>")
set(CPACK_PACKAGE_VENDOR "libplxutility")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_COMPONENTS_ALL library development tool documentation)
set(CPACK_STRIP_FILES ON)
set(CPACK_PLX_STRIP ${CMAKE_STRIP})
set(CPACK_PRE_BUILD_SCRIPTS ${plx_packaging}/settle_tree.cmake)
# The permissions are the packages' own, whatever the builder's umask.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_COMPONENTS_GROUPING ONE_PER_GROUP)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE ${plx_debian_arch})
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://example.org/libplxutility")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

# Dependencies are written down, for dpkg-shlibdeps knows nothing of a cross-built package's
# libraries; scripts/verify compares them with its answer where it has one.
set(plx_runtime_depends "libc6 (>= 2.34), libgcc-s1 (>= 3.5), libssl3 (>= 3.0.0), libstdc++6 (>= 11)")

set(plx_about
"Bounds-checked C functions, formatted output and input, containers, digests
and encodings, a lenient JSON reader, and AES requests with keys from key
files, behind a plain C interface.")

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libplxutility)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_SECTION libs)
set(CPACK_DEBIAN_LIBRARY_PACKAGE_DEPENDS ${plx_runtime_depends})
set(CPACK_DEBIAN_LIBRARY_PACKAGE_CONTROL_EXTRA ${plx_packaging}/triggers)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "utility library of a set-top box's native layer
${plx_about}
.
This package holds the shared library.")

set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libplxutility-dev)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "libplxutility (= ${PROJECT_VERSION}-1)")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "utility library of a set-top box's native layer (development)
${plx_about}
.
This package holds the headers, the CMake package and the pkg-config file.")

set(CPACK_DEBIAN_TOOL_PACKAGE_NAME plxutil)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS
    "libplxutility (= ${PROJECT_VERSION}-1), ${plx_runtime_depends}, libfmt9 (>= 9.1.0+ds1)")
set(CPACK_COMPONENT_TOOL_DESCRIPTION "provisions and checks a set-top box's key files
Makes, checks and rotates the key files that libplxutility reads, runs and
explains its JSON requests, and offers its digests and encodings on the
command line.")

set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_NAME libplxutility-doc)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOCUMENTATION_PACKAGE_SECTION doc)
set(CPACK_COMPONENT_DOCUMENTATION_DESCRIPTION "utility library of a set-top box's native layer (documentation)
${plx_about}
.
This package holds the guide, the reference as HTML and as section 3 manual
pages, and the examples.")

# What every Debian package carries: changelog and licence; and lintian's overrides with reasons.
foreach(component library development tool documentation)
  string(TOUPPER ${component} upper)
  set(package ${CPACK_DEBIAN_${upper}_PACKAGE_NAME})
  install(FILES ${plx_packaging}/copyright ${plx_packaging}/changelog.Debian
    DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc/${package} COMPONENT ${component}
    EXCLUDE_FROM_ALL)
  if(EXISTS ${plx_packaging}/${package}.lintian-overrides)
    install(FILES ${plx_packaging}/${package}.lintian-overrides RENAME ${package}
      DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/lintian/overrides COMPONENT ${component}
      EXCLUDE_FROM_ALL)
  endif()
endforeach()

install(FILES ${plx_packaging}/libplxutility-doc.doc-base RENAME libplxutility-doc
  DESTINATION ${CMAKE_INSTALL_DATAROOTDIR}/doc-base COMPONENT documentation EXCLUDE_FROM_ALL)

include(CPack)
