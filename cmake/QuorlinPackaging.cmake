# A Debian package of everything `cmake --install` puts in place:
#   cmake --preset release && cmake --build --preset release --target package
# Library dependencies come from dpkg-shlibdeps, so the package asks for the
# Qt, OpenSSL and pugixml versions it was built against. The MIME, desktop and
# icon caches are refreshed by the triggers of the packages that own them, so
# the package has no maintainer scripts.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quorlin-profile-editor)
set(CPACK_PACKAGE_VENDOR "Quorlin")
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Editor of Apple configuration profiles")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)

set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Quorlin Profile Editor team <profile-editor@quorlin.com>")
set(CPACK_DEBIAN_PACKAGE_SECTION admin)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
# The synopsis is the summary above; CPack indents this text for the control
# file and turns the blank line into a paragraph break.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION [=[Quorlin Profile Editor builds, opens, checks, signs and saves configuration
profiles (.mobileconfig files) for iOS, macOS, tvOS and watchOS devices.
Every form is generated from preference manifests; values are checked
against the chosen platforms and versions as they are typed, and profiles
can be signed with an identity on save.

The package also holds quorlin-profile, a command-line tool for the same
jobs in scripts.]=])
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "shared-mime-info, hicolor-icon-theme")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)

include(CPack)
