#include <Tests/SceneKit/PackedModel.h>
#include <Tests/SceneKit/SampleModels.h>
#include <Tests/SceneKit/SharedEngine.h>

#include <SceneKit/ModelFile.h>
#include <SceneKit/ModelSource.h>
#include <SceneKit/SceneEngine.h>
#include <Tests/Support/TemporaryDirectory.h>

#include <gtest/gtest.h>
#include <sys/resource.h>

#include <random>

namespace flarebox::testing {
namespace {

class ModelFile : public ::testing::Test {
protected:
    /// Why the file is refused, by the quick look at it or by the long one; empty for one that is taken.
    std::string reason(const std::string& file) {
        path_ = files_.write("model", file);
        std::string failure;
        if (!detail::readModelSummary(path_, failure)) return named(failure, "quick");
        if (!detail::readModelContents(path_, failure)) return named(failure, "long");
        return {};
    }

    TemporaryDirectory files_;
    std::string path_;

private:
    static std::string named(const std::string& failure, const char* look) {
        EXPECT_FALSE(failure.empty()) << "no reason from the " << look << " look";
        return failure;
    }
};

/// A cube of which one entry's text is replaced.
std::string spoilt(const char* list, std::size_t index, const char* from, const char* to) {
    ModelBuilder model = cubeModel();
    model.replaceIn(list, index, from, to);
    return model.file();
}

std::string with(const char* list, const char* entry) {
    ModelBuilder model = cubeModel();
    model.add(list, entry);
    return model.file();
}

std::string skinnedBy(const char* matrices) {
    ModelBuilder model = cubeModel();
    model.add("accessors", matrices);
    model.add("skins", R"({"joints":[0],"inverseBindMatrices":3})");
    return model.file();
}

std::string requiring(const char* extension) {
    ModelBuilder model = cubeModel();
    model.set("extensionsRequired", std::string("[\"") + extension + "\"]");
    return model.file();
}

TEST_F(ModelFile, IsRefusedWithAReasonThatNamesIt) {
    const std::string good = cubeModel().file();
    const std::string deep = R"({"asset":)" + std::string(100'000, '[') + "}";
    const struct {
        std::string file;
        const char* reason;
    } cases[] = {
        {"", "too short"},
        {std::string(64, 'x'), "no binary glTF"},
        {"glTF" + ModelBuilder::word(1) + good.substr(8), "version 1"},
        {good.substr(0, good.size() - 1), "cut off"},
        {good.substr(0, 12) + ModelBuilder::word(0x7FFFFFFF) + good.substr(16), "description is cut off"},
        {cubeModel().file(deep), "no JSON"},
        {cubeModel().file("{}"), "asset is missing"},
        {requiring("EXT_meshopt_compression"), "EXT_meshopt_compression"},
        {requiring("KHR_texture_basisu"), "KHR_texture_basisu"},
        {requiring("EXT_texture_webp"), "EXT_texture_webp"},
        {with("images", R"({"uri":"outside.png"})"), "images[0].uri"},
        {textureModel(redBluePNG, "image/webp").file(), "textures[0].source is of image/webp, which is not supported"},
        {spoilt("accessors", 0, "24", "25"), "accessors[0] reaches beyond"},
        {spoilt("accessors", 0, "24", "-24"), "accessors[0].count"},
        {spoilt("accessors", 0, "24", "1e99"), "accessors[0].count"},
        {spoilt("accessors", 0, "24", "18446744073709551615"), "accessors[0].count"},
        {spoilt("accessors", 0, "\"bufferView\":0", "\"bufferView\":7"), "accessors[0].bufferView"},
        {spoilt("accessors", 0, "\"count\"", "\"byteOffset\":2,\"count\""), "accessors[0]"},
        {spoilt("bufferViews", 0, "\"byteOffset\":0", "\"byteOffset\":4294967295"), "bufferViews[0].byteOffset"},
        {spoilt("bufferViews", 1, "\"byteLength\"", "\"byteStride\":3,\"byteLength\""), "bufferViews[1].byteStride"},
        {spoilt("meshes", 0, "\"indices\":2", "\"indices\":2,\"mode\":5"), "triangle strips"},
        {spoilt("meshes", 0, "\"indices\":2", "\"indices\":1"), "meshes[0] has indices of a type"},
        {spoilt("meshes", 0, "\"NORMAL\":1", "\"NORMAL\":2"), "NORMAL"},
        {spoilt("nodes", 0, "\"mesh\":0", "\"mesh\":1"), "nodes[0].mesh"},
        {spoilt("nodes", 0, "\"mesh\":0", "\"children\":[0]"), "below themselves"},
        {spoilt("scenes", 0, "[0]", "[0,0]"), "nodes[0] is no root"},
        {spoilt("materials", 0, "[1,0,0,1]", "[1,0,0]"), "baseColorFactor"},
        {with("animations", R"({"samplers":[{"input":9,"output":0}],"channels":[]})"), "samplers[0].input"},
        {with("skins", R"({"joints":[5]})"), "skins[0].joints"},
        {skinnedBy(R"({"componentType":5126,"count":67108864,"type":"MAT4"})"), "skins take more"},
    };
    EXPECT_EQ(reason(good), "");
    for (const auto& [file, expected] : cases)
        EXPECT_NE(reason(file).find(expected), std::string::npos) << expected << ": " << reason(file);
}

#ifdef FLAREBOX_HAS_3D
TEST_F(ModelFile, IsRefusedWhenItsPackedMeshIsAnother) {
    const auto spoiltMesh = [](const char* list, std::size_t index, const char* from, const char* to) {
        ModelBuilder model = packed();
        model.replaceIn(list, index, from, to);
        return model.file();
    };
    EXPECT_EQ(reason(packed().file()), "");
    EXPECT_NE(reason(spoiltMesh("accessors", 1, "36", "39")).find("another count"), std::string::npos);
    EXPECT_NE(reason(spoiltMesh("accessors", 0, R"("count":)", R"("count":9)")).find("another count"),
              std::string::npos);
    EXPECT_NE(reason(spoiltMesh("meshes", 0, R"({"POSITION":0}}})", R"({"POSITION":7}}})")).find("lacks"),
              std::string::npos);
    EXPECT_NE(reason(spoiltMesh("meshes", 0, R"("indices":1,)", "")).find("packed"), std::string::npos);
    EXPECT_NE(reason(spoiltMesh("bufferViews", 0, R"("byteOffset":0)", R"("byteOffset":8)")).find("bufferViews"),
              std::string::npos);
}
#endif

TEST_F(ModelFile, IsReadFromRegularFilesOnly) {
    std::string failure;
    EXPECT_FALSE(detail::readModelSummary(files_.path(), failure));
    EXPECT_FALSE(detail::readModelSummary("/dev/zero", failure));
    EXPECT_FALSE(detail::readModelSummary(files_.path() + "/none", failure));
    EXPECT_EQ(failure, "it cannot be opened");
}

/// What goes wrong with files on their way, and what people write on purpose.
std::string mutated(std::string file, std::mt19937& random) {
    const auto below = [&random](std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random);
    };
    switch (below(5)) {
        case 0:
            return file.substr(0, below(file.size()));
        case 1:
            for (std::size_t i = 0; i < 1 + below(40); ++i)
                file[below(file.size())] ^= static_cast<char>(1 << below(8));
            return file;
        case 2:
            for (std::size_t at = below(file.size()), end = std::min(file.size(), at + 64); at < end; ++at)
                file[at] = static_cast<char>(below(256));
            return file;
        case 3: {
            // Another number of the same length in the description.
            const std::size_t start = below(file.size());
            const std::size_t digit = file.find_first_of("0123456789", std::max<std::size_t>(start, 20));
            if (digit != std::string::npos) file[digit] = "0123456789-"[below(11)];
            return file;
        }
        default: {
            const std::size_t from = below(file.size()), to = below(file.size());
            const std::string part = file.substr(from, 1 + below(32));
            return file.replace(to, std::min(part.size(), file.size() - to), part.substr(0, file.size() - to));
        }
    }
}

std::size_t residentKiB() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<std::size_t>(usage.ru_maxrss);
}

TEST_F(ModelFile, NeverHarmsWhoReadsIt) {
    if (!canDraw) GTEST_SKIP() << "this build shows no models";
    const std::vector<std::string> originals = {cubeModel().file(), skinned().file(), animated().file(),
                                                textureModel().file(), packed().file()};
    std::mt19937 random(20'240'229);
    detail::SceneFrame frame;
    frame.width = frame.height = 32;
    int refused = 0, drawn = 0;
    // The first picture brings the driver and its compiler, which the files have no part in.
    std::vector<std::string> none;
    sharedEngine().draw(frame, none);
    const std::size_t before = residentKiB();
    for (int i = 0; i < 200; ++i) {
        SCOPED_TRACE(i);
        const std::string why = reason(mutated(originals[static_cast<std::size_t>(i) % originals.size()], random));
        refused += !why.empty();
        if (!why.empty()) continue;
        frame.items = {{std::make_shared<const detail::ModelSource>(path_, SCNBoundingBox::empty(), true), {}}};
        frame.time = i;
        std::vector<std::string> failures;
        drawn += !sharedEngine().draw(frame, failures).pixels.empty();
        frame.items.clear();
        sharedEngine().releaseUnused();
    }
    EXPECT_GT(refused, 60);
    EXPECT_GT(drawn, 30);
    EXPECT_LT(residentKiB() - before, 512U << 10);
}

}  // namespace
}  // namespace flarebox::testing
