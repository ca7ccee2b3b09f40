#include "ServerIdentity.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/ssl.h>
#include <openssl/x509v3.h>

#include <csignal>
#include <cstdio>
#include <mutex>
#include <stdexcept>

namespace flarebox::testing {

namespace {

class SecureConnection : public ScriptedServer::Connection {
public:
    explicit SecureConnection(SSL* ssl) : ssl_(ssl) {}
    ~SecureConnection() override {
        SSL_shutdown(ssl_);
        SSL_free(ssl_);
    }

protected:
    int read(char* bytes, int length) override { return SSL_read(ssl_, bytes, length); }
    int write(const char* bytes, int length) override { return SSL_write(ssl_, bytes, length); }

private:
    SSL* ssl_;
};

X509* selfSignedCertificate(EVP_PKEY* key) {
    X509* certificate = X509_new();
    X509_set_version(certificate, 2);
    ASN1_INTEGER_set(X509_get_serialNumber(certificate), 1);
    X509_gmtime_adj(X509_getm_notBefore(certificate), -3600);
    X509_gmtime_adj(X509_getm_notAfter(certificate), 24 * 3600);
    X509_set_pubkey(certificate, key);
    X509_NAME* name = X509_get_subject_name(certificate);
    X509_NAME_add_entry_by_txt(name, "CN", MBSTRING_ASC, reinterpret_cast<const unsigned char*>("127.0.0.1"), -1, -1,
                               0);
    X509_set_issuer_name(certificate, name);
    X509_EXTENSION* names = X509V3_EXT_conf_nid(nullptr, nullptr, NID_subject_alt_name, "IP:127.0.0.1");
    X509_add_ext(certificate, names, -1);
    X509_EXTENSION_free(names);
    X509_sign(certificate, key, EVP_sha256());
    return certificate;
}

std::string hashOf(const X509* certificate) {
    unsigned char* info = nullptr;
    const int length = i2d_X509_PUBKEY(X509_get_X509_PUBKEY(certificate), &info);
    unsigned char hash[32];
    EVP_Digest(info, static_cast<std::size_t>(length), hash, nullptr, EVP_sha256(), nullptr);
    OPENSSL_free(info);
    unsigned char text[45];
    EVP_EncodeBlock(text, hash, sizeof hash);
    return reinterpret_cast<const char*>(text);
}

std::string commaSeparated(const unsigned char* list, unsigned length) {
    std::string text;
    for (unsigned place = 0; place < length; place += list[place] + 1u) {
        if (!text.empty()) text += ',';
        text.append(reinterpret_cast<const char*>(list + place + 1), list[place]);
    }
    return text;
}

}  // namespace

struct ServerIdentity::Context {
    SSL_CTX* tls = SSL_CTX_new(TLS_server_method());
    std::mutex mutex;
    std::string offered;

    ~Context() { SSL_CTX_free(tls); }

    static int chooseProtocol(SSL*, const unsigned char** chosen, unsigned char* chosenLength,
                              const unsigned char* offered, unsigned offeredLength, void* self) {
        auto& context = *static_cast<Context*>(self);
        std::lock_guard lock(context.mutex);
        context.offered = commaSeparated(offered, offeredLength);
        static const unsigned char only[] = "http/1.1";
        *chosen = only;
        *chosenLength = sizeof only - 1;
        return SSL_TLSEXT_ERR_OK;
    }
};

ServerIdentity::ServerIdentity() : context_(std::make_unique<Context>()) {
    std::signal(SIGPIPE, SIG_IGN);
    EVP_PKEY* key = EVP_EC_gen("P-256");
    X509* certificate = selfSignedCertificate(key);
    publicKeyHash_ = hashOf(certificate);
    SSL_CTX_use_certificate(context_->tls, certificate);
    SSL_CTX_use_PrivateKey(context_->tls, key);
    SSL_CTX_set_alpn_select_cb(context_->tls, &Context::chooseProtocol, context_.get());

    std::FILE* file = std::fopen(certificateFile().c_str(), "w");
    if (!file) throw std::runtime_error("no temporary file for the certificate");
    PEM_write_X509(file, certificate);
    std::fclose(file);
    X509_free(certificate);
    EVP_PKEY_free(key);
}

ServerIdentity::~ServerIdentity() = default;

std::unique_ptr<ScriptedServer::Connection> ServerIdentity::secure(int socket) const {
    SSL* ssl = SSL_new(context_->tls);
    SSL_set_fd(ssl, socket);
    if (SSL_accept(ssl) == 1) return std::make_unique<SecureConnection>(ssl);
    SSL_free(ssl);
    return nullptr;
}

std::string ServerIdentity::offeredProtocols() const {
    std::lock_guard lock(context_->mutex);
    return context_->offered;
}

}  // namespace flarebox::testing
