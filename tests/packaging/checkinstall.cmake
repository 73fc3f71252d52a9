# Installs the build into a scratch prefix and checks that each file a desktop needs is there.
file(REMOVE_RECURSE ${PREFIX})
execute_process(COMMAND ${CMAKE_COMMAND} --install ${BUILD_DIR} --prefix ${PREFIX}
                RESULT_VARIABLE result OUTPUT_QUIET)
if(NOT result EQUAL 0)
    message(FATAL_ERROR "cmake --install failed: ${result}")
endif()
set(expected
    bin/varnholt
    bin/varnholt-fmt
    share/applications/org.varnholt.Varnholt.desktop
    share/metainfo/org.varnholt.Varnholt.metainfo.xml
    share/icons/hicolor/scalable/apps/org.varnholt.Varnholt.svg
    share/man/man1/varnholt.1.gz
    share/man/man1/varnholt-fmt.1.gz
    share/doc/varnholt/copyright
    share/doc/varnholt/changelog.gz)
foreach(size 16 22 24 32 48 64 128 256 512)
    list(APPEND expected share/icons/hicolor/${size}x${size}/apps/org.varnholt.Varnholt.png)
endforeach()
foreach(path IN LISTS expected)
    if(NOT EXISTS ${PREFIX}/${path})
        message(FATAL_ERROR "not installed: ${path}")
    endif()
endforeach()
# The launcher entry names the icon and the program that are installed.
file(READ ${PREFIX}/share/applications/org.varnholt.Varnholt.desktop entry)
if(NOT entry MATCHES "\nIcon=org.varnholt.Varnholt\n" OR NOT entry MATCHES "\nExec=varnholt\n")
    message(FATAL_ERROR "the launcher entry does not name the installed icon and program")
endif()
