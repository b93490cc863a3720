# Windows: `cpack -G ZIP` in the Windows build makes Tallivex-<version>-win64.zip with the
# programs, the help documents (installed with the desktop program) and a Japanese
# read-me, all in one folder, with the English and Korean documents in en/ and ko/ inside
# it; nothing to install beside them (the runtime is linked statically).
# Linux: `cpack` (-G DEB) in a Linux build with the desktop program makes
# tallivex_<version>_<arch>.deb: the programs in /usr/bin, the help documents in
# /usr/share/tallivex (translations in its en/ and ko/), a menu entry with its icons and
# AppStream metadata.
set(CPACK_PACKAGE_NAME Tallivex)
set(CPACK_PACKAGE_VENDOR Tallivex)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_GENERATOR ZIP)
set(CPACK_INCLUDE_TOPLEVEL_DIRECTORY ON)
set(CPACK_STRIP_FILES ON)

if(WIN32)
  install(FILES ${PROJECT_SOURCE_DIR}/docs/windows/お読みください.txt DESTINATION ${CMAKE_INSTALL_BINDIR})
  foreach(language ${TALLIVEX_DOCUMENT_LANGUAGES})
    install(FILES ${PROJECT_SOURCE_DIR}/docs/windows/${language}/お読みください.txt
      DESTINATION ${CMAKE_INSTALL_BINDIR}/${language})
  endforeach()
  set(CPACK_SYSTEM_NAME win64)
elseif(TARGET tallivex AND TARGET tallivex-practice)
  set(linux ${PROJECT_SOURCE_DIR}/src/app/linux)
  # One name for the menu entry, the icon and the metadata, so software centres tie them together.
  set(appId org.tallivex.Tallivex)
  install(FILES ${linux}/${appId}.desktop DESTINATION share/applications)
  foreach(size 16 32 48 128 256)
    install(FILES ${linux}/icons/${size}.png DESTINATION share/icons/hicolor/${size}x${size}/apps RENAME ${appId}.png)
  endforeach()
  configure_file(${linux}/${appId}.metainfo.xml.in ${PROJECT_BINARY_DIR}/linux/${appId}.metainfo.xml @ONLY)
  install(FILES ${PROJECT_BINARY_DIR}/linux/${appId}.metainfo.xml DESTINATION share/metainfo)
  # What Debian wants beside every package: the copyright and a changelog, compressed
  # without a time stamp so the package comes out the same each time.
  execute_process(COMMAND date -R -u -d ${TALLIVEX_RELEASE_DATE} OUTPUT_VARIABLE TALLIVEX_CHANGELOG_DATE
    OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
  configure_file(${linux}/changelog.in ${PROJECT_BINARY_DIR}/linux/changelog @ONLY)
  execute_process(COMMAND gzip -9nc ${PROJECT_BINARY_DIR}/linux/changelog
    OUTPUT_FILE ${PROJECT_BINARY_DIR}/linux/changelog.gz COMMAND_ERROR_IS_FATAL ANY)
  install(FILES ${linux}/copyright ${PROJECT_BINARY_DIR}/linux/changelog.gz DESTINATION share/doc/tallivex)
  foreach(program tallivex tallivex-cli tallivex-practice)
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${linux}/man/${program}.1)
    execute_process(COMMAND gzip -9nc ${linux}/man/${program}.1
      OUTPUT_FILE ${PROJECT_BINARY_DIR}/linux/${program}.1.gz COMMAND_ERROR_IS_FATAL ANY)
    install(FILES ${PROJECT_BINARY_DIR}/linux/${program}.1.gz DESTINATION share/man/man1)
  endforeach()

  set(CPACK_GENERATOR DEB)
  set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
  set(CPACK_PACKAGE_CONTACT "${TALLIVEX_MAINTAINER}")
  set(CPACK_DEBIAN_PACKAGE_NAME tallivex)
  set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
  set(CPACK_DEBIAN_PACKAGE_SECTION utils)
  set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
  # Qt and xcb come from the programs' own links (dpkg-shlibdeps); ALSA is loaded at the
  # first tone rather than linked, and the windows need a CJK face, which nothing links.
  set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
  set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-noto-cjk, libasound2")
  # The Help menu opens the documents with the desktop's viewer; Qt's own dialogs speak the
  # meter's language with Qt's translations.
  set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "xdg-utils, qt6-translations-l10n")
  set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
  set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "experience and money meter that reads MapleStory's screen
Tallivex watches the game's screen while you play (on Linux, the game under
Wine or Proton on X11), reads level, experience and money off it and keeps an
account of the session: gains, hourly rates, a graph of the rates and an hourly
record file. It takes screenshots on demand, on mouse-button gestures and on
level-up or death. Its user interface is Japanese.

The package holds the meter (tallivex), its command line (tallivex-cli) and a
stand-in game window to try the meter without the game (tallivex-practice).
Settings, records and the debug log go to ~/.local/share/tallivex.")
endif()
include(CPack)
