#include <Foundation/NSFileManager.h>
#include <Foundation/NSUUID.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <set>

#include "Tests/Support/TemporaryDirectory.h"

namespace flarebox {
namespace {

namespace fs = std::filesystem;

class Files : public ::testing::Test {
protected:
    testing::TemporaryDirectory folder;
    NSFileManager& files = NSFileManager::defaultManager();
    Ref<NSError> error;

    int code() const { return error ? error->code() : 0; }
};

TEST(PathComponents, ArePlainOrNot) {
    struct Case {
        std::string name;
        bool isPlain;
    };
    const Case cases[] = {{"a", true},
                          {"a b.c", true},
                          {"...", true},
                          {".hidden", true},
                          {std::string(255, 'x'), true},
                          {"ä漢", true},
                          {"a\\b", true},
                          {"", false},
                          {".", false},
                          {"..", false},
                          {"/", false},
                          {"a/b", false},
                          {"../a", false},
                          {"a/", false},
                          {std::string("a\0", 2), false},
                          {std::string(256, 'x'), false}};
    for (const Case& each : cases) EXPECT_EQ(isPlainPathComponent(each.name), each.isPlain) << each.name;
}

TEST_F(Files, AreListedAndRemoved) {
    folder.write("b", "");
    folder.write(".a", "");
    folder.write("c/d/e", "");
    EXPECT_EQ(files.contentsOfDirectoryAtPath(folder.path()), (std::vector<std::string>{".a", "b", "c"}));
    EXPECT_TRUE(files.removeItemAtPath(folder.path("c")));
    EXPECT_TRUE(files.removeItemAtPath(folder.path("b")));
    EXPECT_EQ(files.contentsOfDirectoryAtPath(folder.path()), std::vector<std::string>{".a"});

    EXPECT_FALSE(files.removeItemAtPath(folder.path("b"), &error));
    EXPECT_EQ(code(), NSFileNoSuchFileError);
    EXPECT_NE(error->localizedDescription().find(folder.path("b")), std::string::npos);
    EXPECT_TRUE(files.contentsOfDirectoryAtPath(folder.path("b"), &error).empty());
    EXPECT_EQ(code(), NSFileReadNoSuchFileError);
    for (std::string path : {std::string(), std::string("a\0b", 3)}) {
        EXPECT_FALSE(files.removeItemAtPath(path, &error));
        EXPECT_EQ(code(), NSFileWriteInvalidFileNameError);
        EXPECT_FALSE(files.fileExistsAtPath(path));
    }
}

TEST_F(Files, FoldersAreMadeWhereThereAreNone) {
    EXPECT_FALSE(files.createDirectoryAtPath(folder.path("a/b/c"), false, &error));
    EXPECT_EQ(code(), NSFileNoSuchFileError);
    EXPECT_TRUE(files.createDirectoryAtPath(folder.path("a/b/c/"), true));
    EXPECT_TRUE(files.createDirectoryAtPath(folder.path("a/b/c"), true));
    EXPECT_FALSE(files.createDirectoryAtPath(folder.path("a"), false, &error));
    EXPECT_EQ(code(), NSFileWriteFileExistsError);
    folder.write("file", "");
    EXPECT_FALSE(files.createDirectoryAtPath(folder.path("file"), true, &error));
    EXPECT_FALSE(files.createDirectoryAtPath(folder.path("file/below"), true, &error));
}

TEST_F(Files, AreMovedAndReplaced) {
    folder.write("one", "1");
    folder.write("two", "2");
    EXPECT_FALSE(files.moveItemAtPath(folder.path("one"), folder.path("two"), &error));
    EXPECT_EQ(code(), NSFileWriteFileExistsError);
    EXPECT_EQ(folder.read("two"), "2");
    EXPECT_TRUE(files.moveItemAtPath(folder.path("one"), folder.path("three")));
    EXPECT_FALSE(folder.has("one"));
    EXPECT_TRUE(files.replaceItemAtPath(folder.path("two"), folder.path("three")));
    EXPECT_EQ(folder.read("two"), "1");
    EXPECT_FALSE(files.moveItemAtPath(folder.path("gone"), folder.path("new"), &error));
    EXPECT_EQ(code(), NSFileNoSuchFileError);
    EXPECT_FALSE(files.replaceItemAtPath(folder.path("two"), folder.path("gone"), &error));
    EXPECT_EQ(code(), NSFileNoSuchFileError);
}

TEST_F(Files, AreReadWithinBoundsAndWrittenWhole) {
    std::string contents(200000, 'x');
    contents[1000] = '\0';
    EXPECT_TRUE(files.writeAtomically("old", folder.path("file")));
    EXPECT_TRUE(files.writeAtomically(contents, folder.path("file")));
    EXPECT_EQ(files.contentsAtPath(folder.path("file")).text(), contents);
    EXPECT_TRUE(files.contentsAtPath(folder.path("file"), contents.size()));
    EXPECT_FALSE(files.contentsAtPath(folder.path("file"), contents.size() - 1, &error));
    EXPECT_EQ(code(), NSFileReadTooLargeError);
    EXPECT_TRUE(files.writeAtomically("", folder.path("empty")));
    EXPECT_TRUE(files.contentsAtPath(folder.path("empty"))) << "an empty file is not a missing one";

    EXPECT_FALSE(files.contentsAtPath(folder.path("none"), 10, &error));
    EXPECT_EQ(code(), NSFileReadNoSuchFileError);
    EXPECT_FALSE(files.contentsAtPath(folder.path(), 10, &error));
    EXPECT_FALSE(files.writeAtomically("x", folder.path("none/file"), &error));
    EXPECT_EQ(code(), NSFileNoSuchFileError);
    // The place is taken by a folder: nothing half-done stays behind.
    fs::create_directory(folder.path("taken"));
    EXPECT_FALSE(files.writeAtomically("x", folder.path("taken"), &error));
    EXPECT_EQ(files.contentsOfDirectoryAtPath(folder.path()), (std::vector<std::string>{"empty", "file", "taken"}));
}

TEST(Identifiers, AreRandomAndReadBack) {
    std::set<std::string> seen;
    for (int count = 0; count < 100; ++count) {
        auto identifier = NSUUID::UUID();
        ASSERT_TRUE(identifier);
        std::string text = identifier->UUIDString();
        EXPECT_TRUE(seen.insert(text).second);
        EXPECT_EQ(text[14], '4');
        EXPECT_NE(std::string("89AB").find(text[19]), std::string::npos);
        EXPECT_EQ(NSUUID::UUIDWithString(text), identifier);
    }
    EXPECT_EQ(NSUUID().UUIDString(), "00000000-0000-0000-0000-000000000000");
    EXPECT_EQ(NSUUID::UUIDWithString("6ba7b810-9dad-11d1-80b4-00C04FD430c8")->UUIDString(),
              "6BA7B810-9DAD-11D1-80B4-00C04FD430C8");
    for (const char* bad : {"", "6BA7B8109DAD11D180B400C04FD430C8", "6BA7B810-9DAD-11D1-80B4-00C04FD430C",
                            "-6-7B810-9DAD-11D1-80B4-00C04FD430C8", "6BA7B810-9DAD-11D1-80B4-00C04FD430CG",
                            "6BA7B810-9DAD-11D1-80B4-00C04FD430C8 ", "6BA7B810 9DAD 11D1 80B4 00C04FD430C8"}) {
        EXPECT_FALSE(NSUUID::UUIDWithString(bad)) << bad;
    }
}

}  // namespace
}  // namespace flarebox
