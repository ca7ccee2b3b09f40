// Tables of texts: what is read, written plainly, reads the same.

#include <Fuzz/Support/ByteSource.h>

#include <Foundation/StringsTable.h>

#include <string>

namespace flarebox::fuzz {
namespace {

std::string quoted(std::string_view plain) {
    std::string written = "\"";
    for (const char character : plain) {
        if (character == '"' || character == '\\') written += '\\';
        written += character;
    }
    return written + '"';
}

}  // namespace

FLAREBOX_FUZZER(StringsTable) {
    std::string failure;
    const detail::StringsTable table = detail::parseStringsTable(text(input), failure);
    std::string written;
    for (const auto& [key, value] : table) written += quoted(key) + "=" + quoted(value) + ";\n";
    std::string noFailure;
    check(detail::parseStringsTable(written, noFailure) == table, "what was written reads the same");
    check(noFailure.empty(), "what was written has no mistake");
    if (failure.empty()) return;
    check(failure.starts_with("line "), "a mistake names its line");
}

}  // namespace flarebox::fuzz
