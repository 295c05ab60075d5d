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
# modules. The layering rule is checked here, by the kind of each library:
#  - core (the default): no Qt module that draws (Gui, Svg, Widgets, ...), and only core
#    libraries among its DEPENDS;
#  - PAINT: draws with QPainter: may link Qt Gui and Svg, never Widgets; core and paint
#    libraries only;
#  - USES_PAINT: a core library that may depend on paint libraries (the command line, whose
#    plot draws the graph without a display); it links no drawing module itself;
#  - GUI: Qt Widgets; may depend on anything.
# So no core library draws, and neither a core library nor the command line links widgets.
set(TALVEX_DRAWING_MODULES "^(Widgets|Gui|OpenGL|OpenGLWidgets|Svg|SvgWidgets|PrintSupport)$")
set(TALVEX_WIDGET_MODULES "^(Widgets|OpenGLWidgets|SvgWidgets|PrintSupport)$")

function(talvex_library name)
  cmake_parse_arguments(ARG "GUI;PAINT;USES_PAINT" "" "SOURCES;DEPENDS;QT" ${ARGN})
  if(ARG_GUI)
    set(layer gui)
    set(allowed core uses_paint paint gui)
  elseif(ARG_PAINT)
    set(layer paint)
    set(allowed core paint)
  elseif(ARG_USES_PAINT)
    set(layer uses_paint)
    set(allowed core paint)
  else()
    set(layer core)
    set(allowed core)
  endif()
  add_library(${name} STATIC ${ARG_SOURCES})
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/src")
  talvex_warnings(${name})
  foreach(module IN LISTS ARG_QT)
    if(layer STREQUAL "paint" AND module MATCHES "${TALVEX_WIDGET_MODULES}")
      message(FATAL_ERROR "${name} is a paint library and may not link Qt::${module}")
    endif()
    if(layer MATCHES "^(core|uses_paint)$" AND module MATCHES "${TALVEX_DRAWING_MODULES}")
      message(FATAL_ERROR "${name} is a core library and may not link Qt::${module}")
    endif()
    target_link_libraries(${name} PUBLIC Qt6::${module})
  endforeach()
  foreach(dep IN LISTS ARG_DEPENDS)
    get_target_property(dep_layer ${dep} TALVEX_LAYER)
    if(NOT dep_layer IN_LIST allowed)
      message(FATAL_ERROR "${name} (${layer}) may not depend on ${dep} (${dep_layer})")
    endif()
    target_link_libraries(${name} PUBLIC ${dep})
  endforeach()
  set_target_properties(${name} PROPERTIES TALVEX_LAYER "${layer}")
endfunction()

define_property(TARGET PROPERTY TALVEX_LAYER BRIEF_DOCS "core, uses_paint, paint or gui"
                FULL_DOCS "The library's layer; talvex_library() checks what it may depend on.")

# Refuses a program that links Qt Widgets anywhere in what it links, directly or through a
# library (talvexctl: the command line runs where no display is).
function(talvex_links_no_widgets target)
  set(seen)
  set(pending ${target})
  while(pending)
    list(POP_FRONT pending current)
    if(current IN_LIST seen OR NOT TARGET ${current})
      continue()
    endif()
    list(APPEND seen ${current})
    get_target_property(aliased ${current} ALIASED_TARGET)
    if(aliased)
      set(current ${aliased})
    endif()
    if(current MATCHES "^Qt6::(Widgets|OpenGLWidgets|SvgWidgets|PrintSupport)$")
      message(FATAL_ERROR "${target} may not link ${current}")
    endif()
    get_target_property(type ${current} TYPE)
    set(links)
    if(NOT type STREQUAL "INTERFACE_LIBRARY")
      get_target_property(links ${current} LINK_LIBRARIES)
    endif()
    get_target_property(interface ${current} INTERFACE_LINK_LIBRARIES)
    foreach(link IN LISTS links interface)
      if(link AND NOT link MATCHES "NOTFOUND$" AND NOT link MATCHES "^\\$<")
        list(APPEND pending ${link})
      endif()
    endforeach()
  endwhile()
endfunction()
