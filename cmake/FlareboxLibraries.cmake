# The libraries that a game links: the layers of the kit as one, and the host adapters, each a component of the package.
configure_file("${PROJECT_SOURCE_DIR}/cmake/Flarebox.map.in" "${PROJECT_BINARY_DIR}/package/Flarebox.map" @ONLY)

# flarebox_ship(NAME COMPONENT LAYER...) makes a library of the layers' objects, as the target Flarebox::COMPONENT.
function(flarebox_ship name component)
  set(objects "")
  set(needed "")
  foreach(layer IN LISTS ARGN)
    list(APPEND objects $<TARGET_OBJECTS:${layer}>)
    get_target_property(libraries ${layer} LINK_LIBRARIES)
    list(APPEND needed ${libraries})
  endforeach()
  list(FILTER needed EXCLUDE REGEX "^(Flarebox|Threads::)|::@")
  list(REMOVE_DUPLICATES needed)

  if(FLAREBOX_SHARED)
    add_library(${name} SHARED ${objects})
  else()
    add_library(${name} STATIC ${objects})
  endif()
  add_library(Flarebox::${component} ALIAS ${name})
  set_target_properties(${name} PROPERTIES
    EXPORT_NAME ${component} LINKER_LANGUAGE CXX VERSION ${PROJECT_VERSION} SOVERSION ${flarebox_interface})
  target_compile_features(${name} INTERFACE cxx_std_20)
  target_link_libraries(${name} PRIVATE $<BUILD_INTERFACE:FlareboxOptions> ${needed} Threads::Threads)
  if(WIN32 AND NOT FLAREBOX_SHARED)
    target_compile_definitions(${name} INTERFACE FLAREBOX_STATIC)
  endif()
  if(FLAREBOX_SHARED AND UNIX AND NOT APPLE)
    # Wherever the libraries are put, beside the game for one, they find each other.
    set_target_properties(${name} PROPERTIES INSTALL_RPATH "$ORIGIN")
    set(symbols "${PROJECT_BINARY_DIR}/package/Flarebox.map")
    target_link_options(${name} PRIVATE "LINKER:--version-script=${symbols}" "LINKER:--exclude-libs,ALL" "LINKER:--no-undefined"
      "LINKER:--gc-sections" "LINKER:-Bsymbolic-functions")
    set_property(TARGET ${name} APPEND PROPERTY LINK_DEPENDS "${symbols}")
  endif()
endfunction()

flarebox_ship(Flarebox Flarebox
  FlareboxKit FlareboxModels FlareboxAVFoundation FlareboxSceneKit FlareboxNetworking FlareboxUIKit FlareboxAdSupport FlareboxFoundation)
target_include_directories(Flarebox SYSTEM INTERFACE
  "$<BUILD_INTERFACE:${PROJECT_SOURCE_DIR};${PROJECT_SOURCE_DIR}/Platform;${PROJECT_SOURCE_DIR}/Flarebox/C>")

set(flarebox_components Headless)
flarebox_ship(FlareboxHeadless Headless FlareboxHeadlessHost)
if(FLAREBOX_SDL)
  list(APPEND flarebox_components SDL)
  flarebox_ship(FlareboxSDL SDL FlareboxSDLHost)
  target_link_libraries(FlareboxSDL INTERFACE PkgConfig::FLAREBOX_SDL)
endif()
if(FLAREBOX_OPENGL)
  list(APPEND flarebox_components OpenGL)
  flarebox_ship(FlareboxOpenGL OpenGL FlareboxOpenGLHost)
endif()
foreach(component IN LISTS flarebox_components)
  target_link_libraries(Flarebox${component} PUBLIC Flarebox)
endforeach()
