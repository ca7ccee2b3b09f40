#include "InputTesting.h"

#include "Tests/Support/TemporaryDirectory.h"

#include <Foundation/NSBundle.h>
#include <Foundation/Values.h>
#include <UIKit/UIButton.h>
#include <UIKit/UICollectionView.h>
#include <UIKit/UIImageView.h>
#include <UIKit/UILabel.h>
#include <UIKit/UINib.h>

namespace flarebox::testing {
namespace {

class NibCard : public UIView {
    FLAREBOX_CLASS(NibCard)
public:
    Weak<UILabel> lbName;
    Weak<NSLayoutConstraint> stripWidth;
    Ref<UIButton> btnOpen;
    Weak<UIView> optional;
    int presses = 0, awakenings = 0;
    bool wasBound = false;
    std::string caption;
    double level = 0;

    void press() { ++presses; }
    void awakeFromNib() override {
        ++awakenings;
        wasBound = lbName && stripWidth && btnOpen;
    }
};

const ClassInfo& NibCard::staticClass() {
    static const Outlet outlets[] = {
        outlet<&NibCard::lbName>("lbName"),
        outlet<&NibCard::stripWidth>("stripWidth"),
        outlet<&NibCard::btnOpen>("btnOpen"),
        outlet<&NibCard::optional>("optional", Outlet::Source::Code),
    };
    static const Action actions[] = {action<&NibCard::press>("press")};
    static const Property properties[] = {
        {"caption", "T@\"NSString\"",
         [](const NSObject& card) { return Value(static_cast<const NibCard&>(card).caption); },
         [](NSObject& card, const Value& value) {
             static_cast<NibCard&>(card).caption = value.as<NSString>().string();
         }},
        {"level", "Td", [](const NSObject& card) { return Value(static_cast<const NibCard&>(card).level); },
         [](NSObject& card, const Value& value) {
             static_cast<NibCard&>(card).level = value.as<NSNumber>().doubleValue();
         }},
    };
    static const ClassInfo info("NibCard", &UIView::staticClass(), createObject<NibCard>,
                                {.properties = properties, .actions = actions, .outlets = outlets});
    return info;
}

class NibOwner : public NSObject {
    FLAREBOX_CLASS(NibOwner)
public:
    Weak<UIView> badge;
    int calls = 0;
    void call() { ++calls; }
};

const ClassInfo& NibOwner::staticClass() {
    static const Outlet outlets[] = {outlet<&NibOwner::badge>("badge")};
    static const Action actions[] = {action<&NibOwner::call>("call")};
    static const ClassInfo info("NibOwner", &NSObject::staticClass(), nullptr,
                                {.actions = actions, .outlets = outlets});
    return info;
}

/// What every NibCard needs.
constexpr const char* bindings = R"(<UILabel outlet="lbName"/><UIButton outlet="btnOpen"/>
    <UIView id="strip"><constraint outlet="stripWidth">width == 35</constraint></UIView>)";

std::string card(const std::string& content) {
    return "<NibCard>" + std::string(bindings) + content + "</NibCard>";
}

class Nib : public InputTest {
protected:
    Nib() { NibCard::staticClass(), NibOwner::staticClass(); }

    static std::vector<Ref<NSObject>> objects(std::string_view text, NSObject* owner = nullptr) {
        Ref<NSError> error;
        auto made = UINib::nibWithText(text, "Card.xml")->instantiateWithOwner(owner, &error);
        EXPECT_FALSE(error) << error->localizedDescription();
        return made;
    }
    template <class T = UIView>
    static Ref<T> first(std::string_view text, NSObject* owner = nullptr) {
        const auto made = objects(text, owner);
        return Ref<T>(made.empty() ? nullptr : objectCast<T>(made.front().get()));
    }
    static std::string problem(std::string_view text, NSObject* owner = nullptr) {
        Ref<NSError> error;
        const auto made = UINib::nibWithText(text, "Card.xml")->instantiateWithOwner(owner, &error);
        EXPECT_TRUE(made.empty());
        return error ? error->localizedDescription() : "";
    }
    void layOut(UIView& view, const CGRect& frame) {
        view.setFrame(frame);
        window().addSubview(view);
        window().layoutIfNeeded();
    }
};

TEST_F(Nib, BindsOutletsActionsAndConstraints) {
    const auto made = objects(R"(<layout>
        <NibCard caption="A &amp; B" level="2.5">
            <UILabel outlet="lbName" text="Name" font="system semibold 16" textColor="#F4F6F8" numberOfLines="2"/>
            <UIView id="strip" pin="top trailing bottom"><constraint outlet="stripWidth">width == 35</constraint></UIView>
        </NibCard>
        <UIButton outlet="btnOpen" title="Open" title.disabled="Shut" action="press" titleColor.disabled="white 35%"/>
    </layout>)");
    ASSERT_EQ(made.size(), 2U);
    auto* root = objectCast<NibCard>(made[0].get());
    ASSERT_TRUE(root);
    EXPECT_EQ(root->awakenings, 1);
    EXPECT_TRUE(root->wasBound);
    EXPECT_EQ(root->caption, "A & B");
    EXPECT_EQ(root->level, 2.5);
    EXPECT_EQ(root->lbName->text(), "Name");
    EXPECT_EQ(root->lbName->font(), UIFont::systemFontOfSize(16, UIFontWeight::Semibold));
    EXPECT_EQ(root->lbName->textColor(), UIColor::rgb(0xF4F6F8));
    EXPECT_EQ(root->lbName->accessibilityIdentifier(), "lbName");
    EXPECT_EQ(root->btnOpen.get(), made[1].get());
    EXPECT_EQ(root->btnOpen->titleForState(UIControlState::Disabled), "Shut");
    EXPECT_EQ(root->btnOpen->titleColorForState(UIControlState::Disabled), UIColor::rgb(0xFFFFFF, 0.35F));
    root->btnOpen->sendActions(UIControlEvents::TouchUpInside);
    EXPECT_EQ(root->presses, 1);
    EXPECT_TRUE(root->translatesAutoresizingMaskIntoConstraints());
    EXPECT_FALSE(root->lbName->translatesAutoresizingMaskIntoConstraints());

    layOut(*root, {{10, 10}, {200, 100}});
    UIView& strip = *root->subviews()[1];
    EXPECT_EQ(strip.frame(), CGRectMake(165, 0, 35, 100));
    root->stripWidth->setConstant(50);
    window().layoutIfNeeded();
    EXPECT_EQ(strip.frame(), CGRectMake(150, 0, 50, 100));
}

TEST_F(Nib, OwnerTakesWhatTheRootHasNot) {
    const auto owner = make<NibOwner>();
    const auto root = first(R"(<UIView><UIButton outlet="badge" action="call"/></UIView>)", owner.get());
    ASSERT_TRUE(root);
    EXPECT_EQ(owner->badge.get(), root->subviews()[0].get());
    objectCast<UIButton>(root->subviews()[0].get())->sendActions(UIControlEvents::TouchUpInside);
    EXPECT_EQ(owner->calls, 1);
}

TEST_F(Nib, ConstraintsReadLikeAlgebra) {
    struct Case {
        const char* constraints;
        CGRect frame;
    };
    // A view within a parent of 200 by 100 beside a sibling at 20, 10 of 60 by 40.
    const Case cases[] = {
        {R"(pin="edges">)", {{0, 0}, {200, 100}}},
        {R"(pin="edges:8">)", {{8, 8}, {184, 84}}},
        {R"(pin="top:5 leading:6" width="30" height="20">)", {{6, 5}, {30, 20}}},
        {R"(pin="bottom:5 trailing" width="30" height="20">)", {{170, 75}, {30, 20}}},
        {R"(pin="center" width="30" height="20">)", {{85, 40}, {30, 20}}},
        {R"(pin="top" height="20"><constraint>leading == sibling.trailing + 8</constraint><constraint>self.width == sibling.width * 0.5</constraint>)",
         {{88, 0}, {30, 20}}},
        {R"(pin="leading"><constraint>top==sibling.bottom-4</constraint><constraint>width == parent.width * 0.25 + 10</constraint>
            <constraint>height == 33.5</constraint>)",
         {{0, 46}, {60, 33.5}}},
        {R"(pin="top leading" height="20"><constraint>width &gt;= 50</constraint><constraint priority="low">width == 10</constraint>)",
         {{0, 0}, {50, 20}}},
        {R"(pin="top leading" height="20"><constraint>sibling.width &gt;= width * 2</constraint><constraint priority="high">width == 90</constraint>)",
         {{0, 0}, {30, 20}}},
        {R"(pin="top" width="30" height="20"><constraint>centerX == parent.centerX - 10</constraint>)",
         {{75, 0}, {30, 20}}},
        {R"(frame="1 2 3 4">)", {{1, 2}, {3, 4}}},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.constraints);
        const auto root = first(
            std::string(R"(<UIView><UIView id="sibling" pin="top:10 leading:20" width="60" height="40"/><UIView )") +
            each.constraints + "</UIView></UIView>");
        ASSERT_TRUE(root);
        layOut(*root, {{0, 0}, {200, 100}});
        const CGRect frame = root->subviews()[1]->frame();
        EXPECT_NEAR(frame.minX(), each.frame.minX(), 1e-6);
        EXPECT_NEAR(frame.minY(), each.frame.minY(), 1e-6);
        EXPECT_NEAR(frame.width(), each.frame.width(), 1e-6);
        EXPECT_NEAR(frame.height(), each.frame.height(), 1e-6);
    }
}

TEST_F(Nib, ConstraintsAreHeldWhereTheyStandOrFurtherUp) {
    const auto root = first(R"(<UIView><UIView id="a"><constraint id="own">width == 10</constraint>
        <constraint>leading == b.leading</constraint></UIView><UIView id="b"/></UIView>)");
    ASSERT_TRUE(root);
    EXPECT_EQ(root->constraints().size(), 1U);
    EXPECT_EQ(root->subviews()[0]->constraints().size(), 1U);
}

TEST_F(Nib, ValuesOfAllKinds) {
    const auto root =
        first(R"(<UIView hidden="true" alpha="0.5" backgroundColor="#13151A" tintColor="white 8%" cornerRadii="1 2 3 4"
        borderWidth="2" borderColor="#FF6A3D80" shadow="24 0 2 black 35%" clipsToBounds="true" contentMode="scaleAspectFit"
        userInteractionEnabled="false" identifier="card" hugging="251" compressionResistance="700 required">
        <UICollectionView itemSpacing="4" contentInsets="1 2 3 4" alwaysBounceHorizontal="false"/>
        <UIImageView borderGap="2" cornerRadius="5"/>
        <UILabel font="HelveticaNeue-Medium 25" textAlignment="center" lineBreakMode="wordWrap" textColor="clear"/>
        <UIActivityIndicatorView color="lightGray" animating="true"/></UIView>)");
    ASSERT_TRUE(root);
    EXPECT_TRUE(root->isHidden());
    EXPECT_EQ(root->alpha(), 0.5);
    EXPECT_EQ(root->backgroundColor(), UIColor::rgb(0x13151A));
    EXPECT_EQ(root->tintColor(), UIColor::rgb(0xFFFFFF, 0.08F));
    EXPECT_EQ(root->layer().cornerRadii(), (CornerRadii{1, 2, 3, 4}));
    EXPECT_EQ(root->layer().borderWidth(), 2);
    EXPECT_EQ(root->layer().borderColor(), UIColor::rgb(0xFF6A3D, 128.0F / 255));
    EXPECT_EQ(root->layer().shadow(), (CALayer::Shadow{24, {0, 2}, UIColor::rgb(0, 0.35F)}));
    EXPECT_TRUE(root->clipsToBounds());
    EXPECT_EQ(root->contentMode(), UIViewContentMode::ScaleAspectFit);
    EXPECT_FALSE(root->isUserInteractionEnabled());
    EXPECT_EQ(root->accessibilityIdentifier(), "card");
    EXPECT_EQ(root->contentHuggingPriority(UILayoutConstraintAxis::Vertical), 251);
    EXPECT_EQ(root->contentCompressionResistancePriority(UILayoutConstraintAxis::Horizontal), 700);
    EXPECT_EQ(root->contentCompressionResistancePriority(UILayoutConstraintAxis::Vertical), 1000);
    const auto* list = objectCast<UICollectionView>(root->subviews()[0].get());
    EXPECT_EQ(list->layout().itemSpacing(), 4);
    EXPECT_EQ(list->layout().sectionInset(), (UIEdgeInsets{1, 2, 3, 4}));
    EXPECT_EQ(objectCast<UIImageView>(root->subviews()[1].get())->borderGap(), 2);
    const auto* label = objectCast<UILabel>(root->subviews()[2].get());
    EXPECT_EQ(label->font(), UIFont::fontWithName("HelveticaNeue-Medium", 25));
    EXPECT_EQ(label->textAlignment(), NSTextAlignment::Center);
}

TEST_F(Nib, MistakesNameFileAndLine) {
    struct Case {
        std::string text;
        std::string problem;
    };
    const auto inView = [](const std::string& attributes) {
        return "<UIView>\n <UILabel " + attributes + "/>\n</UIView>";
    };
    const auto constraint = [](const std::string& text) {
        return "<UIView>\n <UIView id=\"a\">\n  <constraint>" + text + "</constraint></UIView></UIView>";
    };
    const Case cases[] = {
        // Not well-formed.
        {"", "Card.xml:1: "},
        {"<UIView>\n<UIView>\n</UIView>", "Card.xml:3: "},
        {"<UIView/>\n<UIView/>", "Card.xml:2: a second outermost element"},
        {"<UIView>\n<UIView id=\"a\"\n id=\"a\"/></UIView>", "Card.xml:2: attribute \"id\" is given twice"},
        {"<layout/>", "Card.xml:1: the file holds no view"},
        // The fix is named as well.
        {inView("tetx=\"a\""), "Card.xml:2: \"UILabel\" has no attribute \"tetx\"; did you mean \"text\"?"},
        {inView("txtcolor=\"white\""), "has no attribute \"txtcolor\"; did you mean \"textColor\"?"},
        {"<UIView>\n<UILable/></UIView>", "unknown element \"UILable\"; did you mean \"UILabel\"?"},
        {inView("hidden=\"yes\""), "is no value for \"hidden\"; write \"true\" or \"false\""},
        {inView("backgroundColor=\"pannel\""), "; write \"#RRGGBB\", \"#RRGGBBAA\" or a colour of the theme"},
        {inView("cornerRadius=\"4px\""), "; write points, or a radius of the theme"},
        {inView("textAlignment=\"middle\""), "; write \"left\", \"center\", \"right\" or \"natural\""},
        {inView("font=\"12\""), "; write \"system 16\" or \"title semibold 16\""},
        {inView("pin=\"north\""), "; write edges, center, or places with an inset, as in \"top:8 leading\""},
        {card("\n<UIButton action=\"pres\"/>"), "unknown action \"pres\"; did you mean \"press\"?"},
        {card("\n<UIView outlet=\"optoinal\"/>"), "unknown outlet \"optoinal\"; did you mean \"optional\"?"},
        {constraint("wdith == 3"), "Card.xml:3: \"wdith\" names no attribute of a view; did you mean \"width\"?"},
        {constraint("width == aa.width"), "no view is called \"aa\"; did you mean \"a\"?"},
        {constraint("width == parent.width * x"), "expected a number, instead of \"x\""},
        {constraint("leading == parent.top"), "; take two sizes, two horizontal or two vertical places"},
        {"<layout>\n<NibCard><UILabel outlet=\"lbName\"/></NibCard></layout>", "; give one outlet=\"stripWidth\""},
        // Names.
        {"<UIView>\n\n <UIFancyView/></UIView>", "Card.xml:3: unknown element \"UIFancyView\""},
        {"<NibOwner/>", "Card.xml:1: \"NibOwner\" is no view"},
        {inView("tetx=\"a\""), "Card.xml:2: \"UILabel\" has no attribute \"tetx\""},
        {inView("title=\"a\""), "Card.xml:2: \"UILabel\" has no attribute \"title\""},
        {inView("text.disabled=\"a\""), "Card.xml:2: \"UILabel\" has no attribute \"text.disabled\""},
        {inView("outlet=\"lbNothing\""), "Card.xml:2: unknown outlet \"lbNothing\""},
        {inView("action=\"press\""), "Card.xml:2: only controls have an action"},
        {"<UIView>\n<UIButton action=\"fly\"/></UIView>", "Card.xml:2: unknown action \"fly\""},
        {"<UIView id=\"a\">\n<UIView id=\"a\"/></UIView>", "Card.xml:2: \"a\" is used twice"},
        {"<UIView id=\"a\">\n<UIView outlet=\"a\"/></UIView>", "Card.xml:2: \"a\" is used twice"},
        {inView("id=\"parent\""), "Card.xml:2: \"parent\" has a meaning of its own"},
        {card("\n<UIView outlet=\"lbName\"/>"), "Card.xml:3: \"lbName\" is used twice"},
        {card("<UIView>\nhello</UIView>"), "Card.xml:2: unexpected text \"hello\""},
        {"<NibCard>\n<UIView outlet=\"lbName\"/></NibCard>", "Card.xml:2: outlet \"lbName\" takes no UIView"},
        {"<layout>\n<NibCard><UILabel outlet=\"lbName\"/></NibCard></layout>",
         "Card.xml:2: outlet \"stripWidth\" is bound by no element"},
        // Values.
        {inView("hidden=\"yes\""), "Card.xml:2: \"yes\" is no value for \"hidden\""},
        {inView("alpha=\"1.5\""), "Card.xml:2: \"1.5\" is no value for \"alpha\""},
        {inView("alpha=\"nan\""), "Card.xml:2: \"nan\" is no value for \"alpha\""},
        {inView("cornerRadius=\"4px\""), "Card.xml:2: \"4px\" is no value"},
        {inView("backgroundColor=\"#12345\""), "Card.xml:2: \"#12345\" is no value"},
        {inView("backgroundColor=\"white 108%\""), "Card.xml:2: \"white 108%\" is no value"},
        {inView("font=\"system heavy 12\""), "Card.xml:2: \"system heavy 12\" is no value"},
        {inView("font=\"12\""), "Card.xml:2: \"12\" is no value"},
        {inView("numberOfLines=\"-1\""), "Card.xml:2: \"-1\" is no value"},
        {inView("textAlignment=\"middle\""), "Card.xml:2: \"middle\" is no value"},
        {inView("frame=\"1 2 3\""), "Card.xml:2: \"1 2 3\" is no value"},
        {inView("shadow=\"black\""), "Card.xml:2: \"black\" is no value"},
        {inView("icon=\"no-such-sign\""), "Card.xml:2: \"no-such-sign\" is no value"},
        {inView("width=\"wide\""), "Card.xml:2: \"wide\" is no length"},
        {inView("pin=\"north\""), "Card.xml:2: \"north\" pins nothing"},
        {inView("pin=\"top:x\""), "Card.xml:2: \"top:x\" pins nothing"},
        {"<UIView pin=\"edges\"/>", "Card.xml:1: a top-level object has no parent"},
        // Constraints.
        {constraint(""), "Card.xml:3: the constraint ends too early"},
        {constraint("width"), "Card.xml:3: expected ==, &lt;= or >="},
        {constraint("wdith == 3"), "Card.xml:3: \"wdith\" names no attribute of a view"},
        {constraint("width = 3"), "Card.xml:3: expected =="},
        {constraint("width == 3 pt"), "Card.xml:3: unexpected \"pt\""},
        {constraint("width == parent.width * x"), "Card.xml:3: expected a number"},
        {constraint("width == b.width"), "Card.xml:3: no view is called \"b\""},
        {constraint("leading == 3"), "Card.xml:3: only a width or a height is compared with a number alone"},
        {constraint("leading == parent.top"), "Card.xml:3: the two sides cannot be compared"},
        {"<UIView>\n<constraint priority=\"1001\">width == 3</constraint></UIView>",
         "Card.xml:2: \"1001\" is no value for \"priority\""},
        {"<UIView>\n<constraint constant=\"3\">width == 3</constraint></UIView>",
         "Card.xml:2: a constraint has no attribute \"constant\""},
        {"<UIView>\n<constraint outlet=\"w\">width == 3</constraint></UIView>", "Card.xml:2: unknown outlet \"w\""},
        {"<layout>\n<UIView id=\"a\"/>\n<UIView><constraint>top == a.top</constraint></UIView></layout>",
         "Card.xml:3: the constraint's views have no common superview"},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.text);
        std::string expected = each.problem;
        if (const auto escaped = expected.find("&lt;"); escaped != std::string::npos) expected.replace(escaped, 4, "<");
        EXPECT_NE(problem(each.text).find(expected), std::string::npos) << problem(each.text);
    }
}

TEST_F(Nib, HostileFilesAreRefusedQuietly) {
    std::string deep;
    for (int i = 0; i < 5000; ++i) deep += "<UIView>";
    for (int i = 0; i < 5000; ++i) deep += "</UIView>";
    EXPECT_NE(problem(deep).find("nested too deeply"), std::string::npos);
    const auto label =
        first<UILabel>("<!DOCTYPE x [<!ENTITY e SYSTEM \"file:///etc/passwd\">]><UILabel text=\"&e;\"/>");
    ASSERT_TRUE(label);
    EXPECT_EQ(label->text(), "&e;") << "an entity of the file's own stays what it is";
    // Any part of a good file, and any file with one character changed: an error or views, nothing else.
    const std::string good = card(
        R"(<UILabel id="x" font="system semibold 16" pin="top:8 leading"><constraint>width == parent.width * 0.5 - 4</constraint></UILabel>)");
    for (std::size_t at = 0; at < good.size(); ++at) {
        Ref<NSError> error;
        UINib::nibWithText(std::string_view(good).substr(0, at), "Cut.xml")->instantiateWithOwner(nullptr, &error);
        EXPECT_TRUE(error);
        for (char wrong : {'<', '"', '\0', '9', '.'}) {
            std::string changed = good;
            changed[at] = wrong;
            UINib::nibWithText(changed, "Changed.xml")->instantiateWithOwner(nullptr, &error);
        }
    }
}

TEST_F(Nib, FilesComeFromTheBundleAndAreReadOnce) {
    const TemporaryDirectory folder;
    folder.write("Card.xml", card(""));
    const auto bundle = NSBundle::bundleWithPath(folder.path());
    ASSERT_TRUE(bundle);
    const auto nib = UINib::nibWithNibName("Card", *bundle);
    const auto one = nib->instantiateWithOwner(nullptr);
    ASSERT_EQ(one.size(), 1U);
    folder.write("Card.xml", "damaged");
    const auto two = UINib::nibWithNibName("Card", *bundle)->instantiateWithOwner(nullptr);
    ASSERT_EQ(two.size(), 1U);
    EXPECT_NE(one.front(), two.front());
    static const std::string text = card("");
    static const BuiltInFile builtIn[] = {{"Card.xml", "damaged"}, {"BuiltIn.xml", text}};
    bundle->setBuiltInFiles(builtIn);
    EXPECT_EQ(UINib::nibWithNibName("Card", *bundle)->instantiateWithOwner(nullptr).size(), 1U);
    EXPECT_EQ(UINib::nibWithNibName("BuiltIn", *bundle)->instantiateWithOwner(nullptr).size(), 1U);

    Ref<NSError> error;
    EXPECT_TRUE(UINib::nibWithNibName("Missing", *bundle)->instantiateWithOwner(nullptr, &error).empty());
    ASSERT_TRUE(error);
    EXPECT_EQ(error->domain(), UINibErrorDomain);
    EXPECT_EQ(error->localizedDescription(), "Missing.xml: the file cannot be read");
    // Without somebody to take the error it is written, once.
    const auto missing = UINib::nibWithNibName("Missing", *bundle);
    ::testing::internal::CaptureStderr();
    missing->instantiateWithOwner(nullptr);
    missing->instantiateWithOwner(nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "UINib: Missing.xml: the file cannot be read\n");
}

}  // namespace
}  // namespace flarebox::testing
