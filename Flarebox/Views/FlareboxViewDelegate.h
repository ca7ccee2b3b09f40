#pragma once

#include <Flarebox/Models/FXAssetInfo.h>
#include <Foundation/Export.h>
#include <Foundation/NSError.h>

#include <cstdint>

namespace flarebox {

class FlareboxView;

/// What the tab's content area shows.
enum AssetMode : std::uint64_t { AssetMode2D = 0, AssetMode3D = 1, AssetModeVideo = 2 };

/// What a host can follow of its tab: to pause the game, to count, to say no to a link. Called on the main thread, once
/// for each change and after it, inside whatever brought it about; of a link before it is opened. Everything that a
/// host may do in a callback it may do here.
class FLAREBOX_EXPORT FlareboxViewDelegate {
public:
    virtual ~FlareboxViewDelegate() = default;
    /// The tab starts to slide in.
    virtual void flareboxViewDidOpen(FlareboxView&) {}
    /// The tab starts to slide out, or was removed while it was open.
    virtual void flareboxViewDidClose(FlareboxView&) {}
    /// Another product than before is shown, by the player's choice or as the first of a list.
    virtual void flareboxViewDidSelectAsset(FlareboxView&, const Ref<FXAssetInfo>&) {}
    /// The content area shows another of the product's sides.
    virtual void flareboxViewDidChangeMode(FlareboxView&, AssetMode) {}
    /// The service has the coupon, now or from an earlier time.
    virtual void flareboxViewDidSaveCoupon(FlareboxView&, const Ref<FXAssetInfo>&) {}
    /// The game loses the player to another application next. False: the link is not opened; the game can open it
    /// later (UIApplication::openURL), once it has paused.
    virtual bool flareboxViewShouldOpenLink(FlareboxView&, const NSURL&) { return true; }
    /// A session or a list could not be had: for want of a network, by the service's fault, or without an identifier of
    /// the device, as where the player allows none; that one is told at the next turn, with `kApiMissingParamErrorCode`
    /// of `kApiErrorDomain`. The tab tries again with its next refresh.
    virtual void flareboxViewDidFailToLoad(FlareboxView&, const Ref<NSError>&) {}
};

}  // namespace flarebox
