# What an installation holds, and the Debian package CPack builds from it (scripts/package.sh):
# the three programs, the desktop entry and its icon, the man pages and talvexctl's bash
# completion. PREFIX/share/talvex marks an installation: a program whose folder is PREFIX/bin
# beside it keeps its files in the user's folders (src/config/locations.h).
include(GNUInstallDirs)

set(TALVEX_PACKAGING_DIR "${PROJECT_SOURCE_DIR}/packaging")
set(TALVEX_PROGRAMS talvexctl)
if(TARGET talvex-sim)
  list(APPEND TALVEX_PROGRAMS talvex-sim)
endif()
if(TALVEX_BUILD_GUI)
  list(APPEND TALVEX_PROGRAMS talvex)
endif()
install(TARGETS ${TALVEX_PROGRAMS} RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")

install(FILES "${TALVEX_PACKAGING_DIR}/talvex.desktop"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${TALVEX_PACKAGING_DIR}/talvex.svg"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
install(FILES "${TALVEX_PACKAGING_DIR}/talvex.svg" DESTINATION "${CMAKE_INSTALL_DATADIR}/talvex")
install(FILES "${TALVEX_PACKAGING_DIR}/talvexctl.bash"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/bash-completion/completions" RENAME talvexctl)

# Man pages carry the version; they are installed compressed, as Debian has them.
set(TALVEX_MAN_PAGES)
foreach(program talvex talvexctl talvex-sim)
  set(page "${PROJECT_BINARY_DIR}/man/${program}.1")
  configure_file("${TALVEX_PACKAGING_DIR}/man/${program}.1" "${page}" @ONLY)
  add_custom_command(OUTPUT "${page}.gz" COMMAND gzip -9nf -k "${page}" DEPENDS "${page}"
                     COMMENT "Compressing the man page ${program}.1")
  list(APPEND TALVEX_MAN_PAGES "${page}.gz")
endforeach()
add_custom_target(talvex_man_pages ALL DEPENDS ${TALVEX_MAN_PAGES})
install(FILES ${TALVEX_MAN_PAGES} DESTINATION "${CMAKE_INSTALL_MANDIR}/man1")

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME talvex)
set(CPACK_PACKAGE_VERSION "${PROJECT_VERSION}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
string(CONCAT CPACK_PACKAGE_DESCRIPTION
       "talvex (desktop editor), talvexctl (command line) and talvex-sim (simulated processors)\n"
       "for TALVEX digital loudspeaker processors on a 9600-baud serial line or a serial-over-TCP\n"
       "gateway: levels, delays, EQ, crossovers, limiters, presets, system type and lock.")
set(CPACK_PACKAGE_CONTACT "TALVEX editor team <talvex@localhost>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
# The libraries come from dpkg-shlibdeps; Qt's platform plugins are loaded at run time, so the
# desktop program names them itself.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "qt6-qpa-plugins")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "bash-completion")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "socat, ser2net")
include(CPack)
