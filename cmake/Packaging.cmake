# `cpack -G ZIP` in the Windows build: Tallivex-<version>-win64.zip with the programs, the
# help documents (installed with the desktop program) and a Japanese read-me, all in one
# folder; nothing to install beside them (the runtime is linked statically).
if(WIN32)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/windows/お読みください.txt DESTINATION ${CMAKE_INSTALL_BINDIR})
  set(CPACK_SYSTEM_NAME win64)
endif()
set(CPACK_PACKAGE_NAME Tallivex)
set(CPACK_PACKAGE_VENDOR Tallivex)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_GENERATOR ZIP)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_STRIP_FILES ON)
include(CPack)
