# cmake --install: the shared library (versioned SONAME on Linux; the DLL with its import library
# on Windows), the C header and the C++ layer, the tools, a CMake package and a pkg-config file.
# Paths are relative to the prefix, so the installed tree can be moved as a whole.
include(CMakePackageConfigHelpers)

set(QOR_CMAKE_PACKAGE_DIR ${CMAKE_INSTALL_LIBDIR}/cmake/qor_lang2)

install(TARGETS qor_lang2 EXPORT qor_lang2Targets
  RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR}
  LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR}
  ARCHIVE DESTINATION ${CMAKE_INSTALL_LIBDIR}
  INCLUDES DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(FILES ${PROJECT_SOURCE_DIR}/include/qor_lang2.h ${PROJECT_SOURCE_DIR}/include/qor_lang2.hpp
  DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})

# The translation compiler is part of the package (qorlang_add_translations runs it); other
# tools are installed beside it when the build has them.
foreach(tool IN ITEMS qorlang kore_json)
  if(TARGET ${tool})
    if(tool STREQUAL "qorlang")
      install(TARGETS ${tool} EXPORT qor_lang2Targets RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    else()
      install(TARGETS ${tool} RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
    endif()
  endif()
endforeach()

install(EXPORT qor_lang2Targets NAMESPACE qor_lang2:: DESTINATION ${QOR_CMAKE_PACKAGE_DIR})
configure_package_config_file(${PROJECT_SOURCE_DIR}/cmake/qor_lang2Config.cmake.in
  ${PROJECT_BINARY_DIR}/qor_lang2Config.cmake INSTALL_DESTINATION ${QOR_CMAKE_PACKAGE_DIR})
# The SONAME carries the major version; a package of the same major version is what it links to.
write_basic_package_version_file(${PROJECT_BINARY_DIR}/qor_lang2ConfigVersion.cmake
  COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/qor_lang2Config.cmake ${PROJECT_BINARY_DIR}/qor_lang2ConfigVersion.cmake
  ${PROJECT_SOURCE_DIR}/cmake/QorLang2Translations.cmake
  DESTINATION ${QOR_CMAKE_PACKAGE_DIR})

# pkg-config: the prefix is found from the .pc file's own place (${pcfiledir}).
file(RELATIVE_PATH QOR_PC_PREFIX_FROM_PCDIR /prefix/${CMAKE_INSTALL_LIBDIR}/pkgconfig /prefix/)
string(REGEX REPLACE "/$" "" QOR_PC_PREFIX_FROM_PCDIR "${QOR_PC_PREFIX_FROM_PCDIR}")
configure_file(${PROJECT_SOURCE_DIR}/cmake/qor_lang2.pc.in ${PROJECT_BINARY_DIR}/qor_lang2.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/qor_lang2.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
