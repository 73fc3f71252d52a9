# The SQL formatter: a pure text unit, Qt Core only.
add_library(varnholt_sqlformat STATIC
    ${CMAKE_CURRENT_LIST_DIR}/sqlformatter.cpp ${CMAKE_CURRENT_LIST_DIR}/sqlformatter.h
    ${CMAKE_CURRENT_LIST_DIR}/sqlformatterflatten.cpp ${CMAKE_CURRENT_LIST_DIR}/sqlformatterflatten.h
    ${CMAKE_CURRENT_LIST_DIR}/sqlformatterkeywords.cpp ${CMAKE_CURRENT_LIST_DIR}/sqlformatterkeywords.h
    ${CMAKE_CURRENT_LIST_DIR}/sqlformatterlayout.cpp ${CMAKE_CURRENT_LIST_DIR}/sqlformatterlayout.h
    ${CMAKE_CURRENT_LIST_DIR}/sqlformatterstatement.h
    ${CMAKE_CURRENT_LIST_DIR}/sqltoken.h
    ${CMAKE_CURRENT_LIST_DIR}/sqltokenchars.cpp ${CMAKE_CURRENT_LIST_DIR}/sqltokenchars.h
    ${CMAKE_CURRENT_LIST_DIR}/sqltokenizer.cpp ${CMAKE_CURRENT_LIST_DIR}/sqltokenizer.h
)
target_include_directories(varnholt_sqlformat PUBLIC ${CMAKE_CURRENT_LIST_DIR})
target_link_libraries(varnholt_sqlformat PUBLIC Qt6::Core)

# The command-line formatter, for scripts and pre-commit hooks.
add_executable(varnholt-fmt ${CMAKE_CURRENT_LIST_DIR}/fmt/main.cpp)
target_link_libraries(varnholt-fmt PRIVATE varnholt_sqlformat varnholt_fileio)
install(TARGETS varnholt-fmt RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
