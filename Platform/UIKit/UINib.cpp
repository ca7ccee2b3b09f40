#include <Foundation/LogSink.h>
#include <Foundation/NSBundle.h>
#include <UIKit/LayoutFiles/LayoutBlueprint.h>
#include <UIKit/LayoutFiles/LayoutInstance.h>
#include <UIKit/UINib.h>

#include <fstream>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace flarebox {
namespace {

constexpr int errorCode = 1;
constexpr std::streamsize longestFile = 1 << 20;

std::optional<std::string> contents(const std::string& path) {
    std::ifstream file(path, std::ios::binary | std::ios::ate);
    const std::streamsize size = file ? static_cast<std::streamsize>(file.tellg()) : -1;
    if (size < 0 || size > longestFile) return std::nullopt;
    std::string text(static_cast<std::size_t>(size), '\0');
    file.seekg(0);
    if (!file.read(text.data(), size)) return std::nullopt;
    return text;
}

}  // namespace

/// A file and what became of it. Shared by all layouts of the same file.
struct UINib::File {
    std::string name;
    /// Tells whether the text has changed; 0 for no file.
    std::size_t textHash = 0;
    std::optional<LayoutElement> content;
    LayoutProblem problem;
    // Made at the first use that succeeds: the classes named in the file may become known later than the file.
    mutable std::optional<layout::LayoutBlueprint> blueprint;
    mutable bool isReported = false;

    static std::shared_ptr<const File> make(std::string name, const std::optional<std::string>& text) {
        auto file = std::make_shared<File>();
        file->name = std::move(name);
        file->textHash = hashOf(text);
        if (text)
            file->content = readLayoutFile(*text, file->problem);
        else
            file->problem.text = "the file cannot be read";
        return file;
    }

    static std::size_t hashOf(const std::optional<std::string>& text) {
        return text ? std::hash<std::string>()(*text) : 0;
    }

    /// By path; those that are part of the program by bundle and name, with a line feed between.
    static std::map<std::string, std::shared_ptr<const File>>& files() {
        static std::map<std::string, std::shared_ptr<const File>> files;
        return files;
    }

    static std::shared_ptr<const File> ofBundle(const NSBundle& bundle, std::string_view name) {
        const NSString path = bundle.pathForResource(name, "xml");
        const NSString builtIn = path ? NSString() : bundle.builtInResource(name, "xml");
        const std::string fileName = std::string(name) + ".xml";
        if (!path && !builtIn) return make(fileName, std::nullopt);
        auto& file = files()[path ? path.string() : bundle.bundlePath() + "\n" + fileName];
        if (!file) file = make(fileName, path ? contents(path.string()) : builtIn.string());
        return file;
    }

    Ref<NSError> error(const LayoutProblem& what) const {
        std::string text = name;
        if (what.line > 0) text += ":" + std::to_string(what.line);
        return NSError::errorWithDomain(UINibErrorDomain, errorCode, text + ": " + what.text);
    }

    void tell(const LayoutProblem& what) const {
        if (std::exchange(isReported, true)) return;
        LogSink::write(LogLevelError, "UINib: " + error(what)->localizedDescription());
    }

    const layout::LayoutBlueprint* prepared(LayoutProblem& what) const {
        if (!content)
            what = problem;
        else if (!blueprint)
            blueprint = layout::makeBlueprint(*content, name, what);
        return blueprint ? &*blueprint : nullptr;
    }
};

const ClassInfo& UINib::staticClass() {
    static const ClassInfo info("UINib", &NSObject::staticClass(), nullptr);
    return info;
}

UINib::~UINib() = default;

Ref<UINib> UINib::nibWithNibName(std::string_view name, NSBundle& bundle) {
    auto nib = make<UINib>();
    nib->file_ = File::ofBundle(bundle, name);
    return nib;
}

bool UINib::readChangedFiles() {
    bool hasChanged = false;
    for (auto& [path, file] : File::files()) {
        if (path.find('\n') != path.npos) continue;
        const auto text = contents(path);
        if (File::hashOf(text) == file->textHash) continue;
        const std::shared_ptr<const File> changed = File::make(file->name, text);
        LayoutProblem problem;
        if (changed->prepared(problem)) {
            file = changed;
            hasChanged = true;
        } else {
            changed->tell(problem);
        }
    }
    return hasChanged;
}

Ref<UINib> UINib::nibWithText(std::string_view text, std::string_view name) {
    auto nib = make<UINib>();
    nib->file_ = File::make(std::string(name), std::string(text));
    return nib;
}

std::vector<Ref<NSObject>> UINib::instantiateWithOwner(NSObject* owner, Ref<NSError>* error) const {
    LayoutProblem problem;
    if (const layout::LayoutBlueprint* blueprint = file_->prepared(problem)) {
        layout::LayoutInstance instance(*blueprint, owner, problem);
        if (instance.make()) return instance.topLevelObjects();
    }
    if (error)
        *error = file_->error(problem);
    else
        file_->tell(problem);
    return {};
}

}  // namespace flarebox
