# The GUI soak (gui_soak.cpp): built with the tests too, so that CI runs it briefly in the dev
# and the sanitizer builds (the sanitizer preset builds no benchmarks); run it long by hand:
#   talvex_gui_soak [ACTIONS] [SEED]      (README "Reliability", docs/BENCHMARKS.md)
add_executable(talvex_gui_soak ${CMAKE_CURRENT_LIST_DIR}/gui_soak.cpp)
target_link_libraries(talvex_gui_soak PRIVATE talvex_app Qt6::Test)
talvex_warnings(talvex_gui_soak)
# In CI: 300 actions, alone on the machine (a stall is a timing); the sanitizer build, several
# times slower per instruction, gets 250 ms, which a real stall (a wait on the line) still breaks.
if(TALVEX_BUILD_TESTS)
  if(TALVEX_SANITIZE)
    set(stall_limit_ms 250)
  else()
    set(stall_limit_ms 100)
  endif()
  add_test(NAME gui_soak COMMAND talvex_gui_soak 300 7 ${stall_limit_ms})
  set_tests_properties(gui_soak PROPERTIES ENVIRONMENT QT_QPA_PLATFORM=offscreen TIMEOUT 300
                                           RUN_SERIAL TRUE)
endif()
