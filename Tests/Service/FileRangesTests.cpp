#include <Examples/Service/Service.h>

#include <gtest/gtest.h>
#include <httplib.h>

#include <string>

namespace flarebox::examples {
namespace {

class FileRangesTest : public testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(service.start()); }

    httplib::Client client() { return httplib::Client("127.0.0.1", service.port()); }
    httplib::Result get(const std::string& path, const httplib::Headers& headers = {}) {
        return client().Get(path, headers);
    }

    Service service;
};

TEST_F(FileRangesTest, AreNamedAndCutRightly) {
    const std::string path = "/media/models/halo-one.glb";
    const std::string bytes = get(path)->body;
    const std::size_t size = bytes.size();
    const std::string total = "/" + std::to_string(size), end = std::to_string(size - 1);
    ASSERT_GT(size, 1000U);
    const std::string etag = get(path)->get_header_value("ETag");

    const struct {
        std::string range;
        int status;
        std::string contentRange;
        std::string body;
        std::string ifRange = {};
    } cases[] = {
        {"bytes=0-99", 206, "bytes 0-99" + total, bytes.substr(0, 100)},
        {"bytes=7-7", 206, "bytes 7-7" + total, bytes.substr(7, 1)},
        {"bytes=100-", 206, "bytes 100-" + end + total, bytes.substr(100)},
        {"bytes=0-", 206, "bytes 0-" + end + total, bytes},
        {"bytes=10-999999999", 206, "bytes 10-" + end + total, bytes.substr(10)},
        {"bytes=-50", 206, "bytes " + std::to_string(size - 50) + "-" + end + total, bytes.substr(size - 50)},
        {"bytes=-999999999", 206, "bytes 0-" + end + total, bytes},
        {"bytes=" + std::to_string(size) + "-", 416, "bytes *" + total, ""},
        {"bytes=-0", 416, "bytes *" + total, ""},
        {"bytes=0-1,5-6", 200, "", bytes},
        {"bytes=0-99", 206, "bytes 0-99" + total, bytes.substr(0, 100), etag},
        {"bytes=0-99", 200, "", bytes, "\"another\""},
    };
    for (const auto& [range, status, contentRange, body, ifRange] : cases) {
        SCOPED_TRACE(range + " " + ifRange);
        httplib::Headers headers = {{"Range", range}};
        if (!ifRange.empty()) headers.emplace("If-Range", ifRange);
        auto result = get(path, headers);
        ASSERT_TRUE(result);
        EXPECT_EQ(result->status, status);
        EXPECT_EQ(result->get_header_value("Content-Range"), contentRange);
        EXPECT_EQ(result->get_header_value("Content-Length"), std::to_string(body.size()));
        EXPECT_TRUE(result->body == body);
    }

    auto head = client().Head(path, {{"Range", "bytes=0-9"}});
    ASSERT_TRUE(head);
    EXPECT_EQ(head->get_header_value("Content-Length"), std::to_string(size)) << "ranges are for GET alone";
    auto missing = get("/media/models/nobody.glb", {{"Range", "bytes=2-3"}});
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->status, 404);
    EXPECT_GT(missing->body.size(), 2U) << "an error is never cut";
}

}  // namespace
}  // namespace flarebox::examples
