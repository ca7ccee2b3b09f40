# The version stands in a header, once: sets flarebox_version.
foreach(part MAJOR MINOR PATCH)
  file(STRINGS "${CMAKE_CURRENT_LIST_DIR}/../Flarebox/C/flarebox_version.h" line REGEX "^#define FLAREBOX_VERSION_${part} [0-9]+$")
  string(REGEX REPLACE ".* " "" flarebox_${part} "${line}")
endforeach()
set(flarebox_version "${flarebox_MAJOR}.${flarebox_MINOR}.${flarebox_PATCH}")

# Versions of one interface stand in for each other: those of one major version, before 1.0 those of one minor version. The libraries, their
# symbols and the Debian packages carry flarebox_interface in their names, find_package goes by flarebox_compatibility.
if(flarebox_MAJOR EQUAL 0)
  set(flarebox_interface "0.${flarebox_MINOR}")
  set(flarebox_compatibility SameMinorVersion)
else()
  set(flarebox_interface "${flarebox_MAJOR}")
  set(flarebox_compatibility SameMajorVersion)
endif()
