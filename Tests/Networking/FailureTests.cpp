// Servers that misbehave, and how it is reported.

#include "NetworkTest.h"
#include "ScriptedServer.h"

#include <Foundation/Clock.h>
#include <Networking/NetworkError.h>
#include <Networking/Transport.h>

#include <gmock/gmock.h>

namespace flarebox::testing {

namespace {

using Connection = ScriptedServer::Connection;

class FailureTest : public NetworkTest {
protected:
    Outcome loadFrom(ScriptedServer::Script script, double timeout = 0) {
        ScriptedServer server(std::move(script));
        auto request = get(server.url("/path"));
        request->setTimeoutInterval(timeout);
        return load(request);
    }
    /// From a server that answers its first request with these very bytes and closes.
    Outcome loadBytes(const std::string& bytes) {
        return loadFrom([bytes](Connection& connection) {
            if (connection.readRequest()) connection.send(bytes);
        });
    }
};

int portWithoutServer() {
    ScriptedServer server([](Connection&) {});
    return server.port();
}

}  // namespace

TEST_F(FailureTest, AddressesThatCannotBeLoaded) {
    const std::pair<std::string, int> cases[] = {
        {"/sessions/", NSURLErrorUnsupportedURL},
        {"ftp://127.0.0.1/", NSURLErrorUnsupportedURL},
        {"file:///etc/passwd", NSURLErrorUnsupportedURL},
        {"http:///nowhere", NSURLErrorBadURL},
        {"not a link", NSURLErrorBadURL},
        {"http://127.0.0.1:" + std::to_string(portWithoutServer()) + "/", NSURLErrorCannotConnectToHost},
        // No stream can be opened to a group of hosts, whatever networks there are.
        {"http://224.0.0.1:9/", NSURLErrorNotConnectedToInternet},
    };
    for (auto& [url, code] : cases) {
        auto outcome = load(url);
        EXPECT_EQ(outcome.code(), code) << url;
        ASSERT_TRUE(outcome.error);
        EXPECT_EQ(outcome.error->domain(), NSURLErrorDomain);
        EXPECT_GT(outcome.error->localizedDescription().size(), 20u) << url;
        EXPECT_EQ(outcome.error->userInfo().objectForKey(NSURLErrorFailingURLStringErrorKey),
                  Value(url == "not a link" ? "" : url));
        EXPECT_FALSE(outcome.response);
    }
    EXPECT_EQ(load(Ref<NSURLRequest>()).code(), NSURLErrorBadURL);
}

TEST_F(FailureTest, AnswersThatAreCutOrNoHTTP) {
    const std::pair<std::string, int> cases[] = {
        {"", NSURLErrorNetworkConnectionLost},
        {"HTTP/1.1 200 OK\r\nContent-Le", NSURLErrorNetworkConnectionLost},
        {"HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 100\r\n\r\n[1,",
         NSURLErrorNetworkConnectionLost},
        {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n5\r\n[1", NSURLErrorNetworkConnectionLost},
        {"SSH-2.0-server\r\n\r\n", NSURLErrorBadServerResponse},
        {"HTTP/1.1 200 OK\r\nContent-Encoding: gzip\r\nContent-Length: 7\r\n\r\nno gzip",
         NSURLErrorCannotDecodeContentData},
        {"HTTP/1.1 200 OK\r\n" + std::string(300'000, 'h') + ": 1\r\n", NSURLErrorBadServerResponse},
    };
    for (auto& [bytes, code] : cases) {
        auto outcome = loadBytes(bytes);
        EXPECT_EQ(outcome.code(), code) << bytes.substr(0, 100);
        EXPECT_EQ(outcome.calls, 1);
        EXPECT_TRUE(outcome.object.isAbsent());
    }
}

TEST_F(FailureTest, HeadersWithoutEndAreNotCollected) {
    for (bool oneName : {true, false}) {
        auto outcome = loadFrom([&](Connection& connection) {
            connection.readRequest();
            connection.send("HTTP/1.1 200 OK\r\n");
            int count = 0;
            while (connection.send("X-More" + std::to_string(oneName ? 0 : ++count) + ": and more\r\n")) {
            }
        });
        EXPECT_EQ(outcome.code(), NSURLErrorBadServerResponse);
    }
}

TEST_F(FailureTest, AnswersThatAreNotAcceptable) {
    struct Case {
        const char *status, *type, *body;
        const char* domain;
        int code;
        const char* description;
    };
    const Case cases[] = {
        {"404 Not Found", "application/json", "{}", NSURLErrorDomain, -1011, "Request failed: not found (404)"},
        {"500 Oops", "text/html", "<p>", NSURLErrorDomain, -1011, "Request failed: internal server error (500)"},
        {"599 Odd", "application/json", "", NSURLErrorDomain, -1011, "Request failed: server error (599)"},
        {"304 Not Modified", "", "", NSURLErrorDomain, -1011, "Request failed: not modified (304)"},
        {"200 OK", "text/html; charset=x", "<p>", NSURLErrorDomain, -1016,
         "Request failed: unacceptable content-type: text/html"},
        {"200 OK", "", "[]", NSURLErrorDomain, -1016, "Request failed: unacceptable content-type: none"},
        {"200 OK", "application/json", "[1,", NSCocoaErrorDomain, 3840, nullptr},
        {"200 OK", "application/json", "\xFF\xFE", NSCocoaErrorDomain, 3840, nullptr},
    };
    for (auto& test : cases) {
        auto outcome = loadFrom(answering([&](Connection& connection, auto&) {
            std::string type = *test.type ? std::string("Content-Type: ") + test.type + "\r\n" : std::string();
            connection.answer(test.status, type, test.body);
        }));
        ASSERT_TRUE(outcome.error) << test.status;
        EXPECT_EQ(outcome.error->domain(), test.domain) << test.status;
        EXPECT_EQ(outcome.code(), test.code) << test.status;
        if (test.description) {
            EXPECT_EQ(outcome.error->localizedDescription(), test.description);
        }
        ASSERT_TRUE(outcome.response) << test.status;
        EXPECT_EQ(outcome.response->statusCode(), std::atoi(test.status));
        EXPECT_TRUE(outcome.object.isAbsent());
    }
}

TEST_F(FailureTest, AnswersAreBoundedInSize) {
    manager_->setMaximumResponseLength(1000);
    const std::string largest = "\"" + std::string(996, 'x') + "\"";
    auto sized = [](std::size_t announced, const std::string& body) {
        return "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: " + std::to_string(announced) +
               "\r\n\r\n" + body;
    };
    EXPECT_EQ(loadBytes(sized(1000, "[" + largest + "]")).code(), 0);
    EXPECT_EQ(loadBytes(sized(1001, "[" + largest + " ]")).code(), NSURLErrorDataLengthExceedsMaximum);

    // Small on the wire, 100,000 blanks between two brackets when unpacked.
    auto packed = NSData::dataWithBase64EncodedString(
        "H4sIAAAAAAACA+3BQREAAAwCoCrr5a1/DWv4AHIAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAA"
        "AAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAAADArC+fCYOGooYB"
        "AA==");
    EXPECT_LT(packed.length(), 1000u);
    EXPECT_EQ(loadFrom(answering([&](Connection& connection, auto&) {
                  connection.answer("200 OK", "Content-Encoding: gzip\r\nContent-Type: application/json\r\n",
                                    packed.text());
              })).code(),
              NSURLErrorDataLengthExceedsMaximum);

    // Refused by what it announces: the body never comes.
    auto announced = loadFrom([&](Connection& connection) {
        connection.readRequest();
        connection.send(sized(1'000'000'000, ""));
        connection.hang();
    });
    EXPECT_EQ(announced.code(), NSURLErrorDataLengthExceedsMaximum);

    // Announces nothing and does not stop.
    for (const char* status : {"200 OK", "302 Found\r\nLocation: /next"}) {
        auto endless = loadFrom([&](Connection& connection) {
            connection.readRequest();
            connection.send("HTTP/1.1 " + std::string(status) +
                            "\r\nContent-Type: application/json\r\nTransfer-Encoding: chunked\r\n\r\n");
            while (connection.send("64\r\n" + std::string(100, ' ') + "\r\n")) {
            }
        });
        EXPECT_EQ(endless.code(), NSURLErrorDataLengthExceedsMaximum) << status;
    }
}

TEST_F(FailureTest, OnlySilenceTimesOut) {
    const double start = Clock::real().uptime();
    EXPECT_EQ(loadFrom([](Connection& connection) { connection.hang(); }, 0.3).code(), NSURLErrorTimedOut);
    EXPECT_GE(Clock::real().uptime() - start, 0.3);

    // Many small pieces take several times as long as the time-out, none of them longer.
    auto drip = loadFrom(
        [](Connection& connection) {
            connection.readRequest();
            connection.send("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 32\r\n\r\n[");
            for (int piece = 0; piece < 30 && connection.pause(0.1); ++piece) connection.send(" ");
            connection.send("]");
        },
        2);
    EXPECT_EQ(drip.code(), 0);

    auto stalled = loadFrom(
        [](Connection& connection) {
            connection.readRequest();
            connection.send("HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 31\r\n\r\n[");
            connection.hang();
        },
        0.3);
    EXPECT_EQ(stalled.code(), NSURLErrorTimedOut);
    EXPECT_EQ(stalled.error->localizedDescription(), "The request timed out.");
}

// More requests than connections: the last ones wait longer than their time-out, but not in silence of the server's.
TEST_F(FailureTest, WaitingForAFreeConnectionIsNoSilence) {
    ScriptedServer server(answering([](Connection& connection, auto&) {
        connection.pause(0.5);
        connection.answerJSON("[]");
    }));
    std::vector<Outcome> outcomes(static_cast<std::size_t>(Transport::connectionsPerHost) * 5);
    for (auto& outcome : outcomes) {
        auto request = get(server.url());
        request->setTimeoutInterval(2);
        manager_->dataTaskWithRequest(request, outcome.recorder())->resume();
    }
    EXPECT_TRUE(pumpUntilIdle());
    for (auto& outcome : outcomes) EXPECT_EQ(outcome.code(), 0);
}

TEST_F(FailureTest, AServerThatHangsHoldsUpNoOther) {
    ScriptedServer hanging([](Connection& connection) { connection.hang(); });
    ScriptedServer good(answering([](Connection& connection, auto&) { connection.answerJSON("[]"); }));
    Outcome never;
    std::vector<Outcome> outcomes(50);
    for (auto& outcome : outcomes) {
        manager_->dataTaskWithRequest(get(hanging.url()), never.recorder())->resume();
        manager_->dataTaskWithRequest(get(good.url()), outcome.recorder())->resume();
    }
    for (auto& outcome : outcomes) EXPECT_TRUE(pumpUntil([&] { return outcome.calls == 1; }));
    EXPECT_EQ(never.calls, 0);
    EXPECT_LE(hanging.acceptedConnections(), Transport::connectionsPerHost);
}

// A server that says more than it announced: what is left over is no answer to the next request.
TEST_F(FailureTest, WhatIsLeftOnAConnectionAnswersNothing) {
    const std::string poison =
        "HTTP/1.1 200 OK\r\nContent-Type: application/json\r\nContent-Length: 8\r\n\r\n\"poison\"";
    for (const std::string& left : {std::string(8000, 'x'), "[3]" + poison + poison}) {
        ScriptedServer server(answering([&](Connection& connection, const std::string& request) {
            const bool isFirst = firstLine(request).find("/first") != std::string::npos;
            connection.answerJSON("[1]");
            if (isFirst) connection.send(left);
        }));
        for (const char* method : {"GET", "POST"}) {
            EXPECT_EQ(load(get(server.url("/first"))).code(), 0);
            // What is left over is sent once the answer's arrival has been confirmed, which takes 40 ms.
            EXPECT_TRUE(pumpUntil([end = Clock::real().uptime() + 0.1] { return Clock::real().uptime() > end; }));
            auto request = get(server.url("/second"));
            request->setHTTPMethod(method);
            const Outcome second = load(request);
            EXPECT_EQ(second.code(), 0) << method;
            EXPECT_EQ(second.object.as<NSArray>().count(), 1U) << method;
            EXPECT_EQ(second.object.as<NSArray>().objectAtIndex(0), Value(1)) << method;
        }
        EXPECT_EQ(server.requests().size(), 4U) << "nothing is asked twice";
    }
}

TEST_F(FailureTest, AFieldThatContinuesNothingReachesNoAnswerBefore) {
    // The address sanitizer sees it when the fields of the first answer are read after their end.
    for (const char* head : {"HTTP/1.1 200 OK\r\n a: b\r\n c: d\r\n\r\n", "HTTP/1.1 200 OK\r\na: b\r\n c\r\n d\r\n\r\n",
                             "HTTP/1.1 200 OK\r\nno field\r\n c\r\n d\r\n\r\n"}) {
        ScriptedServer server([&](Connection& connection) {
            while (auto request = connection.readRequest()) {
                if (firstLine(*request).find("/second") != std::string::npos) return void(connection.send(head));
                connection.answerJSON("[1]");
            }
        });
        for (const char* path : {"/first", "/second", "/first", "/second"}) load(get(server.url(path)));
        EXPECT_EQ(load(get(server.url("/first"))).code(), 0) << head;
    }
}

}  // namespace flarebox::testing
