#pragma once

#include <Flarebox/Managers/FlareboxManager.h>
#include <Flarebox/Models/FXAssetInfo.h>
#include <Flarebox/Views/CouponView.h>
#include <Flarebox/Views/FlareboxViewDelegate.h>
#include <Flarebox/Views/SCNContentView.h>
#include <Flarebox/Views/VideoView.h>
#include <Foundation/Export.h>
#include <Foundation/NSTimer.h>
#include <Networking/AFHTTPSessionManager.h>
#include <UIKit/UICollectionView.h>
#include <UIKit/UIView.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>

namespace flarebox {

class SCNNode;
class UIActivityIndicatorView;
class UIButton;
class UIImageView;
class UILabel;
class NSNotification;

/// What the service is told of. The first three are the numbers of the modes; looking at pictures is not told.
enum EngagementAction : std::uint64_t {
    EngagementAction2D = 0,
    EngagementAction3D = 1,
    EngagementActionVideo = 2,
    EngagementActionFlarebox = 3,
    EngagementActionCoupon = 4
};

/// The tab: a panel at the left edge of its parent, hidden beyond the edge while closed, with an open button that
/// sticks out. It loads the game's assets as soon as it exists and shows them when opened. The host owns it, and so
/// does the network monitor from the first load on, until another tab loads or the host adapter goes. Made by `init()`
/// only. Main thread only: on another one the operations below "Showing" and "Data" do nothing, `init` gives null, and
/// the log says so. The last reference may go on any thread, and in any callback.
class FLAREBOX_EXPORT FlareboxView : public UIView,
                                     public UICollectionViewDataSource,
                                     public UICollectionViewDelegate,
                                     public CouponViewDelegate,
                                     public SCNContentViewDelegate,
                                     public VideoViewDelegate {
    FLAREBOX_CLASS(FlareboxView)
public:
    FlareboxView();
    ~FlareboxView() override;

    /// The tab made from its layout file; null, with a message in the log, when the kit's resources are missing.
    static Ref<FlareboxView> init();

    /// Who follows what the tab does. Not owned; may be null. One that is no NSObject takes itself back before it goes.
    void setDelegate(FlareboxViewDelegate* delegate) { delegate_ = delegate; }
    /// Null also once a delegate that is an NSObject has gone.
    FlareboxViewDelegate* delegate() const { return delegate_.get(); }

    // Showing.
    /// Attaches the tab, closed, to the application's main window 0.1 seconds from now, replacing any tab there.
    /// Nothing happens without a window.
    void showAtWindow();
    /// Attaches the tab, closed, to a view. A parent that it is attached to already gets a second set of constraints:
    /// remove the tab first.
    void showAtView(UIView& parent);
    /// Takes the tab and its open button away, and pauses what it plays.
    void removeFromSuperview() override;
    void open() { toggleFlarebox(true, true); }    ///< slides in
    void close() { toggleFlarebox(false, true); }  ///< slides out
    void toggleFlarebox();                         ///< whichever it is not
    /// Animated over 0.3 seconds, or at once. An open tab asked to open does nothing.
    void toggleFlarebox(bool open, bool animated);
    /// The state that the tab has or is moving to. A tab without a parent counts as open.
    bool isOpened() const;
    void showFlareboxButton() { showFlareboxButton(true); }   ///< the tab can be opened by the player
    void hideFlareboxButton() { showFlareboxButton(false); }  ///< closes the tab; `open` opens it all the same
    /// Hiding the open button also closes the tab.
    void showFlareboxButton(bool show);
    bool isFlareboxButtonVisible() const;  ///< as said last, whether the tab is attached or not
    /// 0 to 1.
    void setFlareboxButtonAlpha(double alpha);

    // Data.
    /// Seconds between refreshes; 0 or less for the default. Restarts the countdown. Kept in the configuration, so it
    /// holds for the next countdowns of every tab.
    void changeRefreshDataTime(std::int32_t seconds);
    /// Starts a new game session; for hosts that have changed the configured game. Nothing happens offline or while a
    /// load is under way: then the former session stays in use until this is called again.
    void updateWithNewGameUDID() { createGameSession(); }

    // What the tab holds, for tools and tests.
    /// What the list shows: the assets that have an icon; null before the first list.
    const std::shared_ptr<AssetList>& assestsList() const { return assestsList_; }
    /// The product that is shown; null while there is none.
    const Ref<FXAssetInfo>& currentAsset() const { return currentAsset_; }
    AssetMode currentAssetMode() const { return currentAssetMode_; }  ///< what the content area shows
    /// An AFNetworkReachabilityStatus, as last reported.
    std::int64_t netWorkStatus() const { return netWorkStatus_; }
    std::int32_t refreshDataTime() const { return refreshDataTime_; }  ///< seconds left until the next refresh
    bool isHasBeenOpened() const { return isHasBeenOpened_; }          ///< at least once
    /// The models read so far, by the uids of their assets.
    const std::map<std::string, Ref<SCNNode>, std::less<>>& assetNodesDict() const { return assetNodesDict_; }
    /// The content views; null when the kit's resources are missing.
    const Ref<SCNContentView>& scnContent() const { return scnContent_; }
    const Ref<VideoView>& videoView() const { return videoView_; }  ///< the same
    /// An image-loading client, made on first use.
    AFHTTPSessionManager& operationManager();

    // The load chain. While a load is under way, or the network is known to be away, asking for another does nothing.
    /// Begins it: an identifier, then the network, a session, the list.
    void loadData();
    /// Whether there is an identifier of the device, made if it may be; shows why not.
    bool validSessionData();
    void createGameSession();  ///< then loads the list
    void loadAssets();         ///< and shows them, in place of the former
    void startFreshTimer();    ///< begins the countdown anew
    void countDown();          ///< a second less; at 0 loads again, where there is nothing to show or nobody looks
    bool isNetworkConnected() const;  ///< as last reported; false before
    void showLoadingView(bool show);  ///< in place of everything else
    /// A line for the player in place of the content, shrunk or broken where it is long.
    void showErrorMessage(std::string_view message);
    void hideErrorMessage();         ///< nothing else is shown in its place
    void showRequestErrorMessage();  ///< "Something went wrong", in the player's language
    void showNetworkErrorMessage();  ///< "You have no internet connection", the same
    void showEmptyView();            ///< for a list without assets
    void showAssetView();            ///< the current asset and the list

    // Layout.
    /// The size that the tab has on the main screen, in points, without what lies below the screen's unsafe edge.
    static CGSize getViewSize();
    /// Fits the tab to the screen at the next turn of the main queue.
    void deviceOrientationDidChange();

    // Browsing.
    /// Drops assets without an icon from the list and shows what is left.
    void updateFlarebox();
    /// Null does nothing.
    void selectAsset(const Ref<FXAssetInfo>& asset);
    /// Moves the ring to the current asset.
    void reloadCellVisibles();
    /// Scroll the list by one item; the selection stays.
    void pressNextAssetButton();
    void pressPreviousAssetButton();  ///< backwards

    // Modes. One that the current asset does not allow is refused without a word.
    bool isEnabledMode(AssetMode mode) const;  ///< whether the current asset has something to show in it
    /// Shows the current asset in that mode and, while the tab is open, tells the service of 3D and videos.
    void changeAssetMode(AssetMode mode);
    /// The same, untold.
    void focusAssetMode(AssetMode mode);
    /// Enables the mode buttons for the current asset and shows it in the mode in force, or in one that it has.
    void validateAssetPreventModes();

    // Events.
    /// Tells the service what the player did with the current asset. Dropped without an asset, a game session or a
    /// network.
    void sendEngagementEvent(EngagementAction type);

    // Actions.
    /// Pauses the video that plays in the panel, if one does.
    void pauseVideo();
    /// Opens the companion application, or its page in the store where it is not installed; the second is for
    /// development builds of it.
    void openKestrinProd();
    void openKestrinDev();                              ///< the same, of its development build
    static NSString appSchemaLinkProd();                ///< the link that opens it
    static NSString appSchemaLinkDev();                 ///< the link that opens its development build
    static NSString appStoreLink();                     ///< its page in the store
    void closeCouponView(CouponView& view) override;    ///< takes the coupon away
    void openKestrinApp(CouponView& view) override;     ///< unless the host refuses the link
    void couponViewDidSave(CouponView& view) override;  ///< tells the delegate

    // Models. Each lies in the application's documents directory under its asset's uid, and nothing else does. For a
    // null asset nothing happens.
    void setup3DView();  ///< makes the 3D view, once
    /// Removes what is not a listed asset's and loads the models of all that are. A file that turned out to be no model
    /// is removed as well: what came in its place, a network's own page for example, is not to stay for good.
    void loadAll3DAssets();
    void remove3DFilesCached();                       ///< what is not a listed asset's, folders included
    void load3DModel(const Ref<FXAssetInfo>& asset);  ///< from disk, or from its address
    /// The file is there: reads it and, for the current asset, shows the model.
    void handleLoad3DAssetCompletion(const std::string& path, const Ref<FXAssetInfo>& asset);
    /// Reads the file and keeps the model under the asset's uid; a file that is no model is told in the log.
    void create3DAssetNodeWithPath(const std::string& path, const Ref<FXAssetInfo>& asset);
    /// Puts the asset's model into the 3D view, or what there is to say of it.
    void display3DModel(const Ref<FXAssetInfo>& asset);
    /// Fits the current asset's model and the full-screen button to the screen as it is now.
    void refreshRootNode();
    void showFullScreen(SCNContentView& view) override;      ///< hands the model to the window
    void exitFullScreenMode(SCNContentView& view) override;  ///< takes it back
    /// Takes model and player back from the window.
    void leaveFullScreen();

    // The full-screen player comes and goes: the tab steps aside.
    void startPlayingVideo() override;  ///< steps behind the player
    void stopVideo() override;          ///< comes to the front again

    // Hooks of the platform.
    void awakeFromNib() override;             ///< sets the tab up and begins to load
    void paletteDidChange() override;         ///< takes the look over that is in no layout file
    void didMoveToSuperview() override;       ///< closes the tab
    void didMoveToWindow() override;          ///< out of it, leaves full screen and pauses the video
    void safeAreaInsetsDidChange() override;  ///< keeps clear of the screen's edges
    /// The current product.
    UIView* preferredFocusedView() override;
    bool pressBegan(UIPressType type) override;  ///< modes by the shoulder buttons, closing by going back
    bool stickHeld(CGPoint deflection, double seconds) override;  ///< turns the model, scrolls the list
    /// Does nothing with the configuration's `showFlareboxButton`, which it observes; the rest is its superclass's.
    void observeValueForKeyPath(std::string_view keyPath, NSObject& object, const NSKeyValueChange& change,
                                void* context) override;

private:
    // FlareboxView.cpp
    void addCloseGestureAction();
    void handleFlareboxOpened();
    void pressOpenButton() { toggleFlarebox(); }
    void pressCloseButton() { toggleFlarebox(false, true); }
    void attachOpenButton(UIView& parent);
    void placePanel(bool open, bool animated);
    void placeOpenButton(bool open);
    void tellWhetherOpen(bool open);

    // FlareboxView+Data.cpp
    void startLoad(const std::function<void()>& load);
    void tellMissingIdentifier();
    void reachabilityChanged(std::int64_t status);
    void gameSessionCreated(const Ref<FXSessionInfo>& session, const Ref<NSError>& error);
    void assetsLoaded(const std::shared_ptr<AssetList>& assets, const Ref<NSError>& error);
    void loadFailed(const Ref<NSError>& error);
    bool shouldRefresh() const;

    // FlareboxView+Layout.cpp
    void setupView();
    void layoutView();
    void loadLayoutConstrains();
    /// What the design's point is on the main screen, in points.
    static double gridUnit();
    /// Of the whole panel, with what lies below the screen's unsafe edge.
    static double panelWidth();
    void orientationChangedMethod();
    void relayoutLayers() {}

    // FlareboxView+Theme.cpp
    /// What of the theme is not in the palette.
    void showTheme();
    void sizeOpenButton();

    // FlareboxView+Browsing.cpp
    /// The list fades out where it goes on.
    void showListEnds();
    void loadAssetPicture(const NSString& address);
    void tellSelection();
    void selectFirstAsset();
    bool isCurrentAsset(const FXAssetInfo& asset) const;
    std::size_t collectionViewNumberOfItemsInSection(UICollectionView& view, std::size_t section) override;
    CGSize collectionViewLayoutSizeForItemAtIndexPath(UICollectionView& view, const NSIndexPath& path) override;
    Ref<UICollectionViewCell> collectionViewCellForItemAtIndexPath(UICollectionView& view,
                                                                   const NSIndexPath& path) override;
    void collectionViewDidSelectItemAtIndexPath(UICollectionView& view, const NSIndexPath& path) override;
    void collectionViewWillDisplayKeptCell(UICollectionView& view, UICollectionViewCell& cell,
                                           const NSIndexPath& path) override;
    void scrollViewDidScroll(UIScrollView& view) override;
    void scrollViewDidEndDragging(UIScrollView& view, bool willDecelerate) override;
    void scrollViewWillBeginDecelerating(UIScrollView& view) override;

    // FlareboxView+Models3D.cpp
    void sizeFullScreenButton();
    /// Tells what there is of the asset's model, if it is the current one.
    void show3DContent(const FXAssetInfo& asset, bool isLoading);
    Ref<SCNNode> nodeOf(const FXAssetInfo& asset) const;
    bool isBrokenModel(std::string_view name) const;

    // FlareboxView+Modes.cpp
    void press2DMode() { changeAssetMode(AssetMode2D); }
    void press3DMode() { changeAssetMode(AssetMode3D); }
    void pressVideoMode() { changeAssetMode(AssetModeVideo); }

    // FlareboxView+Focus.cpp
    bool goBack();
    void goToMode(bool backwards);

    // FlareboxView+Actions.cpp
    void pressCouponButton();
    void pressBuyButton();
    /// Opens the link unless the host does not want it.
    void openLink(const NSURL& url);
    /// The companion application, or the place to get it.
    void openApplication(const NSString& link);

    // Bound by the layout file; owned by the view tree.
    Weak<UIView> emptyView_, assetView_, contentView_, assetContentView_, leftAssetListShadowView_,
        rightAssetListShadowView_, loadingView_, videoContainer_, scnContainer_, preventerMenuView_, panelShadow_;
    Weak<UICollectionView> collectionView_;
    Weak<UILabel> lbAssetTitle_, lbAssetDesc_, lbEmptyAssets_, lbEmptyAssetsDetail_, lbErrorMessage_, lbFlareboxLogo_;
    Weak<UIButton> btnClose_, btn2d_, btn3d_, btnVideo_, btnCoupon_, btnBuy_, btnPrevious_, btnNext_;
    Weak<UIImageView> imgAssetContent_, imgLogo_;
    Weak<UIActivityIndicatorView> indicator_;
    Weak<NSLayoutConstraint> closeButtonTopContraint_, assetContainerBottom_, logoTopContraint_, assetLogoPadding_,
        preventerMenuWidth_, openButtonHeightConstraint_, contentLeading_;
    /// Owned: it is the parent's sub-view while the tab is attached, and nobody's in between.
    Ref<UIButton> btnOpen_;

    /// The tab's leading edge against its parent's: 0 open, minus the tab's width closed. Held by the parent.
    Weak<NSLayoutConstraint> constraintLeadingContentView_;
    Ref<NSLayoutConstraint> widthFixedConstraint_, heightFixedConstraint_, openButtonWidthContraint_;
    Ref<NSLayoutConstraint> centerConstraint_, openButtonLeading_, openButtonCenter_;

    WeakDelegate<FlareboxViewDelegate> delegate_;
    Ref<AFHTTPSessionManager> operationManager_;
    std::shared_ptr<AssetList> assestsList_;
    Ref<FXAssetInfo> currentAsset_;
    /// Made by the first press of the coupon button.
    Ref<CouponView> couponView_;
    Ref<SCNContentView> scnContent_;
    Ref<VideoView> videoView_;
    std::map<std::string, Ref<SCNNode>, std::less<>> assetNodesDict_;
    /// Names of files that turned out to be no models.
    std::set<std::string, std::less<>> unreadableModels_;
    Ref<NSTimer> refreshTimer_;
    AssetMode currentAssetMode_ = AssetMode2D;
    std::int64_t netWorkStatus_ = 0;
    std::int64_t currentOrientation_ = 0;
    std::int32_t refreshDataTime_ = 0;
    /// Counts the times that the tab was opened or closed.
    std::uint32_t toggles_ = 0;
    /// An opened event is still owed for the current opening.
    bool isNeedFlareboxOpenedEvent_ = false;
    bool isHasBeenOpened_ = false;
    /// As the layout file has it.
    NSString ownTitle_;
    // What the delegate knows.
    bool isKnownToBeOpen_ = false;
    Ref<FXAssetInfo> knownSelection_;
    AssetMode knownMode_ = AssetMode2D;
};

}  // namespace flarebox
