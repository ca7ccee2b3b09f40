// What only POSIX systems have: links and pipes in folders, permissions, and folders named by the environment.

#include <Foundation/NSFileManager.h>
#include <Foundation/NSProcessInfo.h>

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <cstdlib>
#include <filesystem>
#include <optional>

#include "Tests/Support/TemporaryDirectory.h"

namespace flarebox {
namespace {

namespace fs = std::filesystem;

class PosixFiles : public ::testing::Test {
protected:
    testing::TemporaryDirectory folder;
    NSFileManager& files = NSFileManager::defaultManager();
    Ref<NSError> error;
};

TEST_F(PosixFiles, RemovingNeverFollowsLinks) {
    folder.write("precious/file", "kept");
    fs::create_directory(folder.path("victim"));
    fs::create_directory_symlink(folder.path("precious"), folder.path("victim/inner"));
    fs::create_directory_symlink(folder.path("precious"), folder.path("link"));
    EXPECT_TRUE(files.removeItemAtPath(folder.path("victim")));
    EXPECT_TRUE(files.removeItemAtPath(folder.path("link/")));
    EXPECT_FALSE(folder.has("link"));
    EXPECT_EQ(folder.read("precious/file"), "kept");
}

TEST_F(PosixFiles, FoldersAreMadeForTheUserAlone) {
    EXPECT_TRUE(files.createDirectoryAtPath(folder.path("a/b/c"), true));
    EXPECT_EQ(fs::status(folder.path("a/b")).permissions(), fs::perms::owner_all);
}

TEST_F(PosixFiles, PipesAreNotWaitedFor) {
    ASSERT_EQ(mkfifo(folder.path("pipe").c_str(), 0600), 0);
    EXPECT_FALSE(files.contentsAtPath(folder.path("pipe"), 10, &error));
}

/// Sets a variable of the environment for a while.
class Environment {
public:
    Environment(const char* name, const std::string& value) : name_(name) {
        if (const char* old = std::getenv(name)) old_ = old;
        setenv(name, value.c_str(), 1);
    }
    ~Environment() {
        if (old_)
            setenv(name_, old_->c_str(), 1);
        else
            unsetenv(name_);
    }

private:
    const char* name_;
    std::optional<std::string> old_;
};

TEST_F(PosixFiles, ApplicationFoldersFollowTheUsersSettings) {
    auto& process = NSProcessInfo::processInfo();
    std::string before = process.processName();
    EXPECT_NE(before.find("Tests"), std::string::npos) << "the executable's name";
    for (const char* bad : {"", "..", "a/b"}) EXPECT_FALSE(process.setProcessName(bad));
    ASSERT_TRUE(process.setProcessName("my game"));
    {
        Environment home("HOME", folder.path("home"));
        Environment config("XDG_CONFIG_HOME", "relative/is/void"), data("XDG_DATA_HOME", "");
        EXPECT_EQ(process.configurationDirectory(), folder.path("home/.config/my game"));
        EXPECT_EQ(process.dataDirectory(), folder.path("home/.local/share/my game"));
        Environment chosen("XDG_DATA_HOME", folder.path("data"));
        EXPECT_EQ(files.documentsDirectory(), folder.path("data/my game/Documents"));
        EXPECT_TRUE(fs::is_directory(folder.path("data/my game/Documents")));
        Environment homeless("HOME", ""), nowhere("XDG_DATA_HOME", "");
        EXPECT_EQ(process.configurationDirectory(), "");
        EXPECT_EQ(files.documentsDirectory(&error), "");
        EXPECT_TRUE(error);
    }
    files.setDocumentsDirectory(folder.path("chosen"));
    EXPECT_EQ(files.documentsDirectory(), folder.path("chosen"));
    EXPECT_TRUE(folder.has("chosen"));
    files.setDocumentsDirectory("");
    process.setProcessName(before);
}

}  // namespace
}  // namespace flarebox
