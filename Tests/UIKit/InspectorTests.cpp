// What a developer is shown of the views of a window.

#include <Foundation/LogSink.h>
#include <Host/Headless/SoftwareCompositor.h>
#include <UIKit/FrameTimeGraph.h>
#include <UIKit/UIApplication.h>
#include <UIKit/UIHost.h>
#include <UIKit/UILabel.h>
#include <UIKit/UINib.h>
#include <UIKit/UIScrollView.h>
#include <UIKit/UIWindow.h>
#include <UIKit/ViewInspector.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>

namespace flarebox::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class InspectorTest : public ::testing::Test {
protected:
    InspectorTest() {
        LogSink::set([](LogLevel, std::string_view) {});
    }
    ~InspectorTest() override {
        host_.releaseTextures(picture_);
        LogSink::set(nullptr);
    }

    /// The layout in the window, below a root that fills it.
    UIView& show(const std::string& content) {
        const auto nib = UINib::nibWithText("<UIView>" + content + "</UIView>", "Card.xml");
        root_ = Ref<UIView>(objectCast<UIView>(nib->instantiateWithOwner(nullptr).front().get()));
        root_->setFrame({{}, {400, 300}});
        window().addSubview(*root_);
        host_.update();
        return *root_;
    }
    UIWindow& window() { return *UIApplication::sharedApplication().keyWindow(); }
    std::vector<std::string> problems() {
        std::vector<std::string> texts;
        for (const auto& problem : ViewInspector::problemsIn(window())) texts.push_back(problem.text);
        return texts;
    }
    /// How many pixels of the window are mostly of that colour.
    int pixels(const std::function<bool(int red, int green, int blue)>& isColor) {
        picture_.clear(0);
        host_.draw(picture_);
        int count = 0;
        for (int y = 0; y < picture_.height(); ++y) {
            for (int x = 0; x < picture_.width(); ++x) {
                const std::uint32_t pixel = picture_.pixelAt(x, y);
                count += isColor(static_cast<int>(pixel >> 16 & 255), static_cast<int>(pixel >> 8 & 255),
                                 static_cast<int>(pixel & 255));
            }
        }
        return count;
    }

    SoftwareCompositor picture_{400, 300};
    UIHost host_{{400, 300}, 1};
    Ref<UIView> root_;
};

TEST_F(InspectorTest, NamesWhatIsWrongWithALayout) {
    const std::string place =
        "<constraint>leading == parent.leading + 9</constraint>"
        "<constraint>top == parent.top + 9</constraint>";
    const std::string fixed = R"( pin="top:9 leading:9" width="50" height="20")";
    const struct {
        std::string layout;
        /// Empty for none.
        std::string problem;
    } cases[] = {
        {"<UIView" + fixed + "/>", ""},
        {"<UIView frame=\"1 2 3 4\"/>", ""},
        {"<UILabel text=\"a\" pin=\"top leading\"/>", ""},
        {"<UILabel text=\"a\" numberOfLines=\"0\" pin=\"top leading trailing\"/>", ""},
        {"<UILabel text=\"a\" pin=\"top leading\"><constraint>trailing &lt;= parent.trailing</constraint></UILabel>",
         ""},
        {"<UIView id=\"b\" width=\"50\"" + std::string(">") + place + "</UIView>",
         "b (UIView): the constraints leave open"},
        {"<UIView id=\"b\" width=\"50\" height=\"20\"><constraint>top == parent.top</constraint></UIView>",
         "b (UIView): the constraints leave open"},
        {"<UIView id=\"b\"/>", "b (UIView): the constraints leave open"},
        {"<UIView pin=\"top leading\" height=\"20\" id=\"b\"><constraint>width &lt;= 50</constraint></UIView>",
         "b (UIView): the constraints leave open"},
        {"<UIView id=\"b\"" + fixed + "><constraint>width == 60</constraint></UIView>",
         "b (UIView): <NSLayoutConstraint: b.width == 60, Card.xml:1> contradicts others and is left out"},
        {"<UIView id=\"b\"" + fixed + "><constraint priority=\"high\">width == 60</constraint></UIView>", ""},
        {"<UIButton id=\"b\" pin=\"top:9 leading:-9\" width=\"50\" height=\"20\"/>",
         "b (UIButton): lies beyond its superview"},
        {"<UIView userInteractionEnabled=\"false\" pin=\"top:9 leading:-9\" width=\"50\" height=\"20\"/>", ""},
        {"<UIView pin=\"top leading\" width=\"9\" height=\"9\" clipsToBounds=\"true\"><UIView id=\"b\""
         " userInteractionEnabled=\"false\" pin=\"top leading:5\" width=\"5\" height=\"5\"/></UIView>",
         "b (UIView): lies beyond its superview, which cuts it off"},
        {"<UIView hidden=\"true\"/>", ""},
    };
    for (const auto& [layout, problem] : cases) {
        SCOPED_TRACE(layout);
        show(layout);
        if (problem.empty())
            EXPECT_THAT(problems(), IsEmpty());
        else
            EXPECT_THAT(problems(), ElementsAre(HasSubstr(problem)));
        root_->removeFromSuperview();
    }
}

TEST_F(InspectorTest, ShowsBordersProblemsAndNamesAboveEverything) {
    show(R"(<UIView id="good" pin="top:40 leading:40" width="50" height="20"/>
            <UIView id="bad" pin="top:200 leading:20" width="50" height="20"><constraint>width == 60</constraint></UIView>)");
    const auto isRed = [](int red, int green, int blue) { return red > 200 && green < 90 && blue < 120; };
    const auto isYellow = [](int red, int green, int blue) { return red > 200 && green > 200 && blue < 60; };
    const auto isCyan = [](int red, int green, int blue) { return red < 60 && green > 90 && blue > 90; };
    EXPECT_EQ(pixels(isRed) + pixels(isYellow) + pixels(isCyan), 0);

    const auto inspector = make<ViewInspector>();
    inspector->showInWindow(*UIApplication::sharedApplication().keyWindow());
    host_.update();
    EXPECT_GT(pixels(isCyan), 100) << "borders";
    EXPECT_GT(pixels(isRed), 200) << "the problem";
    EXPECT_EQ(pixels(isYellow), 0);
    inspector->setPointer(CGPoint{45, 45});
    host_.update();
    EXPECT_GT(pixels(isYellow), 200) << "what is under the pointer";
    EXPECT_EQ(window().hitTest({45, 45}), nullptr) << "takes no input";

    const auto above = make<UIView>();
    above->setFrame({{}, {400, 300}});
    above->setBackgroundColor(UIColor::blackColor());
    window().addSubview(*above);
    host_.update();
    EXPECT_GT(pixels(isRed), 200) << "on top again";
    above->removeFromSuperview();
    EXPECT_THAT(problems(), ElementsAre(HasSubstr("bad"))) << "itself is none of them";
    inspector->removeFromSuperview();
    host_.update();
    EXPECT_EQ(pixels(isRed), 0);
}

TEST_F(InspectorTest, ShowsTheTimesOfTheLastFrames) {
    const auto graph = make<FrameTimeGraph>();
    graph->showInWindow(*UIApplication::sharedApplication().keyWindow());
    const double wholeFrame = 0.012, partOfTheKit = 0.004;
    EXPECT_EQ(graph->longestFrame(), 0);
    graph->addFrame(0.030, 0.002);
    const auto isRed = [](int red, int green, int blue) { return red > 200 && green < 90 && blue < 120; };
    const auto isBlue = [](int red, int green, int blue) { return red < 60 && green > 180 && blue > 200; };
    host_.update();
    EXPECT_GT(pixels(isRed), 20) << "a late frame";
    graph->addFrame(wholeFrame, partOfTheKit);
    for (std::size_t i = 1; i < FrameTimeGraph::frameCount; ++i) graph->addFrame(wholeFrame, partOfTheKit);
    EXPECT_EQ(graph->longestFrame(), wholeFrame) << "the late one is forgotten";
    EXPECT_EQ(graph->longestShareOfKit(), partOfTheKit);
    host_.update();
    EXPECT_EQ(pixels(isRed), 0);
    // A bar's height is its share of two frames' time, of 60 points.
    EXPECT_NEAR(pixels(isBlue), FrameTimeGraph::frameCount * 1.5 * 60 * partOfTheKit * 30, 200);
    graph->removeFromSuperview();
}

}  // namespace
}  // namespace flarebox::testing
