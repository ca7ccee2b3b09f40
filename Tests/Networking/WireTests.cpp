// What goes over the wire, and what comes back from a server that behaves.

#include "NetworkTest.h"
#include "ScriptedServer.h"

#include <Networking/AFHTTPSessionManager.h>

#include <gmock/gmock.h>

namespace flarebox::testing {

namespace {

using ::testing::ElementsAre;
using ::testing::StartsWith;
using Connection = ScriptedServer::Connection;

class WireTest : public NetworkTest {
protected:
    ScriptedServer server_{answering([](Connection& connection, auto&) { connection.answerJSON("[]"); })};

    std::string host() const { return "Host: 127.0.0.1:" + std::to_string(server_.port()); }
};

}  // namespace

TEST_F(WireTest, HeadersAreExactlyThoseOfTheCallerAndTheNecessaryOnes) {
    auto serializer = AFJSONRequestSerializer::serializer();
    auto listing = serializer->requestWithMethod("GET", server_.url("/api//list/"), NSDictionary{{"limit", 20}});
    listing->setValueForHTTPHeaderField("g", "Game-UID");
    listing->setValueForHTTPHeaderField("*/*", "accept");
    listing->setValueForHTTPHeaderField("application/json", "Accept");
    load(listing);

    auto posting = serializer->requestWithMethod("POST", server_.url("/a/../b"), NSDictionary{{"limit", 20}});
    posting->setValueForHTTPHeaderField("", "Game-Version");
    posting->setValueForHTTPHeaderField("5", "content-length");
    posting->setValueForHTTPHeaderField("chunked", "Transfer-Encoding");
    load(posting);
    load(serializer->requestWithMethod("POST", server_.url("/none"), nullptr));

    auto large = get(server_.url("/large"));
    large->setHTTPMethod("PUT");
    large->setHTTPBody(NSData::dataWithString(std::string(2'000'000, 'x')));
    load(large);

    auto requests = server_.requests();
    ASSERT_EQ(requests.size(), 4u);
    EXPECT_EQ(firstLine(requests[0]), "GET /api//list/?limit=20 HTTP/1.1");
    EXPECT_THAT(headerLines(requests[0]), ElementsAre("Accept-Encoding: gzip", "Game-UID: g", host(),
                                                      StartsWith("User-Agent: Flarebox/"), "accept: application/json"));
    EXPECT_EQ(firstLine(requests[1]), "POST /a/../b HTTP/1.1");
    EXPECT_THAT(headerLines(requests[1]),
                ElementsAre("Accept-Encoding: gzip", "Content-Length: 12", "Content-Type: application/json",
                            ::testing::MatchesRegex("Game-Version: *"), host(), StartsWith("User-Agent: ")));
    EXPECT_EQ(bodyOf(requests[1]), R"({"limit":20})");
    EXPECT_THAT(headerLines(requests[2]),
                ElementsAre("Accept-Encoding: gzip", "Content-Length: 0", host(), StartsWith("User-Agent: ")));
    EXPECT_EQ(firstLine(requests[3]), "PUT /large HTTP/1.1");
    EXPECT_THAT(headerLines(requests[3]),
                ElementsAre("Accept-Encoding: gzip", "Content-Length: 2000000", host(), StartsWith("User-Agent: ")));
    EXPECT_EQ(bodyOf(requests[3]).size(), 2'000'000u);
}

TEST_F(WireTest, NothingIsSentWithCharactersThatCouldSmuggleAHeader) {
    const std::pair<std::string, std::string> fields[] = {
        {"Game-UID", "g\r\nX-Evil: 1"},
        {"Game-UID", "g\n"},
        {"Game-UID", std::string("g\0h", 3)},
        {"Game-UID", "\x7F"},
        {"Game-UID: 1\r\nX-Evil", "1"},
        {"Game UID", "1"},
        {"", "1"},
    };
    for (auto& [name, value] : fields) {
        auto request = get(server_.url());
        request->setValueForHTTPHeaderField(value, name);
        EXPECT_EQ(load(request).code(), NSURLErrorBadURL) << name;
    }
    auto request = get(server_.url());
    request->setHTTPMethod("GET / HTTP/1.1\r\nX-Evil: 1\r\n\r\nGET");
    EXPECT_EQ(load(request).code(), NSURLErrorBadURL);
    EXPECT_TRUE(server_.requests().empty());

    request = get(server_.url());
    request->setValueForHTTPHeaderField("tab\tand \xC3\xA9", "Game-UID");
    EXPECT_EQ(load(request).code(), 0);
}

TEST_F(WireTest, AnswersAreDecodedAndTheirHeadIsKept) {
    ScriptedServer server(answering([](Connection& connection, const std::string& request) {
        if (firstLine(request).find("/gzip") != std::string::npos) {
            auto body = NSData::dataWithBase64EncodedString(
                "H4sIAAAAAAACA6tWKkhMzk5NUbIqKSpNrQUAieC13A8AAAA=");  // {"packed":true}
            connection.answer("200 OK", "Content-Encoding: gzip\r\nContent-Type: text/json\r\n", body.text());
        } else if (firstLine(request).find("/chunks") != std::string::npos) {
            connection.send(
                "HTTP/1.1 200 OK\r\nContent-Type: text/javascript\r\nTransfer-Encoding: chunked\r\n\r\n"
                "3\r\n[1,\r\n2\r\n2]\r\n0\r\n\r\n");
        } else if (firstLine(request).find("/empty") != std::string::npos) {
            connection.send("HTTP/1.1 204 No Content\r\n\r\n");
        } else {
            connection.answer("201 Created",
                              "Content-Type: Application/JSON; charset=utf-8\r\nVia: a\r\nvia: b\r\nServer:  x \r\n",
                              R"({"null":null,"big":18446744073709551615})");
        }
    }));
    auto plain = load(server.url("/plain?x"));
    ASSERT_TRUE(plain.response);
    EXPECT_EQ(plain.response->statusCode(), 201);
    EXPECT_EQ(plain.response->MIMEType(), "application/json");
    EXPECT_EQ(plain.response->URL().absoluteString(), server.url("/plain?x"));
    EXPECT_EQ(plain.response->valueForHTTPHeaderField("VIA"), "a, b");
    EXPECT_EQ(plain.response->valueForHTTPHeaderField("server"), "x");
    EXPECT_TRUE(plain.object.as<NSDictionary>().objectForKey("null").isNull());
    EXPECT_EQ(plain.object.as<NSDictionary>().objectForKey("big").as<NSNumber>().unsignedIntegerValue(),
              18446744073709551615u);

    EXPECT_EQ(load(server.url("/gzip")).object, Value(NSDictionary{{"packed", true}}));
    EXPECT_EQ(load(server.url("/chunks")).object, Value(NSArray{1, 2}));
    auto empty = load(server.url("/empty"));
    EXPECT_EQ(empty.response->statusCode(), 204);
    EXPECT_TRUE(empty.object.isAbsent());
    EXPECT_EQ(empty.code(), 0);
}

TEST_F(WireTest, RedirectsAreFollowedFiveTimesAndKeepToHTTP) {
    ScriptedServer server(answering([](Connection& connection, const std::string& request) {
        std::string path = firstLine(request);
        path = path.substr(path.find('/'));
        if (path.starts_with("/file")) {
            connection.answer("302 Found", "Location: file:///etc/passwd\r\n", "");
        } else if (path.starts_with("/end")) {
            connection.answerJSON(firstLine(request).starts_with("GET") ? "[\"got\"]" : "[\"posted\"]");
        } else {
            int left = std::stoi(path.substr(1));
            std::string next = left > 0 ? "/" + std::to_string(left - 1) : "/end";
            connection.answer("302 Found", "Location: " + next + "\r\n", "a body that nobody reads");
        }
    }));
    auto followed = load(server.url("/4"));
    EXPECT_EQ(followed.object, Value(NSArray{"got"}));
    EXPECT_EQ(followed.response->URL().absoluteString(), server.url("/end"));
    EXPECT_FALSE(followed.response->valueForHTTPHeaderField("Location"));

    EXPECT_EQ(load(server.url("/5")).code(), NSURLErrorHTTPTooManyRedirects);
    EXPECT_EQ(load(server.url("/file")).code(), NSURLErrorUnsupportedURL);

    auto post = get(server.url("/0"));
    post->setHTTPMethod("POST");
    EXPECT_EQ(load(post).object, Value(NSArray{"got"}));
}

TEST_F(WireTest, ConnectionsAreReusedAndBounded) {
    for (int count = 0; count < 20; ++count) EXPECT_EQ(load(server_.url()).code(), 0);
    EXPECT_EQ(server_.acceptedConnections(), 1);

    std::vector<Outcome> outcomes(200);
    for (auto& outcome : outcomes) manager_->dataTaskWithRequest(get(server_.url()), outcome.recorder())->resume();
    EXPECT_FALSE(MainQueue::shared().isIdle());
    EXPECT_TRUE(pumpUntilIdle());
    for (auto& outcome : outcomes) {
        EXPECT_EQ(outcome.calls, 1);
        EXPECT_EQ(outcome.code(), 0);
    }
    EXPECT_LE(server_.acceptedConnections(), 6);
    EXPECT_EQ(server_.requests().size(), 220u);
}

// The server closes after its answer without saying so: the next request finds a dead connection and must not fail for
// it.
TEST_F(WireTest, AConnectionThatDiedWhileIdleIsReplaced) {
    ScriptedServer server([](Connection& connection) {
        if (connection.readRequest()) connection.answerJSON("[]");
    });
    for (int count = 0; count < 10; ++count) EXPECT_EQ(load(server.url()).code(), 0);
}

TEST_F(WireTest, TheEnvironmentsProxyIsNeverAskedForTheOwnMachine) {
    for (const char* name : {"http_proxy", "all_proxy"}) setenv(name, "http://192.0.2.1:1", 1);
    setenv("no_proxy", "example.com", 1);
    EXPECT_EQ(load(server_.url()).code(), 0);
    for (const char* name : {"http_proxy", "all_proxy", "no_proxy"}) unsetenv(name);
}

TEST(RequestSerializer, WritesQueriesByTheRules) {
    const std::pair<Value, const char*> cases[] = {
        {NSDictionary{{"limit", 20}}, "limit=20"},
        {NSDictionary{{"b", 1}, {"a", true}, {"c", 1.5}}, "a=1&b=1&c=1.5"},
        {NSDictionary{{"q", "a b&c=d/?é+"}}, "q=a%20b%26c%3Dd/?%C3%A9%2B"},
        {NSDictionary{{"a", NSDictionary{{"c", 2}, {"b", 1}}}}, "a%5Bb%5D=1&a%5Bc%5D=2"},
        {NSDictionary{{"a", NSArray{1, NSDictionary{{"x", 2}}}}}, "a%5B%5D=1&a%5B%5D%5Bx%5D=2"},
        {NSDictionary{{"none", Value::null()}, {"empty", ""}}, "empty=&none"},
        {NSDictionary{}, ""},
    };
    for (auto& [parameters, query] : cases) EXPECT_EQ(AFJSONRequestSerializer::queryString(parameters), query);
}

TEST(RequestSerializer, PlacesParametersByMethodAndRefusesWhatCannotBeSent) {
    auto serializer = AFJSONRequestSerializer::serializer();
    const NSDictionary one{{"a", 1}};
    auto address = [&](const char* method, const char* url, const Value& parameters) {
        return serializer->requestWithMethod(method, url, parameters)->URL().absoluteString();
    };
    EXPECT_EQ(address("GET", "http://h/p", nullptr), "http://h/p");
    EXPECT_EQ(address("GET", "http://h/p", NSDictionary{}), "http://h/p");
    EXPECT_EQ(address("delete", "http://h/p?x=y", one), "http://h/p?x=y&a=1");
    EXPECT_EQ(address("HEAD", "http://h/p#part", one), "http://h/p?a=1#part");
    EXPECT_EQ(address("POST", "/sessions/", one), "/sessions/");

    Ref<NSError> error;
    EXPECT_FALSE(serializer->requestWithMethod("GET", "http://h/a b", one, &error));
    EXPECT_EQ(error->code(), NSURLErrorBadURL);
    error = nullptr;
    EXPECT_FALSE(serializer->requestWithMethod("POST", "http://h/", NSDictionary{{"d", NSDate::date()}}, &error));
    EXPECT_EQ(error->code(), NSPropertyListReadCorruptError);
    EXPECT_FALSE(serializer->requestWithMethod("GET", "", nullptr, nullptr));
}

}  // namespace flarebox::testing
