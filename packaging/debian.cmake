# The Debian packages of what cmake --install installs, one for each component; scripts/package builds
# and tries them.
set(HVK3_PACKAGE_MAINTAINER "The owner of ostrevanhvk3 <owner@ostrevanhvk3.example>"
    CACHE STRING "Who answers for the packages")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_CONTACT "${HVK3_PACKAGE_MAINTAINER}")
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# It would come in front of the descriptions of all packages.
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "")

configure_file(debian/changelog.in debian/changelog @ONLY)
set(changelog "${CMAKE_CURRENT_BINARY_DIR}/debian/changelog")
add_custom_command(
  OUTPUT "${changelog}.gz"
  COMMAND gzip --best --no-name --keep --force "${changelog}"
  DEPENDS "${changelog}"
  VERBATIM)
add_custom_target(hvk3_changelog ALL DEPENDS "${changelog}.gz")
add_dependencies(hvk3_installed hvk3_changelog)

# hvk3_package(COMPONENT NAME SECTION DESCRIPTION LINE... [DEPENDS NAME...] [RECOMMENDS NAME...]
# [SUGGESTS NAME...]): the names are those of other packages of this tree, whose versions are one.
function(hvk3_package component name section)
  cmake_parse_arguments(PARSE_ARGV 3 arg "" "" "DESCRIPTION;DEPENDS;RECOMMENDS;SUGGESTS")
  install(FILES "${CMAKE_CURRENT_SOURCE_DIR}/debian/copyright" "${changelog}.gz"
          DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${name}"
          COMPONENT "${component}" EXCLUDE_FROM_ALL)
  set(CPACK_COMPONENTS_ALL ${CPACK_COMPONENTS_ALL} "${component}" PARENT_SCOPE)
  string(TOUPPER "${component}" component)
  set(CPACK_DEBIAN_${component}_PACKAGE_NAME "${name}" PARENT_SCOPE)
  set(CPACK_DEBIAN_${component}_PACKAGE_SECTION "${section}" PARENT_SCOPE)
  list(JOIN arg_DESCRIPTION "\n" description)
  set(CPACK_DEBIAN_${component}_DESCRIPTION "${description}" PARENT_SCOPE)
  foreach(relation IN ITEMS DEPENDS RECOMMENDS SUGGESTS)
    list(TRANSFORM arg_${relation} APPEND " (= ${PROJECT_VERSION})")
    list(JOIN arg_${relation} ", " others)
    set(CPACK_DEBIAN_${component}_PACKAGE_${relation} "${others}" PARENT_SCOPE)
  endforeach()
endfunction()

hvk3_package(
  runtime libostrevanhvk3 libs
  DESCRIPTION "frame grabber plug-in for HVK3 fingerprint scanners"
              "A capture application loads this library at run time to drive optical"
              "fingerprint scanners of the HVK3 family. The libraries of the scanner's"
              "maker, which it needs to do so, are not part of it.")
set(CPACK_DEBIAN_RUNTIME_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_SOURCE_DIR}/debian/triggers")

hvk3_package(
  dev libostrevanhvk3-dev libdevel
  DESCRIPTION "headers and documentation of the HVK3 plug-in"
              "What it takes to build an application that loads the frame grabber plug-in"
              "for HVK3 fingerprint scanners: headers, a CMake package, a pkg-config file,"
              "pages with examples."
  DEPENDS libostrevanhvk3
  RECOMMENDS ostrevanhvk3-simulator)

hvk3_package(
  simulator ostrevanhvk3-simulator devel
  DESCRIPTION "simulated HVK3 fingerprint scanners"
              "Stand-ins for the libraries of the scanner's maker, with which the frame"
              "grabber plug-in works without a scanner. They lie in a folder where the"
              "loader does not look.")

# No machine that has scanners gets the simulator unasked.
hvk3_package(
  tools ostrevanhvk3-tools utils
  DESCRIPTION "command line tool for HVK3 fingerprint scanners"
              "Lists and describes scanners, captures finger images, judges whether a"
              "finger is live, and finds out why a scanner does not show up."
  DEPENDS libostrevanhvk3
  SUGGESTS ostrevanhvk3-simulator)

# Apart from the tool, which needs no display.
if(HVK3_VIEWER)
  hvk3_package(
    viewer ostrevanhvk3-viewer graphics
    DESCRIPTION "window with the live image of an HVK3 fingerprint scanner"
                "Shows the live image as it comes, the settled finger beside it and how live"
                "it is, and has switches for what the scanner can do."
    DEPENDS libostrevanhvk3
    SUGGESTS ostrevanhvk3-simulator)
endif()

include(CPack)
