# What `cmake --install` puts where, as the components Runtime and Development, and the packages that cpack makes of them. Everything
# finds its place from where it lies: a prefix may be moved.
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)
set(headers_folder "${CMAKE_INSTALL_INCLUDEDIR}/flarebox")
set(package_folder "${CMAKE_INSTALL_LIBDIR}/cmake/Flarebox")
set(pkgconfig_folder "${CMAKE_INSTALL_LIBDIR}/pkgconfig")
file(RELATIVE_PATH prefix_from_pkgconfig "/${pkgconfig_folder}" "/")

# The headers that carry the mark of the public interface, and what they include.
install(CODE "set(SOURCE \"${PROJECT_SOURCE_DIR}\")
set(HEADERS_FOLDER \"${headers_folder}\")
set(HOSTS \"${flarebox_components}\")" COMPONENT Development)
install(SCRIPT "${PROJECT_SOURCE_DIR}/cmake/InstallHeaders.cmake" COMPONENT Development)

# flarebox_pkgconfig(FILE TITLE LIBRARY REQUIRED [FLAG...]): the flags link what a static library needs. They are no Requires.private, as
# `pkg-config --static` would want the static libraries of all that the system's shared libraries are made of, too.
function(flarebox_pkgconfig file pc_title pc_library pc_requires)
  set(pc_file "${PROJECT_BINARY_DIR}/package/${file}.pc")
  set(pc_static "")
  set(pc_static_libraries "")
  if(NOT FLAREBOX_SHARED)
    list(JOIN ARGN " " pc_static_libraries)
    if(WIN32)
      set(pc_static " -DFLAREBOX_STATIC")
    endif()
  endif()
  configure_file("${PROJECT_SOURCE_DIR}/cmake/Package/flarebox.pc.in" "${pc_file}" @ONLY)
  install(FILES "${pc_file}" DESTINATION "${pkgconfig_folder}" COMPONENT Development)
endfunction()

set(static_libraries -lsimdjson)
foreach(name IN LISTS flarebox_private)
  list(APPEND static_libraries ${FLAREBOX_${name}_LDFLAGS})
endforeach()
if(FLAREBOX_HAS_3D)
  list(APPEND static_libraries -lfilament_gltfio_core -lfilament -lfilament_backend -lfilament_utils)
endif()
list(REMOVE_DUPLICATES static_libraries)
flarebox_pkgconfig(flarebox "Flarebox" Flarebox "" ${static_libraries} -lstdc++ -lm -pthread)
flarebox_pkgconfig(flarebox-headless "Flarebox without a screen" FlareboxHeadless "flarebox = ${PROJECT_VERSION}" ${FLAREBOX_CAIRO_LDFLAGS})
if(FLAREBOX_SDL)
  flarebox_pkgconfig(flarebox-sdl "Flarebox for SDL2" FlareboxSDL "flarebox = ${PROJECT_VERSION} sdl2")
endif()
if(FLAREBOX_OPENGL)
  flarebox_pkgconfig(flarebox-opengl "Flarebox for OpenGL" FlareboxOpenGL "flarebox = ${PROJECT_VERSION}")
endif()

# One export for each component, so that a project is asked for nothing but what its components need.
foreach(component IN ITEMS "" LISTS flarebox_components)
  set(library Flarebox${component})
  install(TARGETS ${library} EXPORT ${library}Targets
    RUNTIME DESTINATION "${CMAKE_INSTALL_BINDIR}" COMPONENT Runtime
    LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Runtime NAMELINK_COMPONENT Development
    ARCHIVE DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT Development)
  install(EXPORT ${library}Targets NAMESPACE Flarebox:: DESTINATION "${package_folder}" COMPONENT Development)
endforeach()
target_include_directories(Flarebox INTERFACE
  "$<INSTALL_INTERFACE:${headers_folder}>" "$<INSTALL_INTERFACE:${headers_folder}/Flarebox/C>")

# What the package's file has to find: name and modules of everything that a static kit is linked with.
set(package_modules "")
if(NOT FLAREBOX_SHARED)
  foreach(name IN LISTS flarebox_private)
    string(APPEND package_modules "\n  flarebox_needs(${name} ${flarebox_modules_${name}})")
  endforeach()
  string(REPLACE ";" " " package_modules "${package_modules}")
endif()
list(JOIN flarebox_components ", " component_list)
configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/Package/FlareboxConfig.cmake.in"
  "${PROJECT_BINARY_DIR}/package/FlareboxConfig.cmake" INSTALL_DESTINATION "${package_folder}" NO_CHECK_REQUIRED_COMPONENTS_MACRO)
write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/FlareboxConfigVersion.cmake" COMPATIBILITY ${flarebox_compatibility})
install(FILES "${PROJECT_BINARY_DIR}/package/FlareboxConfig.cmake" "${PROJECT_BINARY_DIR}/package/FlareboxConfigVersion.cmake"
  DESTINATION "${package_folder}" COMPONENT Development)

# Named as Debian names them: packages of two interfaces can be installed side by side.
set(runtime_package libflarebox${flarebox_interface})
set(development_package libflarebox-dev)
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${runtime_package}" RENAME copyright
  COMPONENT Runtime)
install(FILES "${PROJECT_SOURCE_DIR}/LICENSE" DESTINATION "${CMAKE_INSTALL_DATADIR}/doc/${development_package}" RENAME copyright
  COMPONENT Development)
if(PROJECT_IS_TOP_LEVEL)
  include(cmake/FlareboxPackages.cmake)
endif()
