#include <Flarebox/Models/FXBaseObject.h>

#include <benchmark/benchmark.h>

#include <chrono>
#include <memory>

namespace flarebox::benchmarks {

namespace {

// A class can be used for the first time only once, so there is one with the fields of an asset for each measurement.
#define NOVEL(Index)                                                                                                 \
    class Novel##Index : public FXBaseObject {                                                                       \
        FX_RECORD(Novel##Index, FXBaseObject, (title, setTitle, NSString, "title"),                                  \
                  (subtitle, setSubtitle, NSString, "subtitle"), (text, setText, NSString, "description"),           \
                  (isActive, setIsActive, NSNumber, "is_active"), (isGeneric, setIsGeneric, NSNumber, "is_generic"), \
                  (tags, setTags, NSString, "tags"), (created, setCreated, NSDate, "created"),                       \
                  (modified, setModified, NSDate, "modified"), (number, setNumber, NSNumber, "id"),                  \
                  (uid, setUid, NSString, "uid"), (campaignId, setCampaignId, NSNumber, "campaign_id"),              \
                  (campaignUid, setCampaignUid, NSString, "campaign_uid"),                                           \
                  (advertiserId, setAdvertiserId, NSNumber, "advertiser_id"),                                        \
                  (advertiserUid, setAdvertiserUid, NSString, "advertiser_uid"),                                     \
                  (fileZorb, setFileZorb, NSString, "file_zorb"),                                                    \
                  (fileStandalone, setFileStandalone, NSString, "file_standalone"),                                  \
                  (fileIos, setFileIos, NSString, "file_ios"),                                                       \
                  (fileAndroid, setFileAndroid, NSString, "file_android"),                                           \
                  (filePreview, setFilePreview, NSString, "file_preview"),                                           \
                  (fileIcon, setFileIcon, NSString, "file_icon"), (fileImage, setFileImage, NSString, "file_image"), \
                  (fileCoupon, setFileCoupon, NSString, "file_coupon"),                                              \
                  (videoMobile, setVideoMobile, NSString, "video_mobile"),                                           \
                  (videoStandalone, setVideoStandalone, NSString, "video_standalone"),                               \
                  (whereToBuy, setWhereToBuy, NSString, "where_to_buy"),                                             \
                  (category, setCategory, NSNumber, "category"),                                                     \
                  (categoryTitle, setCategoryTitle, NSString, "category_title"))                                     \
    };
#define NOVELS(Macro)                                                                                             \
    Macro(0) Macro(1) Macro(2) Macro(3) Macro(4) Macro(5) Macro(6) Macro(7) Macro(8) Macro(9) Macro(10) Macro(11) \
        Macro(12) Macro(13) Macro(14) Macro(15)
NOVELS(NOVEL)

/// Fills one object and writes it back, which builds everything that is kept about its class.
template <class Novel>
void useOnce(const NSDictionary& answer) {
    const auto object = Novel::initWithDictionary(answer);
    benchmark::DoNotOptimize(object->toDictionary().count());
}

using Use = void (*)(const NSDictionary&);
#define USE(Index) &useOnce<Novel##Index>,
constexpr Use uses[] = {NOVELS(USE)};

/// Has the allocator sort the blocks that other benchmarks have freed. It puts that off until somebody allocates, some
/// thousands at a time, and after a peer has freed millions the first use of a class would take 100 ms.
void settleHeap() {
    for (int i = 0; i < 2000; ++i) {
        const std::unique_ptr<char[]> block(new char[1 << 20]);
        benchmark::DoNotOptimize(block.get());
    }
}

void firstUse(benchmark::State& state) {
    static std::size_t next = 0;
    const NSDictionary answer{{"title", "first"}, {"stranger", 1}};
    for (auto _ : state) {
        if (next == std::size(uses)) return state.SkipWithError("no class is left that was never used");
        settleHeap();
        const auto start = std::chrono::steady_clock::now();
        uses[next++](answer);
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }
    state.counters["items"] = 1;
}

BENCHMARK(firstUse)->Name("FirstUse/Flarebox")->UseManualTime()->Iterations(1);

}  // namespace

}  // namespace flarebox::benchmarks
