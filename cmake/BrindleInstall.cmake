# What `cmake --install` puts into the prefix: the two shared libraries, every public header in
# one folder, the brindle tool, a CMake package (find_package(BrindleImaging CONFIG) gives the
# targets BrindleImaging::BrindleImaging and BrindleImaging::BrindleCore) and pkg-config files
# (BrindleImaging.pc, BrindleCore.pc). `cpack -G DEB` packs the same tree as a Debian package.
include(CMakePackageConfigHelpers)

set(BRINDLE_CMAKE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/BrindleImaging)

install(TARGETS BrindleCore BrindleImaging EXPORT BrindleImagingTargets LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS brindle RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})

# The umbrella headers include every header of their library, so all of them are public.
file(GLOB_RECURSE BRINDLE_PUBLIC_HEADERS CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/BrindleCore/*.h
     ${PROJECT_SOURCE_DIR}/X-Platform/*.h ${PROJECT_SOURCE_DIR}/Platform/*.h)
install(FILES ${BRINDLE_PUBLIC_HEADERS} DESTINATION ${BRINDLE_INSTALL_INCLUDEDIR})

install(EXPORT BrindleImagingTargets NAMESPACE BrindleImaging:: DESTINATION ${BRINDLE_CMAKE_DIR})
configure_package_config_file(${CMAKE_CURRENT_LIST_DIR}/BrindleImagingConfig.cmake.in
                              ${PROJECT_BINARY_DIR}/BrindleImagingConfig.cmake
                              INSTALL_DESTINATION ${BRINDLE_CMAKE_DIR})
# Before 1.0 only the same minor version is compatible, as with the libraries' SONAME.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/BrindleImagingConfigVersion.cmake
                                 COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/BrindleImagingConfig.cmake ${PROJECT_BINARY_DIR}/BrindleImagingConfigVersion.cmake
        DESTINATION ${BRINDLE_CMAKE_DIR})

# The pkg-config files name the prefix from where they lie, so that any install prefix holds.
file(RELATIVE_PATH BRINDLE_PC_TO_PREFIX /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix)
string(REGEX REPLACE "/$" "" BRINDLE_PC_TO_PREFIX ${BRINDLE_PC_TO_PREFIX})
foreach(library BrindleCore BrindleImaging)
  configure_file(${CMAKE_CURRENT_LIST_DIR}/${library}.pc.in ${PROJECT_BINARY_DIR}/${library}.pc @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/${library}.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
endforeach()

# One Debian package of the libraries, the headers and the tool; its dependencies are found by
# dpkg-shlibdeps.
set(CPACK_PACKAGE_NAME brindleimaging)
set(CPACK_PACKAGE_VENDOR BrindleImaging)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Imaging library for 3-D microscopy, its headers and the brindle tool")
set(CPACK_PACKAGE_CONTACT "BrindleImaging developers <brindle@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION science)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_GENERATE_SHLIBS ON)
set(CPACK_STRIP_FILES ON)
include(CPack)
