// Runs every fuzzer over its seeds and past findings; needs no fuzzing engine.

#include <Fuzz/Support/FuzzTarget.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

namespace flarebox::fuzz {
namespace {

std::vector<std::filesystem::path> inputsOf(const FuzzTarget& target) {
    std::vector<std::filesystem::path> paths;
    for (const char* kind : {"Corpus", "Findings"}) {
        const auto folder = std::filesystem::path(FUZZ_FOLDER) / kind / target.name;
        if (!std::filesystem::is_directory(folder)) continue;
        for (const auto& entry : std::filesystem::directory_iterator(folder)) paths.push_back(entry.path());
    }
    std::ranges::sort(paths);
    return paths;
}

class Replay : public ::testing::Test {
public:
    explicit Replay(const FuzzTarget& target) : target_(target) {}
    void TestBody() override {
        const auto paths = inputsOf(target_);
        EXPECT_FALSE(paths.empty()) << "a fuzzer starts from seeds";
        for (const auto& path : paths) {
            // Told beforehand: a finding that comes back ends the process.
            std::cout << path.filename().string() << std::endl;
            std::ifstream file(path, std::ios::binary);
            const std::string bytes((std::istreambuf_iterator<char>(file)), {});
            target_.run({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()});
        }
    }

private:
    const FuzzTarget& target_;
};

}  // namespace
}  // namespace flarebox::fuzz

int main(int argumentCount, char** arguments) {
    using namespace flarebox::fuzz;
    for (const FuzzTarget* target : fuzzTargets()) {
        ::testing::RegisterTest("FuzzReplay", std::string(target->name).c_str(), nullptr, nullptr, __FILE__, __LINE__,
                                [target]() -> ::testing::Test* { return new Replay(*target); });
    }
    ::testing::InitGoogleTest(&argumentCount, arguments);
    return RUN_ALL_TESTS();
}
