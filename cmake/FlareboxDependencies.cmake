# The libraries that the kit stands on. All but the host adapters' own are hidden within the kit: whoever links its static
# library needs them again, whoever links the shared one does not.

find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

# flarebox_modules(NAME MODULE...) finds modules of pkg-config, as the target PkgConfig::FLAREBOX_NAME.
macro(flarebox_modules name)
  pkg_check_modules(FLAREBOX_${name} REQUIRED IMPORTED_TARGET ${ARGN})
  set(flarebox_modules_${name} ${ARGN})
endmacro()

flarebox_modules(ICU icu-i18n icu-uc)
flarebox_modules(PUGIXML pugixml)
flarebox_modules(CURL libcurl)
flarebox_modules(CAIRO cairo pangocairo pangoft2 fontconfig)
flarebox_modules(PICTURES sdl2 SDL2_image)
flarebox_modules(GIO gio-2.0)
find_package(simdjson REQUIRED)
set(flarebox_private ICU PUGIXML CURL CAIRO PICTURES GIO)

# The 3D renderer's binding fits one release of the library exactly; without that release models are not shown.
set(FLAREBOX_HAS_3D OFF)
if(FLAREBOX_3D)
  find_package(filament 1.9.25 EXACT QUIET CONFIG)
  pkg_check_modules(FLAREBOX_EGL QUIET IMPORTED_TARGET egl)
  pkg_check_modules(FLAREBOX_DRACO QUIET IMPORTED_TARGET draco)
  if(filament_FOUND AND FLAREBOX_EGL_FOUND AND FLAREBOX_DRACO_FOUND)
    set(FLAREBOX_HAS_3D ON)
    set(flarebox_modules_EGL egl)
    set(flarebox_modules_DRACO draco)
    list(APPEND flarebox_private EGL DRACO)
  else()
    message(STATUS "Filament 1.9.25, EGL or Draco is missing: this build cannot show 3D models")
  endif()
endif()
if(FLAREBOX_VIDEO)
  flarebox_modules(GSTREAMER gstreamer-1.0 gstreamer-app-1.0 gstreamer-video-1.0)
  list(APPEND flarebox_private GSTREAMER)
endif()
if(FLAREBOX_SDL)
  flarebox_modules(SDL sdl2)
endif()
if(FLAREBOX_OPENGL)
  # Headers only: the game answers where the functions are.
  find_path(FLAREBOX_GL_HEADERS GL/glcorearb.h REQUIRED)
  mark_as_advanced(FLAREBOX_GL_HEADERS)
endif()
