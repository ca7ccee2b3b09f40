#include <Flarebox/Core/Theme.h>
#include <Flarebox/Core/ThemeContrast.h>
#include <Flarebox/Core/ThemeReader.h>
#include <Foundation/LogSink.h>
#include <Foundation/NSFileManager.h>
#include <UIKit/FontOpening.h>
#include <UIKit/VectorIcon.h>

#include <filesystem>

namespace flarebox {
namespace {

constexpr std::uint64_t longestFile = 64 << 10;
constexpr int errorCode = 1;

Ref<NSError> errorOf(const std::string& text) {
    return NSError::errorWithDomain(ThemeErrorDomain, errorCode, text);
}

/// Null, with the reason, when there is nothing to be had of the file.
Ref<Theme> read(const std::string& path, Ref<NSError>& error) {
    const NSData data = NSFileManager::defaultManager().contentsAtPath(path, longestFile, &error);
    if (!data) return nullptr;
    const std::filesystem::path file(path);
    LayoutProblem problem;
    const auto content = readLayoutFile(data.text(), problem);
    if (content && content->name != "theme")
        problem = {content->line, "the outermost element is <" + content->name + ">; it has to be <theme>"};
    if (!content || content->name != "theme") {
        error = errorOf(file.filename().string() + ":" + std::to_string(problem.line) + ": " + problem.text);
        return nullptr;
    }
    return ThemeReader(file).read(*content);
}

}  // namespace

const ClassInfo& Theme::staticClass() {
    static const ClassInfo info("Theme", &NSObject::staticClass(), nullptr);
    return info;
}

Theme::Theme() : openButtonMark_(withSign({})), logo_(openButtonMark_) {}

Theme::Mark Theme::withSign(const Mark& mark) {
    return {mark.icon ? mark.icon : VectorIcon::named("flare"), mark.picture};
}

std::string Theme::addFontFile(const std::string& path) {
    return flarebox::addFontFile(path);
}

Ref<Theme> Theme::themeWithFile(const std::string& path, Ref<NSError>* error) {
    Ref<NSError> failure;
    Ref<Theme> theme = read(path, failure);
    if (theme) return theme;
    if (error)
        *error = failure;
    else
        LogSink::write(LogLevelError, "Flarebox: " + failure->localizedDescription());
    return nullptr;
}

std::vector<std::string> Theme::contrastProblems() const {
    std::vector<std::string> problems;
    for (auto& poor : poorContrasts(palette_)) problems.push_back(std::move(poor.text));
    return problems;
}

}  // namespace flarebox
