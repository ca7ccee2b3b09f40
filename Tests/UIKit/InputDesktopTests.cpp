#include "Tests/Support/Pump.h"
#include "Tests/Support/TemporaryDirectory.h"

#include <Foundation/Shutdown.h>
#include <UIKit/UIApplication.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

namespace flarebox::testing {
namespace {

// The desktop's own way, with an application installed for one scheme in a home of the test's.
TEST(InputDesktop, LinkReachesTheInstalledApplication) {
    const TemporaryDirectory home;
    for (const char* variable : {"XDG_DATA_HOME", "XDG_DATA_DIRS", "XDG_CONFIG_HOME", "XDG_CONFIG_DIRS"}) {
        ::setenv(variable, home.path().c_str(), 1);
    }
    const std::string script = home.write("open.sh", "printf %s \"$1\" > \"$2.part\"; mv \"$2.part\" \"$2\"\n");
    home.write("applications/companion.desktop",
               "[Desktop Entry]\nType=Application\nName=Companion\nMimeType=x-scheme-handler/kestrin;\nExec=sh " +
                   script + " %u " + home.path("opened") + "\n");
    home.write("applications/browser.desktop",
               "[Desktop Entry]\nType=Application\nName=Browser\nMimeType=x-scheme-handler/https;\nExec=true %u\n");
    home.write("applications/mimeapps.list",
               "[Default "
               "Applications]\nx-scheme-handler/kestrin=companion.desktop;\nx-scheme-handler/https=browser.desktop;\n");

    UIApplication& application = UIApplication::sharedApplication();
    application.setUrlOpener(nullptr);
    application.setAllowedSchemes({"http", "https"});
    EXPECT_FALSE(application.canOpenURL(NSURL::URLWithString("kestrin://x"))) << "not allowed yet";
    application.allowScheme("kestrin");
    EXPECT_FALSE(application.canOpenURL(NSURL::URLWithString("kestrindev://x")));
    EXPECT_FALSE(application.openURL(NSURL::URLWithString("kestrindev://x")));
    const NSURL link = NSURL::URLWithString("kestrin://asset/12?from=tab");
    ASSERT_TRUE(application.canOpenURL(link));
    EXPECT_TRUE(application.openURL(link));
    EXPECT_TRUE(pumpUntil([&] { return home.has("opened"); }));
    EXPECT_EQ(home.read("opened"), "kestrin://asset/12?from=tab");
    for (const char* misleading : {"https:", "https:///page", "https://shop.example@example.com/", "https://a:b@c?d"})
        EXPECT_FALSE(application.openURL(NSURL::URLWithString(misleading))) << misleading;
    // Ending with links on their way loses them and waits for none.
    const NSURL page = NSURL::URLWithString("https://example.com/");
    for (int i = 0; i < 20; ++i) application.openURL(page);
    Shutdown::run();
    EXPECT_TRUE(application.openURL(page)) << "and begins anew";
    Shutdown::run();
}

}  // namespace
}  // namespace flarebox::testing
