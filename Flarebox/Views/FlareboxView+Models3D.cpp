#include <Flarebox/Core/Logging.h>
#include <Flarebox/Views/FlareboxView.h>
#include <Flarebox/Views/SCNContentView.h>
#include <Flarebox/Views/UIView+extends.h>
#include <Foundation/NSFileManager.h>
#include <Networking/AFURLSessionManager.h>
#include <SceneKit/SCNView.h>
#include <SceneKit/ZorbRenderer.h>
#include <SceneKit/ZorbRendererUtils.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIPalette.h>
#include <UIKit/UIWindow.h>

#include <algorithm>
#include <set>

namespace flarebox {
namespace {

constexpr double fullScreenButtonWidth = 36;

/// Models lie in the application's documents directory, each under its asset's uid. Empty where that cannot be: the uid
/// comes from the network and must name nothing but a file there.
std::string modelPath(const FXAssetInfo& asset) {
    const std::string uid = asset.uid().string();
    if (!isPlainPathComponent(uid)) return {};
    const std::string folder = NSFileManager::defaultManager().documentsPath();
    return folder.empty() ? std::string() : folder + "/" + uid;
}

/// The uid as it may stand within a line.
NSString printable(const NSString& uid) {
    constexpr std::size_t longest = 200;
    std::string text = uid.string().substr(0, longest);
    std::ranges::replace_if(
        text, [](unsigned char c) { return c < ' ' || c == 127; }, '?');
    return text;
}

}  // namespace

void FlareboxView::setup3DView() {
    scnContent_ = SCNContentView::createSCNContentView();
    if (!scnContent_) return;
    scnContent_->setDelegate(this);
    addToParent(*scnContent_, *scnContainer_);
    scnContent_->scnView().setBackgroundColor(UIPalette::current().color(UIPalette::Shade::Content));
    ZorbRendererUtils::loadDefaultSceneForView(scnContent_->scnView());
    sizeFullScreenButton();
}

void FlareboxView::sizeFullScreenButton() {
    const double share = scnContent_->is3DViewFullScreen() ? 1 : gridUnit();
    scnContent_->btn3DModeWidthContraint().setConstant(fullScreenButtonWidth * share);
}

void FlareboxView::loadAll3DAssets() {
    remove3DFilesCached();
    if (!assestsList_) return;
    // Loading may change the list that is walked.
    const AssetList assets = *assestsList_;
    for (const Ref<FXAssetInfo>& asset : assets) {
        if (asset) load3DModel(asset);
    }
}

void FlareboxView::remove3DFilesCached() {
    const NSFileManager& files = NSFileManager::defaultManager();
    const std::string folder = files.documentsDirectory();
    if (folder.empty()) return;
    std::set<std::string, std::less<>> listed;
    if (assestsList_) {
        for (const Ref<FXAssetInfo>& asset : *assestsList_) {
            if (asset) listed.insert(asset->uid().string());
        }
    }
    for (const std::string& name : files.contentsOfDirectoryAtPath(folder)) {
        const std::string path = folder + "/" + name;
        // A link under a model's name would lead out of the folder.
        if (listed.contains(name) && !isBrokenModel(name) && files.isRegularFileAtPath(path)) continue;
        files.removeItemAtPath(path);
        assetNodesDict_.erase(name);
    }
    unreadableModels_.clear();
}

bool FlareboxView::isBrokenModel(std::string_view name) const {
    const auto node = assetNodesDict_.find(name);
    return unreadableModels_.contains(name) || (node != assetNodesDict_.end() && node->second->hasBrokenModel());
}

void FlareboxView::load3DModel(const Ref<FXAssetInfo>& asset) {
    if (!asset) return;
    std::string path = modelPath(*asset);
    if (NSFileManager::defaultManager().fileExistsAtPath(path)) return handleLoad3DAssetCompletion(path, asset);
    const NSURL url = NSURL::URLWithString(asset->fileIos());
    // The folder is needed from now on.
    if (url && NSFileManager::defaultManager().documentsDirectory().empty()) path.clear();
    show3DContent(*asset, url && !path.empty());
    if (!url) return;
    if (path.empty()) return errorLog("The model of the asset \"%@\" has no place on disk", printable(asset->uid()));
    AFURLSessionManager::manager()
        ->downloadTaskWithRequest(
            NSURLRequest::requestWithURL(url), [path] { return path; },
            [self = Ref<FlareboxView>(this), path, asset](const Ref<NSHTTPURLResponse>&, const Value&,
                                                          const Ref<NSError>& error) {
                if (!error) return self->handleLoad3DAssetCompletion(path, asset);
                errorLog("%@", error->localizedDescription());
                self->show3DContent(*asset, false);
            })
        ->resume();
}

void FlareboxView::handleLoad3DAssetCompletion(const std::string& path, const Ref<FXAssetInfo>& asset) {
    if (!asset) return;
    create3DAssetNodeWithPath(path, asset);
    if (!scnContent_ || !isCurrentAsset(*asset)) return;
    SCNNode& root = scnContent_->scnView().scene()->rootNode();
    while (!root.childNodes().empty()) root.childNodes().front()->removeFromParentNode();
    display3DModel(asset);
    show3DContent(*asset, false);
}

void FlareboxView::show3DContent(const FXAssetInfo& asset, bool isLoading) {
    using enum SCNContentView::Content;
    if (!scnContent_ || !isCurrentAsset(asset)) return;
    const Ref<SCNNode> node = nodeOf(asset);
    const bool isInScene = node && node->parentNode();
    scnContent_->showContent(isInScene ? Model : isLoading ? Loading : None);
}

void FlareboxView::create3DAssetNodeWithPath(const std::string& path, const Ref<FXAssetInfo>& asset) {
    if (!asset || nodeOf(*asset)) return;
    const auto renderer = make<ZorbRenderer>();
    if (const Ref<SCNNode> node = renderer->createSCNNodeFromFile(path)) {
        assetNodesDict_[asset->uid().string()] = node;
        return;
    }
    unreadableModels_.insert(asset->uid().string());
    if (renderer->lastError()) errorLog("%@", renderer->lastError()->localizedDescription());
}

Ref<SCNNode> FlareboxView::nodeOf(const FXAssetInfo& asset) const {
    const auto node = assetNodesDict_.find(asset.uid().text());
    return node == assetNodesDict_.end() ? nullptr : node->second;
}

void FlareboxView::display3DModel(const Ref<FXAssetInfo>& asset) {
    const Ref<SCNNode> node = asset ? nodeOf(*asset) : nullptr;
    if (!node || !scnContent_) return;
    SCNView& view = scnContent_->scnView();
    ZorbRendererUtils::scaleNode(*node, view);
    view.scene()->rootNode().addChildNode(*node);
}

void FlareboxView::refreshRootNode() {
    if (!scnContent_) return;
    if (const Ref<SCNNode> node = currentAsset_ ? nodeOf(*currentAsset_) : nullptr) {
        node->removeFromParentNode();
        display3DModel(currentAsset_);
    }
    sizeFullScreenButton();
    setNeedsLayout();
    setNeedsDisplay();
    layoutIfNeeded();
}

void FlareboxView::showFullScreen(SCNContentView& view) {
    UIApplicationDelegate* delegate = UIApplication::sharedApplication().delegate();
    UIWindow* window = delegate ? delegate->window() : nullptr;
    view.removeFromSuperview();
    if (window) {
        view.setFrame(window->bounds());
        addToParent(view, *window);
        window->layoutIfNeeded();
    }
    refreshRootNode();
}

void FlareboxView::leaveFullScreen() {
    if (scnContent_ && scnContent_->is3DViewFullScreen()) scnContent_->press3DFullButton();
    if (videoView_) videoView_->dismissPlayer();
}

void FlareboxView::exitFullScreenMode(SCNContentView& view) {
    view.removeFromSuperview();
    view.setFrame(scnContainer_->bounds());
    addToParent(view, *scnContainer_);
    scnContainer_->layoutIfNeeded();
    refreshRootNode();
}

}  // namespace flarebox
