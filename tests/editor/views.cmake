# Tests of the editor screen.
varnholt_add_test(tst_sqleditorcontroller SOURCES views/tst_sqleditorcontroller.cpp LIBRARIES varnholt_views)
varnholt_add_quick_test(tst_editorviews SOURCES views/tst_editorviews.cpp QML_DIR ${CMAKE_CURRENT_SOURCE_DIR}/views/qml)
