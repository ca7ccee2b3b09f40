#include <SceneKit/ZorbRenderer.h>

#include <SceneKit/ModelFile.h>
#include <SceneKit/ModelSource.h>

#include <new>

namespace flarebox {
namespace {

std::optional<detail::ModelSummary> summaryOf(const std::string& file, std::string& failure) {
    try {
        return detail::readModelSummary(file, failure);
    } catch (const std::bad_alloc&) {
        failure = "there is not enough memory for it";
        return std::nullopt;
    }
}

}  // namespace

const ClassInfo& ZorbRenderer::staticClass() {
    static const ClassInfo info("ZorbRenderer", &NSObject::staticClass(), createObject<ZorbRenderer>);
    return info;
}

Ref<SCNNode> ZorbRenderer::createSCNNodeFromFile(std::string_view path) {
    lastError_ = nullptr;
    std::string file(path), failure;
    const auto summary = summaryOf(file, failure);
    if (!summary) {
        lastError_ = NSError::errorWithDomain(ZorbErrorDomain, 1, file + ": " + failure);
        return nullptr;
    }
    return make<SCNNode>(
        std::make_shared<const detail::ModelSource>(std::move(file), summary->bounds, summary->isAnimated));
}

}  // namespace flarebox
