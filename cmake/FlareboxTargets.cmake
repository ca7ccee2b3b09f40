# What all targets of this project share. Nothing here leaks into a project that includes us.

add_library(FlareboxOptions INTERFACE)
target_compile_features(FlareboxOptions INTERFACE cxx_std_20)
target_compile_options(FlareboxOptions INTERFACE
  -Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wcast-align $<$<BOOL:${FLAREBOX_WARNINGS_ARE_ERRORS}>:-Werror>
  # g++ 12 reports overlapping copies in std::string's own operator+ when it optimises.
  $<$<AND:$<CXX_COMPILER_ID:GNU>,$<CONFIG:Release>>:-Wno-restrict>)
if(FLAREBOX_SANITIZE)
  target_compile_options(FlareboxOptions INTERFACE -fsanitize=${FLAREBOX_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
  target_link_options(FlareboxOptions INTERFACE -fsanitize=${FLAREBOX_SANITIZE})
endif()

# flarebox_library(NAME FOLDER... ) builds one layer of the kit from every source below the folders. Layers are static libraries, which
# link what lies below them: tests take the layer that they are about, games take cmake/FlareboxLibraries.cmake.
function(flarebox_library name)
  set(patterns "")
  foreach(folder IN LISTS ARGN)
    list(APPEND patterns "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.cpp" "${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.h")
  endforeach()
  file(GLOB_RECURSE sources CONFIGURE_DEPENDS ${patterns})
  if(NOT WIN32)
    list(FILTER sources EXCLUDE REGEX "/Backend/Windows/")
  endif()
  add_library(${name} STATIC ${sources})
  set_target_properties(${name} PROPERTIES
    LINKER_LANGUAGE CXX POSITION_INDEPENDENT_CODE ON CXX_VISIBILITY_PRESET hidden VISIBILITY_INLINES_HIDDEN ON)
  target_include_directories(${name} PUBLIC "${PROJECT_SOURCE_DIR}/Platform" "${PROJECT_SOURCE_DIR}")
  target_compile_features(${name} PUBLIC cxx_std_20)
  # Functions that nothing calls in a library, or in a game with a static one, can be left out one by one.
  target_compile_options(${name} PRIVATE $<$<NOT:$<CONFIG:Debug>>:-ffunction-sections -fdata-sections>)
  target_link_libraries(${name} PRIVATE FlareboxOptions PUBLIC Threads::Threads)
  if(WIN32)
    target_compile_definitions(${name} PUBLIC $<IF:$<BOOL:${FLAREBOX_SHARED}>,FLAREBOX_BUILDING,FLAREBOX_STATIC>)
  endif()
endfunction()
