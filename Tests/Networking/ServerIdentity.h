#pragma once

#include "ScriptedServer.h"

#include <Tests/Support/TemporaryDirectory.h>

#include <memory>
#include <string>

namespace flarebox::testing {

/// A certificate for 127.0.0.1 signed by nobody but itself, and the TLS that goes with it.
class ServerIdentity {
public:
    ServerIdentity();
    ~ServerIdentity();

    /// The TLS side of an accepted socket; null when the handshake fails.
    std::unique_ptr<ScriptedServer::Connection> secure(int socket) const;
    /// The certificate as a PEM file, for a client that shall trust it.
    std::string certificateFile() const { return directory_.path("certificate.pem"); }
    /// The base64 of its public key's SHA-256.
    const std::string& publicKeyHash() const { return publicKeyHash_; }
    /// Protocols that clients have offered, as "h2,http/1.1".
    std::string offeredProtocols() const;

private:
    struct Context;
    std::unique_ptr<Context> context_;
    TemporaryDirectory directory_;
    std::string publicKeyHash_;
};

}  // namespace flarebox::testing
