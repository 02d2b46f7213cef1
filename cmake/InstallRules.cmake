# What `cmake --install` puts on a system: both programs, the desktop entry that lists
# Scrivlet among the applications and claims the scrivlet:// links, and the icon.
# DESTDIR and CMAKE_INSTALL_PREFIX apply as usual.
include(GNUInstallDirs)

install(TARGETS scrivlet scrivlet-cli RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}")
install(FILES "${CMAKE_SOURCE_DIR}/resources/scrivlet.desktop"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/applications")
install(FILES "${CMAKE_SOURCE_DIR}/resources/icons/scrivlet.svg"
        DESTINATION "${CMAKE_INSTALL_DATADIR}/icons/hicolor/scalable/apps")
