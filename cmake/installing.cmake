# Where cmake --install puts things, below the prefix. Debian has a folder for the libraries of each
# architecture; it is taken below every prefix, so that the packages hold what is installed by hand.
if(NOT DEFINED CMAKE_INSTALL_LIBDIR
   AND CMAKE_LIBRARY_ARCHITECTURE
   AND EXISTS /etc/debian_version)
  set(CMAKE_INSTALL_LIBDIR "lib/${CMAKE_LIBRARY_ARCHITECTURE}"
      CACHE PATH "Folder of the libraries, below the prefix")
endif()
include(GNUInstallDirs)

# What is installed may be moved as a whole, so that it has to find its parts from where it lies.
foreach(folder IN ITEMS BINDIR INCLUDEDIR LIBDIR DATADIR MANDIR DOCDIR)
  if(IS_ABSOLUTE "${CMAKE_INSTALL_${folder}}")
    message(FATAL_ERROR "CMAKE_INSTALL_${folder} is a folder below the prefix, without the prefix; "
                        "it can't be ${CMAKE_INSTALL_${folder}}")
  endif()
endforeach()

# No folders of the loader's: stand-ins and forwarders have the file names of the closed libraries.
set(HVK3_INSTALL_SIMULATOR_DIR "${CMAKE_INSTALL_LIBDIR}/ostrevanhvk3/simulator")
set(HVK3_INSTALL_RECORDER_DIR "${CMAKE_INSTALL_LIBDIR}/ostrevanhvk3/recorder")
set(HVK3_INSTALL_CONFIG_DIR "${CMAKE_INSTALL_LIBDIR}/cmake/OstrevanHVK3")
set(HVK3_INSTALL_PC_DIR "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
set(HVK3_INSTALL_COMPLETION_DIR "${CMAKE_INSTALL_DATADIR}/bash-completion/completions")
set(HVK3_INSTALL_DESKTOP_DIR "${CMAKE_INSTALL_DATADIR}/applications")
set(HVK3_INSTALL_ICON_DIR "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")

# Files get their modes whatever the umask is, the folders that CMake makes for them do not: those
# that are missing are made before.
set(HVK3_INSTALL_FOLDERS
    "${CMAKE_INSTALL_BINDIR}" "${CMAKE_INSTALL_INCLUDEDIR}" "${CMAKE_INSTALL_DOCDIR}/simulator"
    "${HVK3_INSTALL_SIMULATOR_DIR}" "${HVK3_INSTALL_RECORDER_DIR}" "${HVK3_INSTALL_CONFIG_DIR}"
    "${HVK3_INSTALL_PC_DIR}" "${HVK3_INSTALL_COMPLETION_DIR}" "${HVK3_INSTALL_DESKTOP_DIR}"
    "${HVK3_INSTALL_ICON_DIR}" "${CMAKE_INSTALL_MANDIR}/man1")
configure_file("${CMAKE_CURRENT_LIST_DIR}/make_folders.cmake.in" make_folders.cmake @ONLY)
install(SCRIPT "${CMAKE_CURRENT_BINARY_DIR}/make_folders.cmake")
