#include <Flarebox/Core/FlareboxConfig.h>
#include <Flarebox/Core/Logging.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace flarebox {
namespace {

TEST(Logging, LevelsDecideWhatIsPrinted) {
    struct Case {
        bool enabled;
        std::uint64_t level;
        bool info, warning, error;
    };
    const Case cases[] = {
        {false, 1, false, false, false},
        {true, 0, false, false, false},
        {true, 1, true, true, true},
        {true, 2, false, true, true},
        {true, 3, false, false, true},
        {true, 4, false, false, false},
        {true, std::numeric_limits<std::uint64_t>::max(), false, false, false},
    };
    FlareboxConfig& config = FlareboxConfig::defaultConfig();
    for (const Case& setting : cases) {
        config.setEnableLogging(setting.enabled);
        config.setLogLevel(setting.level);
        ::testing::internal::CaptureStderr();
        infoLog("one");
        warningLog("two\n");
        errorLog("%@", "three");
        std::string expected;
        if (setting.info) expected += "KestrinSDK Info: one\n";
        if (setting.warning) expected += "KestrinSDK Warning: two\n";
        if (setting.error) expected += "KestrinSDK Error: three\n";
        EXPECT_EQ(::testing::internal::GetCapturedStderr(), expected) << setting.level;
    }
    config.setEnableLogging(false);
}

TEST(Logging, ASinkTakesWhatAllThreadsSay) {
    std::vector<std::string> lines;
    LogSink::set([&](LogLevel level, std::string_view message) {
        lines.push_back(std::to_string(level) + " " + std::string(message));
        if (message == "nested") LogSink::write(LogLevelInfo, "inside");
        if (message == "replaced") LogSink::set(nullptr);
        if (message == "thrown") throw std::runtime_error("full");
    });
    ::testing::internal::CaptureStderr();
    printLog("Title", "%d\n", std::array<Value, 1>{Value(1)});
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([] {
            for (int line = 0; line < 100; ++line) LogSink::write(LogLevelWarning, "worker");
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const char* message : {"nested", "thrown", "replaced", "after"}) LogSink::write(LogLevelError, message);
    LogSink::set(nullptr);
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "inside\nthrown\nafter\n");
    ASSERT_EQ(lines.size(), 404U);
    EXPECT_EQ(lines.front(), "1 Title: 1");
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "2 worker"), 400);
    EXPECT_EQ(lines.back(), "3 replaced");
}

TEST(Logging, TextsCannotSteerATerminal) {
    ::testing::internal::CaptureStderr();
    printLog("Title", "%@ and %@",
             std::initializer_list<Value>{NSString(std::string_view("\x1b[2J\0\x7f\t", 7)), "caf\u00e9"});
    EXPECT_EQ(::testing::internal::GetCapturedStderr(), "Title: ?[2J??\t and caf\u00e9\n");
}

TEST(Logging, FormatsAnyArgumentsSafely) {
    struct Case {
        std::string_view format;
        std::vector<Value> arguments;
        std::string expected;
    };
    const Case cases[] = {
        {"%@ of %@", {"cup", 3}, "cup of 3"},
        {"%d|%5d|%-5d|%05d|%+d", {1, 2, 3, 4, 5}, "1|    2|3    |00004|+5"},
        {"%lld %llu %qu %hhd",
         {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::uint64_t>::max(), 7, 300},
         "-9223372036854775808 18446744073709551615 7 44"},
        {"%x %X %o %#x", {255, 255, 8, 255}, "ff FF 10 0xff"},
        {"%x %u %hx %lx %hhu", {-1, -2, -1, -1, 257}, "ffffffff 4294967294 ffff ffffffffffffffff 1"},
        {"%.2f %g %5.1f", {1.005, 0.5, 2}, "1.00 0.5   2.0"},
        {"%s [%8s] [%-8s] %.2s", {"text", "right", "left", "cut"}, "text [   right] [left    ] cu"},
        {"%c%c", {'A', 7777}, "A\xEF\xBF\xBD"},
        {"100%% of %@", {"it"}, "100% of it"},
        // Wrong, missing and surplus arguments.
        {"%d and %f", {"three", "four"}, "three and four"},
        {"%s and %@", {5, nullptr}, "5 and (null)"},
        {"%@ then %@ %d", {"only"}, "only then %@ %d"},
        {"none", {1, 2}, "none"},
        {"%@", {"%s%n%@"}, "%s%n%@"},
        // What is no conversion stays as it stands.
        {"%n %* %k %", {1}, "%n %* %k %"},
        {"%99999999d", {1}, std::string(511, ' ') + "1"},
        {"%.99999999f", {0.5}, "0.5" + std::string(511, '0')},
        {"%f", {std::numeric_limits<double>::max()}, std::to_string(std::numeric_limits<double>::max())},
        {"", {}, ""},
        {"%", {}, "%"},
    };
    for (const Case& example : cases) {
        EXPECT_EQ(formatLog(example.format, example.arguments), example.expected) << example.format;
    }
}

}  // namespace
}  // namespace flarebox
