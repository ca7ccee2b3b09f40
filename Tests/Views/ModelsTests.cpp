#include <Flarebox/Views/SCNContentView.h>
#include <Host/Headless/SoftwareCompositor.h>
#include <SceneKit/ModelSource.h>
#include <SceneKit/SCNView.h>
#include <SceneKit/ZorbRenderer.h>
#include <Tests/SceneKit/ModelBuilder.h>
#include <Tests/Views/TabTesting.h>
#include <UIKit/UIButton.h>
#include <UIKit/UIImageView.h>

#include <gmock/gmock.h>

#include <filesystem>
#include <set>

namespace flarebox::testing {
namespace {

namespace fs = std::filesystem;
using examples::Behaviour;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

const std::string& cubeFile() {
    static const std::string file = cubeModel().file();
    return file;
}

std::size_t countOf(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++count;
    return count;
}

class ModelsTest : public TabTest {
protected:
    void SetUp() override {
        TabTest::SetUp();
        for (int number = 1; number < 10; ++number) serveModel(number, {});
    }
    /// A cube, but for what the behaviour says.
    static void serveModel(int number, Behaviour behaviour) {
        behaviour.status = behaviour.status.value_or(200);
        behaviour.body = behaviour.body.value_or(cubeFile());
        behaviour.contentType = "model/gltf-binary";
        sharedService().behave("/models/" + std::to_string(number), std::move(behaviour));
    }
    /// An asset with a model under that uid and number.
    static std::string assetJSON(const std::string& uid, int number) {
        const std::string link = sharedService().baseURL() + "/models/" + std::to_string(number);
        return R"({"id":)" + std::to_string(number) + R"(,"uid":")" + uid +
               R"(","advertiser_uid":"v","campaign_uid":"c")" +
               R"(,"file_icon":"/i","title":"T","file_image":"/p","file_ios":")" + link + R"("})";
    }
    static void serveList(const std::vector<std::string>& uids) {
        std::string list;
        for (std::size_t i = 0; i < uids.size(); ++i)
            list += (i ? "," : "") + assetJSON(uids[i], static_cast<int>(i) + 1);
        sharedService().behave("/game/common-assets/", {.body = "[" + list + "]"});
    }
    void showList(const std::vector<std::string>& uids) {
        serveList(uids);
        showLoadedTab();
    }
    /// The same list once more, as after a refresh.
    void reload(const std::vector<std::string>& uids) {
        serveList(uids);
        tab_->loadAssets();
        ASSERT_TRUE(settleIdle());
    }
    void select(std::size_t row) { tab_->selectAsset((*tab_->assestsList())[row]); }
    std::vector<std::string> nodes() {
        std::vector<std::string> uids;
        for (const auto& [uid, node] : tab_->assetNodesDict()) uids.push_back(uid);
        return uids;
    }
    std::vector<std::string> files() {
        return NSFileManager::defaultManager().contentsOfDirectoryAtPath(documents_.path());
    }
    /// The numbers of the models that the service was asked for.
    static std::set<int> downloads() {
        std::set<int> numbers;
        for (const auto& request : sharedService().requests())
            if (request.path.starts_with("/models/")) numbers.insert(std::stoi(request.path.substr(8)));
        return numbers;
    }
    SCNNode& root() { return tab_->scnContent()->scnView().scene()->rootNode(); }
    SCNNode* node(const std::string& uid) {
        const auto found = tab_->assetNodesDict().find(uid);
        return found == tab_->assetNodesDict().end() ? nullptr : found->second.get();
    }
    SCNNode* shown() { return root().childNodes().size() == 1 ? root().childNodes()[0].get() : nullptr; }
};

TEST_F(ModelsTest, AreKeptOneFileForEachAssetListed) {
    documents_.write("diary.txt", "of the host");
    documents_.write(".hidden/deep/file", "too");
    documents_.write("P1", cubeFile());
    showList({"P1", "P2"});
    EXPECT_THAT(files(), ElementsAre("P1", "P2"));
    EXPECT_TRUE(documents_.read("P2") == cubeFile());
    EXPECT_THAT(downloads(), ElementsAre(2)) << "P1 was on disk";
    EXPECT_THAT(nodes(), ElementsAre("P1", "P2"));
    EXPECT_EQ(shown(), node("P1"));

    const Ref<SCNNode> kept(node("P1"));
    sharedService().forgetRequests();
    reload({"P1", "P3"});
    EXPECT_THAT(files(), ElementsAre("P1", "P3"));
    EXPECT_THAT(nodes(), ElementsAre("P1", "P3"));
    EXPECT_EQ(node("P1"), kept.get()) << "made once";
    EXPECT_THAT(downloads(), ElementsAre(2));
    select(1);
    EXPECT_EQ(shown(), node("P3"));
    EXPECT_THAT(downloads(), ElementsAre(2));
}

TEST_F(ModelsTest, NamesThatAreNoFileNamesNeverBecomePaths) {
    const TemporaryDirectory outside;
    const std::string victim = outside.write("victim", "precious");
    documents_.write("linked", cubeFile());
    fs::remove(documents_.path("linked"));
    fs::create_symlink(victim, documents_.path("linked"));
    fs::create_directory(documents_.path("folder"));
    fs::create_directory_symlink(outside.path(), documents_.path("elsewhere"));
    const std::string log = loggedBy([&] {
        showList(
            {"good", "..", ".", "a/b", "", std::string(300, 'x'), "linked", "folder", "../" + outside.path() + "/v"});
    });
    EXPECT_THAT(files(), ElementsAre("folder", "good", "linked"));
    EXPECT_THAT(nodes(), ElementsAre("folder", "good", "linked"));
    EXPECT_FALSE(fs::is_symlink(documents_.path("linked")));
    EXPECT_EQ(outside.read("victim"), "precious");
    EXPECT_THAT(downloads(), ElementsAre(1, 7, 8));
    EXPECT_THAT(log, HasSubstr("The model of the asset \"../"));
    for (std::size_t row = 0; row < tab_->assestsList()->size(); ++row) select(row);
    EXPECT_TRUE(settleIdle());
    EXPECT_THAT(files(), ElementsAre("folder", "good", "linked"));
}

TEST_F(ModelsTest, OneThatComesLateDoesNotDisturbTheOther) {
    serveModel(2, {.delay = std::chrono::milliseconds(50)});
    serveList({"P1", "P2"});
    makeTab()->showAtWindow();
    pass(0.2);
    ASSERT_TRUE(settle([&] { return node("P1") != nullptr; }));
    EXPECT_EQ(shown(), node("P1"));
    select(1);
    EXPECT_EQ(node("P2"), nullptr);
    EXPECT_EQ(shown(), node("P1")) << "the scene stays until there is another model";
    select(0);
    ASSERT_TRUE(settle([&] { return node("P2") != nullptr; }));
    EXPECT_EQ(shown(), node("P1"));
    ASSERT_TRUE(settleIdle());
    EXPECT_TRUE(documents_.read("P2") == cubeFile()) << "two downloads at once leave one whole file";
    EXPECT_THAT(files(), ElementsAre("P1", "P2"));
}

TEST_F(ModelsTest, WhatCannotBeHadOrReadCostsALogLineEach) {
    serveModel(1, {.status = 404});
    serveModel(2, {.body = "no model"});
    serveModel(3, {.ending = Behaviour::Ending::Cut});
    const std::string log = loggedBy([&] { showList({"P1", "P2", "P3", "P4"}); });
    EXPECT_THAT(nodes(), ElementsAre("P4"));
    EXPECT_THAT(files(), ElementsAre("P2", "P4"));
    EXPECT_GE(countOf(log, " Error: "), 3U) << log;
    EXPECT_THAT(root().childNodes(), IsEmpty());

    serveModel(1, {});
    select(3);
    EXPECT_EQ(shown(), node("P4"));
    select(0);
    ASSERT_TRUE(settleIdle());
    EXPECT_NE(node("P1"), nullptr) << "the next selection tries again";
    EXPECT_EQ(shown(), node("P1"));

    for (const int number : {2, 3}) serveModel(number, {});
    sharedService().forgetRequests();
    reload({"P1", "P2", "P3", "P4"});
    EXPECT_THAT(downloads(), ElementsAre(2, 3)) << "the next list does without what turned out to be no model";
    EXPECT_THAT(nodes(), ElementsAre("P1", "P2", "P3", "P4"));
    EXPECT_TRUE(documents_.read("P2") == cubeFile());
}

TEST_F(ModelsTest, OneThatBreaksWhenItIsDrawnIsHadAnewWithTheNextList) {
    showList({"P1", "P2"});
    node("P2")->model()->setBroken();
    sharedService().forgetRequests();
    reload({"P1", "P2"});
    EXPECT_THAT(downloads(), ElementsAre(2));
    ASSERT_NE(node("P2"), nullptr);
    EXPECT_FALSE(node("P2")->hasBrokenModel());
}

TEST(SampleModelsTest, AreAllRead) {
    int count = 0;
    for (const auto& entry : fs::directory_iterator(SAMPLE_MODELS)) {
        ZorbRenderer renderer;
        EXPECT_TRUE(renderer.createSCNNodeFromFile(entry.path().string()))
            << renderer.lastError()->localizedDescription();
        ++count;
    }
    EXPECT_GE(count, 12);
}

class FullScreenTest : public ModelsTest {
protected:
    void SetUp() override {
        ModelsTest::SetUp();
        host_->setScreen({1366, 1024}, 1);
        showList({"P1"});
        tab_->open();
        pass(0.5);
        tab_->changeAssetMode(AssetMode3D);
    }
    SCNContentView& content() { return *tab_->scnContent(); }
    UIButton& button() {
        return *objectCast<UIButton>(SCNContentView::staticClass().outlet("btn3DMode")->get(content()));
    }
    void press() {
        host_->update();
        const CGRect rect = button().presentationRectInRoot();
        tap({rect.midX(), rect.midY()});
    }
    double buttonWidth() { return content().btn3DModeWidthContraint().constant(); }
};

TEST_F(FullScreenTest, CoversTheWindowAndComesBack) {
    EXPECT_NEAR(buttonWidth(), 36 * 1024.0 / 600, 1e-9);
    press();
    EXPECT_TRUE(content().is3DViewFullScreen());
    EXPECT_TRUE(button().isSelected());
    EXPECT_EQ(content().superview(), &window());
    EXPECT_EQ(content().frame(), window().bounds());
    EXPECT_EQ(buttonWidth(), 36);
    EXPECT_EQ(shown(), node("P1"));

    host_->setScreen({1024, 768}, 1);
    host_->update();
    EXPECT_EQ(content().frame(), window().bounds());
    press();
    EXPECT_FALSE(content().is3DViewFullScreen());
    EXPECT_FALSE(button().isSelected());
    EXPECT_EQ(content().superview(), field("scnContainer"));
    EXPECT_EQ(content().frame().size, field("scnContainer")->bounds().size);
    EXPECT_NEAR(buttonWidth(), 36 * 768.0 / 600, 1e-9);
    EXPECT_EQ(shown(), node("P1"));
}

TEST_F(FullScreenTest, FitsTheModelToEachShape) {
    host_->setScreen({375, 667}, 1);
    host_->setOrientation(UIDeviceOrientation::Portrait);
    pass(0.5);
    const SCNVector3 fitted = node("P1")->scale();
    press();
    EXPECT_NE(node("P1")->scale(), fitted);
    press();
    EXPECT_EQ(node("P1")->scale(), fitted);
}

TEST_F(FullScreenTest, IsNotOfferedForAModelThatTurnsOutBroken) {
    documents_.write("P1", cubeFile().substr(0, 200));
    SoftwareCompositor picture(1366, 1024);
    const std::string log = loggedBy([&] {
        ASSERT_TRUE(settle([&] {
            pass(0.02);
            host_->draw(picture);
            return content().scnView().isHidden();
        }));
    });
    host_->releaseTextures(picture);
    EXPECT_EQ(countOf(log, " Error: "), 1U) << log;
    EXPECT_TRUE(button().isHidden());
    EXPECT_TRUE(content().scnView().isHidden());
    tab_->changeAssetMode(AssetMode2D);
    tab_->changeAssetMode(AssetMode3D);
    EXPECT_TRUE(content().scnView().isHidden());
}

TEST_F(FullScreenTest, LeavesWithTheTab) {
    press();
    tab_->removeFromSuperview();
    EXPECT_EQ(content().window(), nullptr) << "nothing of the tab covers the game any more";
    tab_->showAtWindow();
    pass(0.2);
    EXPECT_EQ(content().superview(), field("scnContainer"));
    EXPECT_FALSE(content().is3DViewFullScreen());

    tab_->open();
    pass(0.5);
    press();
    EXPECT_EQ(content().superview(), &window());
    tab_ = nullptr;
    host_->update();
}

TEST_F(FullScreenTest, LeavesWithTheViewThatTheTabLiesIn) {
    tab_->removeFromSuperview();
    const auto parent = make<UIView>();
    parent->setFrame(window().bounds());
    window().addSubview(*parent);
    tab_->showAtView(*parent);
    pass(0.2);
    tab_->open();
    pass(0.5);
    press();
    EXPECT_EQ(content().superview(), &window());
    parent->removeFromSuperview();
    EXPECT_EQ(content().superview(), field("scnContainer"));
    EXPECT_EQ(content().window(), nullptr);
}

TEST(SCNContentViewTest, PressesFlipItWithoutADelegate) {
    const UIHost host({667, 375}, 1);
    const Ref<SCNContentView> content = SCNContentView::createSCNContentView();
    ASSERT_TRUE(content);
    const auto* button = objectCast<UIButton>(SCNContentView::staticClass().outlet("btn3DMode")->get(*content));
    for (const bool isFull : {true, false, true}) {
        content->press3DFullButton();
        EXPECT_EQ(content->is3DViewFullScreen(), isFull);
        EXPECT_EQ(button->isSelected(), isFull);
    }
}

}  // namespace
}  // namespace flarebox::testing
