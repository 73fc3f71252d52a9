# A Debian package of the application: `cpack -G DEB` in the build folder (tools/build-package.sh).
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME varnholt)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR "The Varnholt developers")
set(CPACK_PACKAGE_CONTACT "The Varnholt developers <maintainers@varnholt.org>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "SQL editor with versions and an assistant that knows your database")
string(CONCAT CPACK_PACKAGE_DESCRIPTION
    "Varnholt keeps SQL as named documents, edits them in a colouring editor\n"
    "with a formatter and automatic saving, and keeps numbered versions of each\n"
    "document. An assistant panel explains, optimises or fixes SQL, with a\n"
    "knowledge base of facts about your database that rides along with every\n"
    "question. All data stays on your machine. The package also has\n"
    "varnholt-fmt, the formatter for scripts and hooks.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION devel)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${PROJECT_HOMEPAGE_URL})
# Libraries are found by dpkg-shlibdeps; the QML modules and fonts are loaded at run time and
# have to be named.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS
    "qml6-module-qtquick, qml6-module-qtquick-controls, qml6-module-qtquick-layouts, qml6-module-qtquick-templates, qml6-module-qtquick-window, qml6-module-qtqml-workerscript, qml6-module-qtqml-models, qml6-module-qtquick-shapes, qml6-module-qtquick-dialogs, libqt6svg6, fonts-noto-cjk")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-noto-color-emoji")
set(CPACK_SOURCE_IGNORE_FILES "/build.*/;/\\\\.git/")
include(CPack)
