// Model files: what passes the check is written anew and passes it again. The renderer takes no part.

#include <Fuzz/Support/FuzzTarget.h>
#include <Fuzz/Support/MemoryFile.h>

#include <SceneKit/ModelFile.h>

#include <cmath>
#include <string>

namespace flarebox::fuzz {
namespace {

std::string word(std::size_t number) {
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8) bytes += static_cast<char>(number >> shift & 255);
    return bytes;
}

/// Inputs that do not start like a model are its description and, after a zero, its binary data, which saves the fuzzer
/// from keeping the lengths right.
std::string modelFile(std::string_view input) {
    if (input.starts_with("glTF")) return std::string(input);
    const std::size_t end = std::min(input.find('\0'), input.size());
    std::string description(input.substr(0, end));
    description.resize((description.size() + 3) / 4 * 4, ' ');
    std::string body = word(description.size()) + "JSON" + description;
    if (end < input.size()) {
        std::string data(input.substr(end + 1));
        data.resize((data.size() + 3) / 4 * 4, '\0');
        body += word(data.size()) + std::string("BIN\0", 4) + data;
    }
    return "glTF" + word(2) + word(12 + body.size()) + body;
}

std::optional<detail::ModelContents> contentsOf(const std::string& path) {
    std::string failure;
    auto contents = detail::readModelContents(path, failure);
    check(contents.has_value() == failure.empty(), "a model or a reason");
    return contents;
}

}  // namespace

FLAREBOX_FUZZER(ModelFile) {
    const MemoryFile file(modelFile(text(input)));
    std::string failure;
    const auto summary = detail::readModelSummary(file.path(), failure);
    check(summary.has_value() == failure.empty(), "a model or a reason");
    const auto contents = contentsOf(file.path());
    check(!contents || summary, "the quick check asks for less than the thorough one");
    if (!contents) return;

    const auto& bytes = contents->bytes;
    const MemoryFile checked({reinterpret_cast<const char*>(bytes.data()), bytes.size()});
    const auto again = contentsOf(checked.path());
    check(again.has_value(), "what was checked passes the check");
    check(again->animations.size() == contents->animations.size(), "as many animations");
    check(again->isSkinned == contents->isSkinned && again->hasCutOuts == contents->hasCutOuts, "the same features");
    const auto secondSummary = detail::readModelSummary(checked.path(), failure);
    check(secondSummary && secondSummary->isAnimated == summary->isAnimated, "the same movement");
}

}  // namespace flarebox::fuzz
