# What makes the installed editor a desktop application: its launcher, the
# file type of profiles, the icon in every size of the hicolor theme, the
# software-centre description and the manual pages. Debian's triggers rebuild
# the MIME, desktop and icon caches when a package drops files in these
# folders, so nothing here runs at installation time.
include(GNUInstallDirs)

set(QUORLIN_APPLICATION_ID com.quorlin.ProfileEditor)
set(QUORLIN_DESKTOP_SOURCE ${PROJECT_SOURCE_DIR}/resources/desktop)
set(QUORLIN_MAN_SOURCE ${PROJECT_SOURCE_DIR}/resources/man)

install(FILES ${QUORLIN_DESKTOP_SOURCE}/${QUORLIN_APPLICATION_ID}.desktop
    DESTINATION ${CMAKE_INSTALL_DATADIR}/applications)
install(FILES ${QUORLIN_DESKTOP_SOURCE}/${QUORLIN_APPLICATION_ID}.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/mime/packages)
install(FILES ${QUORLIN_DESKTOP_SOURCE}/${QUORLIN_APPLICATION_ID}.metainfo.xml
    DESTINATION ${CMAKE_INSTALL_DATADIR}/metainfo)
# The committed icons already sit in the theme's layout (<size>/apps/<id>.png).
install(DIRECTORY ${QUORLIN_DESKTOP_SOURCE}/icons/hicolor/
    DESTINATION ${CMAKE_INSTALL_DATADIR}/icons/hicolor)

# Debian ships manual pages compressed; -n leaves the name and time out of the
# header so that the same page gives the same bytes.
find_program(QUORLIN_GZIP gzip REQUIRED)
set(QUORLIN_MAN_PAGES quorlin-profile.1 quorlin-profile-editor.1)
set(QUORLIN_MAN_OUTPUTS)
foreach(page IN LISTS QUORLIN_MAN_PAGES)
    set(output ${CMAKE_BINARY_DIR}/man/${page}.gz)
    add_custom_command(OUTPUT ${output}
        COMMAND ${CMAKE_COMMAND} -E copy ${QUORLIN_MAN_SOURCE}/${page} ${CMAKE_BINARY_DIR}/man/${page}
        COMMAND ${QUORLIN_GZIP} -9nf ${CMAKE_BINARY_DIR}/man/${page}
        DEPENDS ${QUORLIN_MAN_SOURCE}/${page}
        COMMENT "Compressing the manual page ${page}"
        VERBATIM)
    list(APPEND QUORLIN_MAN_OUTPUTS ${output})
endforeach()
add_custom_target(quorlin_man_pages ALL DEPENDS ${QUORLIN_MAN_OUTPUTS})
install(FILES ${QUORLIN_MAN_OUTPUTS} DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)

# The installed tree is checked as a whole: staged with DESTDIR under the build
# folder, never in the real prefix.
if(QUORLIN_BUILD_TESTS)
    add_test(NAME InstalledTree.DesktopIntegration
        COMMAND ${CMAKE_COMMAND}
            -DBUILD_DIR=${CMAKE_BINARY_DIR}
            -DSTAGE_DIR=${CMAKE_BINARY_DIR}/install-check
            -DAPPLICATION_ID=${QUORLIN_APPLICATION_ID}
            -DPROJECT_VERSION=${PROJECT_VERSION}
            -DPROFILE_FIXTURE=${PROJECT_SOURCE_DIR}/tests/data/install/Unsigned.profile
            -P ${PROJECT_SOURCE_DIR}/tests/install/CheckInstalledTree.cmake)
endif()
