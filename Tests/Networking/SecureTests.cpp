// TLS.

#include "NetworkTest.h"
#include "ScriptedServer.h"
#include "ServerIdentity.h"

#include <vector>

namespace flarebox::testing {

namespace {

using Connection = ScriptedServer::Connection;

class SecureTest : public NetworkTest {
protected:
    ServerIdentity identity_;
};

}  // namespace

TEST_F(SecureTest, OnlyTrustedServersAreTalkedTo) {
    ScriptedServer server(answering([](Connection& connection, auto&) { connection.answerJSON("[1]"); }), &identity_);
    auto refused = load(server.url());
    EXPECT_EQ(refused.code(), NSURLErrorServerCertificateUntrusted);
    EXPECT_TRUE(server.requests().empty());

    manager_->setCertificateAuthorityFile(identity_.certificateFile());
    EXPECT_EQ(load(server.url()).object, Value(NSArray{1}));
    EXPECT_EQ(identity_.offeredProtocols(), "h2,http/1.1");

    // Trusted, but for another name; and trust given to one manager is not given to the next.
    EXPECT_EQ(load("https://localhost:" + std::to_string(server.port())).code(), NSURLErrorServerCertificateUntrusted);
    manager_ = AFURLSessionManager::manager();
    EXPECT_EQ(load(server.url()).code(), NSURLErrorServerCertificateUntrusted);
}

TEST_F(SecureTest, APinnedKeyIsAskedOfEveryConnection) {
    ScriptedServer server(answering([](Connection& connection, auto&) { connection.answerJSON("[1]"); }), &identity_);
    manager_->setCertificateAuthorityFile(identity_.certificateFile());
    // A connection that was made without a pin is left alone by those with one.
    EXPECT_EQ(load(server.url()).code(), 0);

    const std::string other = ServerIdentity().publicKeyHash();
    const struct {
        std::vector<std::string> pins;
        int code;
    } cases[] = {
        {{other}, NSURLErrorServerCertificateUntrusted}, {{identity_.publicKeyHash()}, 0},
        {{other, identity_.publicKeyHash()}, 0},         {{"no hash"}, NSURLErrorServerCertificateUntrusted},
        {{""}, NSURLErrorServerCertificateUntrusted},    {{}, 0},
    };
    for (const auto& [pins, code] : cases) {
        manager_->setPinnedPublicKeys(pins);
        EXPECT_EQ(load(server.url()).code(), code) << ::testing::PrintToString(pins);
    }
    EXPECT_EQ(server.requests().size(), 4u);

    ScriptedServer open(answering([](Connection& connection, auto&) { connection.answerJSON("[1]"); }));
    manager_->setPinnedPublicKeys(std::vector{identity_.publicKeyHash()});
    EXPECT_EQ(load(open.url()).code(), NSURLErrorSecureConnectionFailed);
    EXPECT_TRUE(open.requests().empty());
}

TEST_F(SecureTest, AServerThatSpeaksNoTLSGivesNoConnection) {
    ScriptedServer server([](Connection& connection) {
        connection.send("HTTP/1.1 400 Bad Request\r\n\r\n");
        connection.hang();
    });
    EXPECT_EQ(load("https://127.0.0.1:" + std::to_string(server.port())).code(), NSURLErrorSecureConnectionFailed);
}

TEST_F(SecureTest, NoRedirectLeadsBackToTheOpenWire) {
    ScriptedServer open(answering([](Connection& connection, auto&) { connection.answerJSON("[1]"); }));
    std::string onward = open.url();
    ScriptedServer secure(answering([&](Connection& connection, auto&) {
                              connection.answer("302 Found", "Location: " + onward + "\r\n", "");
                          }),
                          &identity_);
    ScriptedServer first(answering([&](Connection& connection, auto&) {
        connection.answer("302 Found", "Location: " + secure.url() + "\r\n", "");
    }));
    manager_->setCertificateAuthorityFile(identity_.certificateFile());
    for (const auto& url : {secure.url(), first.url()}) {
        auto outcome = load(url);
        EXPECT_EQ(outcome.code(), NSURLErrorUnsupportedURL);
        EXPECT_EQ(outcome.error->localizedDescription(), "The server redirected to an address that is not secure.");
    }
    EXPECT_TRUE(open.requests().empty());
}

}  // namespace flarebox::testing
