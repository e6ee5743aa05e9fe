# One static library per concern folder. Sources are every .cpp of the folder;
# public headers live under include/varnel/<concern>/.
# Warnings are errors only where VARNEL_WARNINGS_AS_ERRORS asks for it (the
# presets and CI); an integrator's plain build never fails on a new warning.
function(varnel_enable_warnings target)
  target_compile_options(${target} PRIVATE -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor
                                           -Woverloaded-virtual)
  if(VARNEL_WARNINGS_AS_ERRORS)
    target_compile_options(${target} PRIVATE -Werror)
  endif()
endfunction()

# varnel_add_component(<name> [DEPENDS <targets>...] [PRIVATE_DEPENDS <targets>...])
# Creates varnel_<name> (alias Varnel::<name>) from src/<name>/*.cpp.
function(varnel_add_component name)
  cmake_parse_arguments(ARG "" "" "DEPENDS;PRIVATE_DEPENDS" ${ARGN})
  file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/*.cpp")
  if(NOT sources)
    # A concern that so far has only headers still links as a library.
    set(sources "${PROJECT_SOURCE_DIR}/cmake/EmptyComponent.cpp")
  endif()
  add_library(varnel_${name} STATIC ${sources})
  add_library(Varnel::${name} ALIAS varnel_${name})
  set_target_properties(varnel_${name} PROPERTIES EXPORT_NAME ${name} POSITION_INDEPENDENT_CODE ON)
  target_include_directories(varnel_${name} PUBLIC
    $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include>
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}>)
  target_link_libraries(varnel_${name} PUBLIC ${ARG_DEPENDS} PRIVATE ${ARG_PRIVATE_DEPENDS})
  varnel_enable_warnings(varnel_${name})
  set_property(GLOBAL APPEND PROPERTY VARNEL_COMPONENTS varnel_${name})
endfunction()
