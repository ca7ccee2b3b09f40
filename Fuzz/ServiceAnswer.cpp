// Answers of the service: any bytes on the wire end in one completion with an object or an error.

#include <Fuzz/Support/ByteSource.h>
#include <Fuzz/Support/LoopbackServer.h>

#include <Flarebox/Core/FlareboxBundle.h>
#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Managers/FlareboxManager.h>
#include <Foundation/NSJSONSerialization.h>
#include <Networking/AFImageDownloader.h>
#include <Tests/Support/Pump.h>
#include <Tests/Support/TemporaryDirectory.h>

#include <memory>

namespace flarebox::fuzz {
namespace {

FlareboxManager& client() {
    static FlareboxManager& shared = [&]() -> FlareboxManager& {
        flareboxBundle().setInfoDictionaryValue("API_URL", LoopbackServer::shared().url());
        const Ref<FXUserSession> user = FXUserSession::init();
        user->setDeviceId("6F9619FF-8B86-D011-B42D-00C04FC964FF");
        FlareboxConfig::defaultConfig().configFlareboxWithUserSession(user, "game-1", "1.0", false, 0);
        return FlareboxManager::sharedInstance();
    }();
    return shared;
}

/// Waits for the one call of a completion.
class Outcome {
public:
    template <class Object>
    auto completion() {
        return [calls = calls_](const Object& object, const Ref<NSError>& error) {
            ++*calls;
            check(static_cast<bool>(object) != static_cast<bool>(error), "an object or an error");
        };
    }
    auto errorCompletion() {
        return [calls = calls_](const Ref<NSError>&) { ++*calls; };
    }
    void await() {
        check(testing::pumpUntil([&] { return *calls_ > 0; }), "every request is completed");
        check(testing::pumpUntilIdle(), "nothing is left under way");
        check(*calls_ == 1, "a completion is called once");
    }

private:
    std::shared_ptr<int> calls_ = std::make_shared<int>(0);
};

Ref<NSURLRequest> requestFor(const char* path) {
    return NSURLRequest::requestWithURL(NSURL::URLWithString(LoopbackServer::shared().url() + path));
}

void loadPicture() {
    Outcome outcome;
    const auto downloader = make<AFImageDownloader>();
    const auto complete = outcome.completion<Ref<UIImage>>();
    downloader->downloadImageForURLRequest(
        requestFor("/picture.png"), {.pixels = {100, 100}},
        [complete](const Ref<NSURLRequest>&, const Ref<NSHTTPURLResponse>&, const Ref<UIImage>& image) {
            complete(image, nullptr);
        },
        [complete](const Ref<NSURLRequest>&, const Ref<NSHTTPURLResponse>&, const Ref<NSError>& error) {
            complete(nullptr, error);
        });
    outcome.await();
}

void download() {
    static const testing::TemporaryDirectory folder;
    Outcome outcome;
    const std::string path = folder.path("file");
    client()
        .downloadTaskWithRequest(
            requestFor("/model.glb"), [path] { return path; },
            [complete = outcome.completion<Value>()](const Ref<NSHTTPURLResponse>&, const Value& object,
                                                     const Ref<NSError>& error) {
                complete(object, error);
                check(folder.has("file") == static_cast<bool>(object), "a file appears when it is whole");
            })
        ->resume();
    outcome.await();
    std::filesystem::remove(path);
}

void ask(std::size_t operation) {
    Outcome outcome;
    switch (operation) {
        case 0:
            client().createSesstion(outcome.completion<Ref<FXSessionInfo>>());
            break;
        case 1:
            client().loadGameCommonAssets(outcome.completion<std::shared_ptr<AssetList>>());
            break;
        case 2:
            client().sendEngagement(FXEngagementData::init(), outcome.errorCompletion());
            break;
        case 3:
            client().saveCoupon(FXCoupon::init(), outcome.completion<Ref<FXCoupon>>());
            break;
        case 4:
            return loadPicture();
        default:
            return download();
    }
    outcome.await();
}

}  // namespace

FLAREBOX_FUZZER(ServiceAnswer) {
    ByteSource source(input);
    const std::size_t operation = source.below(6);
    const bool isFramed = source.flag();
    const std::string bytes(text(source.rest()));
    // A redirect meets the same answer again, and no more than that many of them are followed.
    LoopbackServer::shared().setAnswer([&, left = 12](std::string_view) mutable {
        if (left-- <= 0) return std::string();
        return isFramed ? httpAnswer(200, bytes, operation == 4 ? "image/png" : "application/json") : bytes;
    });
    ask(operation);
    LoopbackServer::shared().setAnswer(nullptr);
}

}  // namespace flarebox::fuzz
