# cmake -D FOLDER=... -D SOURCE=... -P EmbedResources.cmake writes the C++ source with the files of a folder in it.
file(GLOB_RECURSE files RELATIVE "${FOLDER}" "${FOLDER}/*")
list(SORT files)
set(entries "")
foreach(file IN LISTS files)
  file(READ "${FOLDER}/${file}" text)
  string(APPEND entries "    {\"${file}\", R\"FILE(${text})FILE\"},\n")
endforeach()
file(WRITE "${SOURCE}" "#include <Flarebox/Core/BuiltInResources.h>

namespace flarebox {
namespace {

constexpr BuiltInFile files[] = {
${entries}};

}  // namespace

std::span<const BuiltInFile> builtInResources() {
    return files;
}

}  // namespace flarebox
")
