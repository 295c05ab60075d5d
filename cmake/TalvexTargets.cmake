# Helpers shared by every target of the project.

# Warnings for the project's own code (Qt and GoogleTest headers come in as system headers).
function(talvex_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                           -Woverloaded-virtual -Wcast-qual -Wimplicit-fallthrough)
  # GCC 12 reports impossible overlaps in std::string's operator+ when optimising (GCC bug
  # 105651): a false positive in the standard library, not in our code.
  if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU" AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    target_compile_options(${target} PRIVATE -Wno-restrict)
  endif()
  if(TALVEX_WERROR)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# One static library per layer. DEPENDS lists the project libraries it may use, QT the Qt
# modules. The layering rule is checked here: only the GUI layers may name Qt::Widgets or Gui.
function(talvex_library name)
  cmake_parse_arguments(ARG "GUI" "" "SOURCES;DEPENDS;QT" ${ARGN})
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  talvex_warnings(${name})
  foreach(module IN LISTS ARG_QT)
    if(NOT ARG_GUI AND module MATCHES "^(Widgets|Gui|OpenGL|OpenGLWidgets)$")
      message(FATAL_ERROR "${name} is a core library and may not link Qt::${module}")
    endif()
    target_link_libraries(${name} PUBLIC Qt6::${module})
  endforeach()
  foreach(dep IN LISTS ARG_DEPENDS)
    if(NOT ARG_GUI)
      get_target_property(dep_is_gui ${dep} TALVEX_GUI)
      if(dep_is_gui)
        message(FATAL_ERROR "${name} is a core library and may not depend on the GUI library ${dep}")
      endif()
    endif()
    target_link_libraries(${name} PUBLIC ${dep})
  endforeach()
  set_target_properties(${name} PROPERTIES TALVEX_GUI "${ARG_GUI}")
endfunction()

define_property(TARGET PROPERTY TALVEX_GUI BRIEF_DOCS "Library links Qt Widgets"
                FULL_DOCS "Set on the GUI layers; core layers may not depend on them.")
