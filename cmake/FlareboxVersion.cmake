# The version stands in a header, once: sets flarebox_version.
set(flarebox_version "")
foreach(part MAJOR MINOR PATCH)
  file(STRINGS "${CMAKE_CURRENT_LIST_DIR}/../Flarebox/C/flarebox_version.h" line REGEX "^#define FLAREBOX_VERSION_${part} [0-9]+$")
  string(REGEX REPLACE ".* " "" number "${line}")
  list(APPEND flarebox_version "${number}")
endforeach()
list(JOIN flarebox_version "." flarebox_version)
