#include <Tests/Support/Pump.h>
#include <Tests/UIKit/Bitmap.h>

#include <UIKit/FontOpening.h>
#include <UIKit/UIHost.h>
#include <UIKit/UIImage.h>
#include <UIKit/UILabel.h>
#include <UIKit/VectorIcon.h>

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <string>
#include <thread>

namespace flarebox::testing {
namespace {

constexpr CGFloat unlimited = std::numeric_limits<CGFloat>::infinity();

TextStyle styleOf(CGFloat size, int lines = 1) {
    return {.font = UIFont::systemFontOfSize(size), .numberOfLines = lines};
}

struct Sample {
    const char* what;
    std::string text;
};
std::vector<Sample> awkwardTexts() {
    std::string title;
    while (title.size() < 120) title += "Aurora wireless headset ";
    return {
        {"a title of 120 letters", title},
        {"a word of 60 letters", "Donaudampfschifffahrtselektrizitaetenhauptbetriebswerkbauten"},
        {"right to left", "سماعات لاسلكية احترافية مع إلغاء الضوضاء النشط وبطارية طويلة"},
        {"Hebrew", "שלום עולם, זה טקסט ארוך מאוד שלא נכנס בשורה אחת"},
        {"Chinese characters", "東京の静かな夜に聞こえる音楽のためのヘッドホン、長い説明文がここに続きます"},
        {"emoji",
         "🎉😀👩‍👩‍👧❤️🇩🇪🎉😀👩‍👩‍👧❤️🇩🇪🎉😀👩‍👩‍👧❤"
         "️"
         "🇩"
         "🇪"
         "🎉"
         "😀"},
        {"stacked marks", "Z̴̡̛̺̘̿̓͒a̷̢̛̗̜͂l̶̰͙̈́́g̵͕̈́̌ơ̷̳͉ Z̴̡̛̺̘̿̓͒a̷̢̛̗̜͂l̶̰͙̈́́g̵͕̈́̌ơ̷̳͉"},
        {"broken UTF-8", std::string("caf\xE9 \xFF\xFE\xF0\x9F") + "\xC0\xAF end"},
        {"control characters", std::string("a\0b\x01\x1B[2J\tc\r\nd\x7F", 13)},
        {"direction overrides", "\u202Eabc\u2066def\u202D ghi \u2029 jkl"},
        {"only line ends", "\n\n\n"},
        {"a script without a font", "\U00013000\U0001D54F\uE000"},
    };
}

TEST(Text, StaysInItsBox) {
    for (const Sample& sample : awkwardTexts()) {
        for (const CGFloat scale : {1.0, 2.0, 3.0}) {
            for (const int lines : {1, 2, 0}) {
                SCOPED_TRACE(std::string(sample.what) + ", scale " + std::to_string(scale) + ", lines " +
                             std::to_string(lines));
                Bitmap bitmap(static_cast<int>(160 * scale), static_cast<int>(80 * scale));
                const CGRect box = CGRectMake(20, 20, 110, 34);
                bitmap.canvas(scale)->drawText(sample.text, styleOf(13, lines), box);
                EXPECT_TRUE(bitmap.isWithin(box, scale));
                EXPECT_EQ(bitmap.ink().isEmpty(), sample.text[0] == '\n');
                const CGSize size = measureText(sample.text, styleOf(13, lines), 110);
                EXPECT_LE(size.width, 110);
                EXPECT_GT(size.height, 0);
            }
        }
    }
}

TEST(Text, BreaksIntoLines) {
    const CGFloat line = measureText("", styleOf(12), unlimited).height;
    const auto linesOf = [line](std::string_view text, int lines, CGFloat width) {
        return std::lround(measureText(text, styleOf(12, lines), width).height / line * 1.02);
    };
    EXPECT_EQ(linesOf("one two three", 0, unlimited), 1);
    EXPECT_EQ(linesOf("one two three", 0, 30), 3);
    EXPECT_EQ(linesOf("one two three", 2, 30), 2);
    EXPECT_EQ(linesOf("one two three", 1, 30), 1);
    EXPECT_GE(linesOf("Donaudampfschifffahrt", 0, 60), 2) << "a word wider than the line is broken";
    EXPECT_EQ(linesOf("a\nb\r\nc\rd", 0, unlimited), 4);
    EXPECT_EQ(linesOf("a\nb\nc", 2, unlimited), 2) << "the limit counts over all paragraphs";
    EXPECT_EQ(linesOf("a\nb\n", 0, unlimited), 2) << "nothing follows the last line end";
    EXPECT_EQ(linesOf("a\nb", 1, unlimited), 1);

    const CGSize empty = measureText("", styleOf(12), 100);
    EXPECT_EQ(empty.width, 0);
    EXPECT_GT(empty.height, 12);
    EXPECT_GT(measureText("wider", styleOf(20), unlimited).width, measureText("wider", styleOf(10), unlimited).width);
}

TEST(Text, SizesThatMakeNoSenseAreHarmless) {
    const CGFloat nan = std::numeric_limits<CGFloat>::quiet_NaN();
    for (const CGFloat size : {nan, -1.0, 0.0, 1e9}) {
        Bitmap bitmap(40, 40);
        const UIFont font = UIFont::systemFontOfSize(size);
        EXPECT_GT(font.pointSize(), 0);
        EXPECT_LT(font.pointSize(), 10'000);
        bitmap.canvas()->drawText("abc", {.font = font}, CGRectMake(10, 10, 20, 20));
        EXPECT_TRUE(bitmap.isWithin(CGRectMake(10, 10, 20, 20)));
    }
    for (const CGFloat width : {nan, -5.0, 0.0, 1e300}) EXPECT_GT(measureText("abc", styleOf(12), width).height, 0);
    Bitmap bitmap(40, 40);
    bitmap.canvas()->drawText("abc", styleOf(12), CGRectMake(10, 10, -5, 20));
    EXPECT_TRUE(bitmap.ink().isEmpty());
}

TEST(Text, AMegabyteIsCutShort) {
    std::string text(1 << 20, 'x');
    for (std::size_t i = 0; i < text.size(); i += 7) text[i] = ' ';
    const CGSize size = measureText(text, styleOf(12, 0), 200);
    EXPECT_LT(size.height, 20'000);
    const std::string emoji = [] {
        std::string many;
        while (many.size() < 1 << 20) many += "😀";
        return many;
    }();
    Bitmap bitmap(200, 100);
    bitmap.canvas()->drawText(emoji, styleOf(12, 0), CGRectMake(0, 0, 200, 100));
    EXPECT_FALSE(bitmap.ink().isEmpty());
}

TEST(Text, EndsInAnEllipsisWhereItIsCut) {
    struct Case {
        const char* text;
        int lines;
        bool cut;
    };
    const Case cases[] = {
        {"Hill Hill Hill Hill Hill Hill Hill Hill Hill Hill Hill Hill", 1, true},
        {"HillHillHillHillHillHillHillHillHillHillHillHillHillHill", 1, true},
        {"HillHillHillHillHillHillHillHillHillHillHillHillHillHill", 2, true},
        {"Hill\nHill", 1, false},
        {"Hill\nHill\nHill", 2, true},
        {"Hill Hill", 1, false},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.text);
        Bitmap bitmap(240, 80);
        bitmap.canvas(2)->drawText(c.text, styleOf(12, c.lines), CGRectMake(0, 0, 120, 40));
        // Dots on the last line are all there is in its last few columns; letters without round parts are far taller.
        const int lastLineTop = c.lines == 1 ? 0 : 29;
        Bitmap last(240, 80 - lastLineTop);
        std::copy(bitmap.pixels.begin() + lastLineTop * 240, bitmap.pixels.end(), last.pixels.begin());
        const auto end = last.ink(last.ink().right - 8);
        EXPECT_EQ(end.height() <= 5, c.cut);
    }
}

TEST(Text, StandsWhereItsAlignmentSays) {
    enum Place { AtLeft, InMiddle, AtRight };
    struct Case {
        const char* text;
        NSTextAlignment alignment;
        Place place;
    };
    const Case cases[] = {
        {"Hello", NSTextAlignment::Left, AtLeft},   {"Hello", NSTextAlignment::Center, InMiddle},
        {"Hello", NSTextAlignment::Right, AtRight}, {"Hello", NSTextAlignment::Natural, AtLeft},
        {"שלום", NSTextAlignment::Left, AtLeft},    {"שלום", NSTextAlignment::Center, InMiddle},
        {"שלום", NSTextAlignment::Right, AtRight},  {"שלום", NSTextAlignment::Natural, AtRight},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(std::string(c.text) + " " + std::to_string(static_cast<int>(c.alignment)));
        Bitmap bitmap(200, 30);
        TextStyle style = styleOf(14);
        style.alignment = c.alignment;
        bitmap.canvas()->drawText(c.text, style, CGRectMake(0, 0, 200, 30));
        const auto ink = bitmap.ink();
        const int leftGap = ink.left, rightGap = 199 - ink.right;
        EXPECT_EQ(leftGap <= 3, c.place == AtLeft);
        EXPECT_EQ(rightGap <= 3, c.place == AtRight);
        EXPECT_EQ(std::abs(leftGap - rightGap) <= 3, c.place == InMiddle);
    }
}

TEST(Text, FitsIntoTheSizeThatWasMeasured) {
    for (const char* text : {"Get coupon", "Buy", "AVAWATAY", "fjord fi", "Ünï çode", "Party 🎉"}) {
        for (CGFloat size = 9; size < 25; size += 1.3) {
            SCOPED_TRACE(std::string(text) + " " + std::to_string(size));
            const CGSize measured = measureText(text, styleOf(size), unlimited);
            Bitmap tight(400, 60), roomy(400, 60);
            tight.canvas()->drawText(text, styleOf(size), {{0, 0}, measured});
            roomy.canvas()->drawText(text, styleOf(size), CGRectMake(0, 0, measured.width, 60));
            EXPECT_EQ(tight.pixels, roomy.pixels);
            roomy = Bitmap(400, 60);
            roomy.canvas()->drawText(text, styleOf(size), CGRectMake(0, 0, 399, 60));
            EXPECT_NEAR(tight.ink().right, roomy.ink().right, 1) << "an ellipsis has taken the place of letters";
        }
    }
}

TEST(Text, IsTheSameEveryTime) {
    const auto draw = [](CGFloat scale) {
        Bitmap bitmap(400, 200);
        auto canvas = bitmap.canvas(scale);
        CGFloat y = 0;
        for (const Sample& sample : awkwardTexts()) {
            canvas->drawText(sample.text, styleOf(11, 1), CGRectMake(0, y, 130, 14));
            y += 14;
        }
        return bitmap.pixels;
    };
    const auto first = draw(1);
    const auto doubled = draw(2);
    EXPECT_EQ(draw(1), first);
    EXPECT_EQ(draw(2), doubled);
}

TEST(Text, EmojiHaveTheirColors) {
    Bitmap bitmap(40, 40);
    bitmap.canvas()->drawText("😀", styleOf(24), CGRectMake(0, 0, 40, 40));
    const bool hasYellow = std::any_of(bitmap.pixels.begin(), bitmap.pixels.end(), [](std::uint32_t pixel) {
        return (pixel >> 16 & 255) > 180 && (pixel & 255) < 120;
    });
    EXPECT_TRUE(hasYellow);
    EXPECT_NEAR(bitmap.ink().width(), 27, 8) << "scaled to the size of the text";
}

TEST(Text, FontsMayBeOpenedOnAnotherThreadMeanwhile) {
    std::atomic<bool> stops = false;
    std::thread other([&] { openUsualFonts(stops); });
    Bitmap bitmap(100, 40);
    for (int i = 0; i < 50; ++i)
        bitmap.canvas()->drawText("text " + std::to_string(i), styleOf(12), CGRectMake(0, 0, 100, 40));
    other.join();
    EXPECT_FALSE(bitmap.ink().isEmpty());
}

TEST(Text, LabelsFollowWhenTheirFontsAreOpen) {
    if (fontsAreInUse()) GTEST_SKIP() << "another test has opened the fonts";
    UIHost host({200, 100}, 1);
    openFontsInBackground();
    ASSERT_TRUE(fontsAreOpening());
    const auto label = make<UILabel>();
    label->setText("iiiiiiii");
    Bitmap bitmap(200, 40);
    label->drawRect(*bitmap.canvas(), CGRectMake(0, 0, 200, 40));
    EXPECT_TRUE(bitmap.ink().isEmpty()) << "nobody waits for fonts";
    const CGFloat estimated = label->intrinsicContentSize().width;
    EXPECT_GT(estimated, 0);

    ASSERT_TRUE(flarebox::testing::pumpUntil([] { return !fontsAreOpening(); }));
    EXPECT_LT(label->intrinsicContentSize().width, estimated) << "narrow letters";
    label->drawRect(*bitmap.canvas(), CGRectMake(0, 0, 200, 40));
    EXPECT_FALSE(bitmap.ink().isEmpty());
}

TEST(Text, WhatWasAskedForWhileFontsAreOpenedIsLaidOutElsewhere) {
    if (fontsAreInUse()) GTEST_SKIP() << "another test has opened the fonts";
    UIHost host({200, 100}, 1);
    openFontsInBackground();
    const auto width = [] { return measureText("asked for early", styleOf(12), 0).width; };
    const CGFloat estimated = width();
    // The thread may have been quicker than the question: whoever opens them next finds it.
    const std::atomic<bool> stops = false;
    std::thread([&] { openUsualFonts(stops); }).join();
    EXPECT_EQ(width(), estimated) << "still by estimate";
    ASSERT_TRUE(flarebox::testing::pumpUntil([] { return !fontsAreOpening(); }));
    const std::uint64_t before = laidOutTextCount();
    EXPECT_NE(width(), estimated);
    EXPECT_EQ(laidOutTextCount(), before);
    measureText("asked for late", styleOf(12), 0);
    EXPECT_EQ(laidOutTextCount(), before + 1);
}

TEST(Text, FontsBeingOpenedHoldUpNoShutdown) {
    if (fontsAreInUse()) GTEST_SKIP() << "another test has opened the fonts";
    {
        UIHost host({200, 100}, 1);
        openFontsInBackground();
    }
    EXPECT_FALSE(fontsAreOpening());
}

TEST(Font, NamesOfThePlatform) {
    struct Case {
        const char* name;
        const char* family;
        UIFontWeight weight;
    };
    const Case cases[] = {
        {"HelveticaNeue", "", UIFontWeight::Regular},   {"HelveticaNeue-Medium", "", UIFontWeight::Medium},
        {"HelveticaNeue-Bold", "", UIFontWeight::Bold}, {"Courier-Bold", "Courier", UIFontWeight::Bold},
        {"Foo-Nonsense", "Foo", UIFontWeight::Regular}, {"", "", UIFontWeight::Regular},
    };
    for (const Case& c : cases) {
        const UIFont font = UIFont::fontWithName(c.name, 25);
        EXPECT_EQ(font.family(), c.family) << c.name;
        EXPECT_EQ(font.weight(), c.weight) << c.name;
        EXPECT_EQ(font.pointSize(), 25) << c.name;
    }
    EXPECT_GT(measureText("Weight", {.font = UIFont::systemFontOfSize(30, UIFontWeight::Bold)}, unlimited).width,
              measureText("Weight", {.font = UIFont::systemFontOfSize(30)}, unlimited).width);
    EXPECT_GT(measureText("Weight", {.font = UIFont::fontWithName("NoSuchFace", 30)}, unlimited).width, 60);
}

TEST(Canvas, LinesAreSharpAtEveryScale) {
    for (const CGFloat scale : {1.0, 1.5, 2.0, 3.0}) {
        for (const CGFloat offset : {0.0, 0.3, 0.5, 0.7}) {
            SCOPED_TRACE(std::to_string(scale) + " " + std::to_string(offset));
            Bitmap bitmap(100, 100);
            bitmap.canvas(scale)->strokeRoundedRect(CGRectMake(4 + offset, 4 + offset, 20, 20), {}, 1,
                                                    UIColor::whiteColor());
            const int middle = bitmap.ink().top + bitmap.ink().height() / 2;
            int full = 0;
            for (int x = 0; x < 100; ++x) {
                const int alpha = bitmap.alpha(x, middle);
                EXPECT_TRUE(alpha == 0 || alpha == 255) << "grey at " << x;
                full += alpha == 255;
            }
            EXPECT_EQ(full, 2 * std::lround(scale));
            EXPECT_TRUE(bitmap.isWithin(CGRectMake(3, 3, 23, 23), scale));
        }
    }
}

TEST(Canvas, FillsClipsAndRestores) {
    Bitmap bitmap(40, 40);
    auto canvas = bitmap.canvas(2);
    canvas->save();
    canvas->translate(5, 5);
    canvas->clipRoundedRect(CGRectMake(0, 0, 10, 10), CornerRadii::all(5));
    canvas->fillRoundedRect(CGRectMake(-100, -100, 300, 300), {}, UIColor::rgb(0xFF0000, 0.5F));
    canvas->restore();
    EXPECT_EQ(bitmap.ink().width(), 20);
    EXPECT_EQ(bitmap.at(20, 20), 0x80800000U) << "colours are premultiplied";
    EXPECT_EQ(bitmap.alpha(10, 10), 0) << "the corner is round";
    canvas->fillRoundedRect(CGRectMake(0, 0, 20, 0.1), {}, UIColor::whiteColor());
    EXPECT_EQ(bitmap.alpha(0, 0), 255) << "nothing is thinner than a pixel";
    canvas->fillGradient(CGRectMake(0, 18, 20, 2), UIColor::blackColor(), UIColor::whiteColor(), true);
    EXPECT_LT(bitmap.at(0, 38) & 255, 12U);
    EXPECT_GT(bitmap.at(39, 38) & 255, 243U);
}

TEST(Canvas, PicturesFillTheirRectangleToTheEdge) {
    const auto image = UIImage::imageWithPixels(3, 2, std::vector<std::uint32_t>(6, 0xFF204060));
    for (const CGRect rect : {CGRectMake(5, 5, 20, 12), CGRectMake(5, 5, 2, 1)}) {
        Bitmap bitmap(80, 80);
        bitmap.canvas(2)->drawImage(*image, rect);
        EXPECT_TRUE(bitmap.isWithin(rect, 2));
        EXPECT_EQ(bitmap.ink().width(), rect.width() * 2);
        EXPECT_EQ(bitmap.at(10, 10), 0xFF204060U);
        EXPECT_EQ(bitmap.at(bitmap.ink().right, bitmap.ink().bottom), 0xFF204060U);
    }
}

TEST(VectorIcon, EachStaysOnItsGrid) {
    for (const VectorIcon& icon : VectorIcon::all()) {
        SCOPED_TRACE(std::string(icon.name()));
        EXPECT_EQ(VectorIcon::named(icon.name()), &icon);
        for (const CGFloat side : {12.0, 24.0, 96.0}) {
            Bitmap bitmap(140, 120);
            const CGRect rect = CGRectMake(10, 10, side + 8, side);
            icon.draw(*bitmap.canvas(), rect, UIColor::whiteColor());
            EXPECT_TRUE(bitmap.isWithin(rect));
            EXPECT_GT(bitmap.ink().height(), side / 3);
        }
    }
    EXPECT_EQ(VectorIcon::named("nothing of that name"), nullptr);
}

}  // namespace
}  // namespace flarebox::testing
