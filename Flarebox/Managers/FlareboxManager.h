#pragma once

#include <Flarebox/Models/FXAssetInfo.h>
#include <Flarebox/Models/FXCoupon.h>
#include <Flarebox/Models/FXEngagementData.h>
#include <Flarebox/Models/FXSessionInfo.h>
#include <Foundation/Export.h>
#include <Foundation/NSError.h>
#include <Networking/AFHTTPSessionManager.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace flarebox {

/// Domain and code of the error for an input that a service operation needs and does not have.
FLAREBOX_EXPORT extern const char* const kApiErrorDomain;
FLAREBOX_EXPORT extern const int kApiMissingParamErrorCode;

/// Assets in the order in which they are listed. Shared, so that the client and the tab hold the same list.
using AssetList = std::vector<Ref<FXAssetInfo>>;

/// The one client of the service; a host may pin the service's key with its `setPinnedPublicKeys`. Its operations read
/// the configuration afresh, send one request each, and call their completion, which may be null, once on the main
/// queue; a shutdown drops it.
///
/// An input that is missing fails an assertion: in builds with assertions the default handler raises an NSException.
/// Where the handler returns, and in builds without, nothing is sent and the completion is called at once with an error
/// of kApiErrorDomain. Transport errors are passed on unchanged. Main thread; the operations may be called from any
/// thread and are then sent by the main queue, their completions included.
class FLAREBOX_EXPORT FlareboxManager : public AFHTTPSessionManager {
    FLAREBOX_CLASS(FlareboxManager)
public:
    /// Made by the first call from the "API_URL" of the kit's information table.
    static FlareboxManager& sharedInstance();
    /// Whether it was made: its address is fixed from then on. Any thread.
    static bool hasSharedInstance();

    /// Hands in the picture of an address that the game has already, decoded from its own files or cut from an atlas:
    /// wherever an asset names the address, the picture is shown and nothing is downloaded. `width` x `height` pixels,
    /// rows from the top without gaps, each 0xAARRGGBB with the colour multiplied by the alpha; both sides from 1 to
    /// `maximumPictureSide`. The pixels are kept until the host adapter goes or the picture is taken back: without
    /// pixels, sizes 0. False, with the reason in `error` (may be null), for an address that is none and for sizes that
    /// do not match. Main thread.
    static bool setPicture(const NSURL& address, int width, int height, std::vector<std::uint32_t> pixels,
                           Ref<NSError>* error = nullptr);
    static constexpr int maximumPictureSide = 4096;  ///< in pixels

    /// The assets last loaded; null before the first load.
    const std::shared_ptr<AssetList>& gameAssets() const { return gameAssets_; }
    /// The tab calls it with each list; null forgets the list.
    void setGameAssets(std::shared_ptr<AssetList> assets) { gameAssets_ = std::move(assets); }
    /// The current game session; null until one was created.
    const Ref<FXSessionInfo>& sessionInfo() const { return sessionInfo_; }
    /// The tab calls it with each session; null: the next load makes a new one.
    void setSessionInfo(const Ref<FXSessionInfo>& session) { sessionInfo_ = session; }
    /// When the tab was last opened; absent before.
    const NSDate& flareboxOpenedDate() const { return flareboxOpenedDate_; }
    /// The tab calls it when it opens; durations of events count from here.
    void setFlareboxOpenedDate(const NSDate& date) { flareboxOpenedDate_ = date; }

    /// A request for a path (starting with "/") below the base address: its text is appended as it stands. `params`
    /// (absent for none) go into the query of a "GET" and into a JSON body otherwise. The time-out is the host's
    /// default "timeoutInterval" in whole seconds, 0 for the transport's own. Header names and values are texts. Null
    /// when no request can be made of these.
    Ref<NSMutableURLRequest> requestWithMethod(const NSString& method, const NSString& path, const NSDictionary& params,
                                               const NSDictionary& headers);

    /// Creates a game session for the configured player. Needs a game UID, a game version and a user session.
    void createSesstion(const std::function<void(const Ref<FXSessionInfo>&, const Ref<NSError>&)>& completion);
    /// Loads the first 20 assets of the game, in the service's order. Needs a game UID and a game version. A list of
    /// more than 100, or an answer of more than 4 MiB, as with every operation, is an error.
    void loadGameCommonAssets(
        const std::function<void(const std::shared_ptr<AssetList>&, const Ref<NSError>&)>& completion);
    /// Reports what the player did. Needs a record.
    void sendEngagement(const Ref<FXEngagementData>& engagement,
                        const std::function<void(const Ref<NSError>&)>& completion);
    /// Saves a coupon to the player's account. Needs a record.
    void saveCoupon(const Ref<FXCoupon>& coupon,
                    const std::function<void(const Ref<FXCoupon>&, const Ref<NSError>&)>& completion);

private:
    template <class T, class... Arguments>
    friend Ref<T> make(Arguments&&...);
    explicit FlareboxManager(const NSURL& baseURL);

    using Answer = std::function<void(const Value& answer, const Ref<NSError>& error)>;
    void send(const NSString& method, const NSString& path, const NSDictionary& params, const NSDictionary& headers,
              Answer answer);

    std::shared_ptr<AssetList> gameAssets_;
    Ref<FXSessionInfo> sessionInfo_;
    NSDate flareboxOpenedDate_;
};

}  // namespace flarebox
