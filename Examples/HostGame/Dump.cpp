#include "Dump.h"

#include "Fields.h"

#include <Flarebox/Managers/FlareboxManager.h>
#include <Flarebox/Views/AssetCollectionViewCell.h>
#include <Flarebox/Views/SCNContentView.h>
#include <Flarebox/Views/VideoView.h>
#include <Foundation/NSFileManager.h>
#include <SceneKit/SCNView.h>
#include <UIKit/UIAccessibility.h>
#include <UIKit/UIActivityIndicatorView.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIFocusSystem.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UIWindow.h>

namespace flarebox::hostgame {
namespace {

Value orNull(const Value& value) {
    return value ? value : Value::null();
}

template <class Record>
Value uidOf(const Ref<Record>& record) {
    return record ? orNull(record->uid()) : Value::null();
}

Value frameOf(const UIView& view) {
    const CGRect frame = view.convertRectToView(view.bounds(), nullptr);
    return NSArray{frame.minX(), frame.minY(), frame.width(), frame.height()};
}

int countTabs(const UIView& view) {
    int count = dynamic_cast<const FlareboxView*>(&view) ? 1 : 0;
    for (const Ref<UIView>& child : view.subviews()) count += countTabs(*child);
    return count;
}

Value dumpAssets(const FlareboxView& tab) {
    NSMutableArray uids = NSMutableArray::array();
    if (!tab.assestsList()) return uids;
    for (const Ref<FXAssetInfo>& asset : *tab.assestsList()) uids.addObject(uidOf(asset));
    return uids;
}

Value dumpCells(const FlareboxView& tab) {
    NSMutableArray cells = NSMutableArray::array();
    const auto* list = dynamic_cast<const UICollectionView*>(findField(tab, "collectionView").object);
    if (!list) return cells;
    for (const NSIndexPath& path : list->indexPathsForVisibleItems()) {
        const Ref<UICollectionViewCell> cell = list->cellForItemAtIndexPath(path);
        const auto* assetCell = dynamic_cast<const AssetCollectionViewCell*>(cell.get());
        if (!assetCell) continue;
        const UIImageView* picture = assetCell->imgAsset();
        const UIActivityIndicatorView* indicator = assetCell->indicator();
        NSMutableDictionary entry = NSMutableDictionary::dictionary();
        entry.setObject(path.row, "row");
        entry.setObject(uidOf(assetCell->asset()), "uid");
        entry.setObject(frameOf(*assetCell), "frame");
        entry.setObject(picture && picture->layer().borderWidth() > 0, "focused");
        entry.setObject(indicator && !indicator->isHidden(), "loading");
        entry.setObject(picture && picture->image(), "hasImage");
        cells.addObject(entry);
    }
    return cells;
}

Value dumpView(const UIView& view) {
    NSMutableDictionary entry = NSMutableDictionary::dictionary();
    entry.setObject(frameOf(view), "frame");
    entry.setObject(view.isHidden(), "hidden");
    entry.setObject(view.isVisibleInWindow(), "visible");
    entry.setObject(view.alpha(), "alpha");
    if (hasText(view)) entry.setObject(orNull(textOf(view)), "text");
    if (const auto* control = dynamic_cast<const UIControl*>(&view)) {
        entry.setObject(control->isEnabled(), "enabled");
        entry.setObject(control->isSelected(), "selected");
    }
    if (const auto* picture = dynamic_cast<const UIImageView*>(&view)) {
        entry.setObject(static_cast<bool>(picture->image()), "hasImage");
    }
    return entry;
}

Value dumpFields(const FlareboxView& tab) {
    NSMutableDictionary views = NSMutableDictionary::dictionary();
    forEachField(tab, [&](const std::string& name, NSObject& object) {
        if (const auto* view = dynamic_cast<const UIView*>(&object))
            views.setObject(dumpView(*view), name);
        else if (const auto* constraint = dynamic_cast<const NSLayoutConstraint*>(&object)) {
            views.setObject(NSDictionary{{"constant", constraint->constant()}}, name);
        }
    });
    return views;
}

Value dumpTexts(const std::vector<std::string>& texts) {
    return NSArray::arrayWithValues(std::vector<Value>(texts.begin(), texts.end()));
}

Value dumpNodes(const FlareboxView& tab) {
    std::vector<std::string> uids;
    for (const auto& [uid, node] : tab.assetNodesDict()) uids.push_back(uid);
    return dumpTexts(uids);
}

Value dumpDocuments() {
    const NSFileManager& files = NSFileManager::defaultManager();
    return dumpTexts(files.contentsOfDirectoryAtPath(files.documentsDirectory()));
}

std::uint64_t countSceneChildren(const FlareboxView& tab) {
    const SCNScene* scene = tab.scnContent() ? tab.scnContent()->scnView().scene().get() : nullptr;
    return scene ? scene->rootNode().childNodes().size() : 0;
}

/// Null while the current asset has no video.
Value dumpVideo(const FlareboxView& tab) {
    if (!tab.currentAsset() || !NSURL::URLWithString(tab.currentAsset()->videoMobile())) return Value::null();
    const AVPlayer* player = tab.videoView() ? tab.videoView()->avPlayer().get() : nullptr;
    if (!player) return Value::null();
    NSMutableDictionary video = NSMutableDictionary::dictionary();
    video.setObject(player->rate(), "rate");
    video.setObject(player->currentTime(), "time");
    video.setObject(player->duration(), "duration");
    video.setObject(player->error() ? Value(player->error()->localizedDescription()) : Value::null(), "error");
    return video;
}

Value dumpElements(UIWindow* window) {
    NSMutableArray elements = NSMutableArray::array();
    if (!window) return elements;
    for (const UIAccessibilityElement& element : accessibilityElementsOf(*window)) {
        const CGRect& frame = element.frame;
        NSMutableDictionary entry = NSMutableDictionary::dictionary();
        entry.setObject(nameOf(element.role), "role");
        entry.setObject(orNull(element.label), "name");
        if (element.value) entry.setObject(element.value, "value");
        entry.setObject(!contains(element.traits, UIAccessibilityTraits::NotEnabled), "enabled");
        entry.setObject(contains(element.traits, UIAccessibilityTraits::Selected), "selected");
        entry.setObject(window->focusSystem().hasRing(*element.view), "focused");
        entry.setObject(NSArray{frame.minX(), frame.minY(), frame.width(), frame.height()}, "frame");
        elements.addObject(entry);
    }
    return elements;
}

}  // namespace

NSDictionary dump(Game& game) {
    const FlareboxView& tab = game.tab();
    UIWindow* window = game.window();
    return {
        {"isOpened", tab.isOpened()},
        {"currentAssetMode", static_cast<std::uint64_t>(tab.currentAssetMode())},
        {"currentAsset", uidOf(tab.currentAsset())},
        {"assestsList", dumpAssets(tab)},
        {"netWorkStatus", tab.netWorkStatus()},
        {"refreshDataTime", tab.refreshDataTime()},
        {"isHasBeenOpened", tab.isHasBeenOpened()},
        {"sessionInfo", uidOf(FlareboxManager::sharedInstance().sessionInfo())},
        {"openedURLs", dumpTexts(game.surroundings().openedURLs())},
        {"assetNodes", dumpNodes(tab)},
        {"documents", dumpDocuments()},
        {"sceneChildren", countSceneChildren(tab)},
        {"is3DViewFullScreen", tab.scnContent() && tab.scnContent()->is3DViewFullScreen()},
        {"video", dumpVideo(tab)},
        {"tabsInWindow", window ? countTabs(*window) : 0},
        {"cells", dumpCells(tab)},
        {"views", dumpFields(tab)},
        {"accessibility", dumpElements(window)},
    };
}

}  // namespace flarebox::hostgame
