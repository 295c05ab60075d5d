# The GUI soak (gui_soak.cpp): built with the tests too, so that CI runs it briefly in the dev
# and the sanitizer builds (the sanitizer preset builds no benchmarks); run it long by hand:
#   talvex_gui_soak [ACTIONS] [SEED]      (README "Reliability", docs/BENCHMARKS.md)
add_executable(talvex_gui_soak ${CMAKE_CURRENT_LIST_DIR}/gui_soak.cpp)
target_link_libraries(talvex_gui_soak PRIVATE talvex_app Qt6::Test)
talvex_warnings(talvex_gui_soak)
if(TALVEX_BUILD_TESTS)
  add_test(NAME gui_soak COMMAND talvex_gui_soak 300 7)
  set_tests_properties(gui_soak PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=offscreen TIMEOUT 300)
endif()
