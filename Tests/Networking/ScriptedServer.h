#pragma once

#include <atomic>
#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <vector>

namespace flarebox::testing {

class ServerIdentity;

/// A server on a loopback port that does with its connections exactly what a test says, wrong things above all.
class ScriptedServer {
public:
    /// One accepted connection, used on a thread of its own.
    class Connection {
    public:
        virtual ~Connection() = default;
        /// The next request, head and body; none when the client has closed or the server ends.
        std::optional<std::string> readRequest();
        /// False when the client is gone.
        bool send(std::string_view bytes);
        /// An answer with the right Content-Length. `fields` are whole lines.
        bool answer(std::string_view status, std::string_view fields, std::string_view body);
        bool answerJSON(std::string_view body) { return answer("200 OK", "Content-Type: application/json\r\n", body); }
        /// Says nothing until the client closes or the server ends.
        void hang();
        /// Waits that long; false when the server ends meanwhile.
        bool pause(double seconds);
        /// Says that there is nothing more to come.
        void finish();
        /// Breaks the connection off as a machine does that has forgotten it: the client is told of no end, but of an
        /// error.
        void reset();
        /// How many connections were accepted before this one.
        int number() const { return number_; }

    protected:
        friend class ScriptedServer;
        virtual int read(char* bytes, int length) = 0;
        virtual int write(const char* bytes, int length) = 0;

        ScriptedServer* server_ = nullptr;
        int descriptor_ = -1;
        int number_ = 0;
        std::string unread_;
    };
    using Script = std::function<void(Connection&)>;

    /// Serves from now on, on a free port unless one is given. With an identity the connections are TLS.
    explicit ScriptedServer(Script script, const ServerIdentity* identity = nullptr, int port = 0);
    /// Ends every connection and joins every thread.
    ~ScriptedServer();

    int port() const { return port_; }
    std::string url(std::string_view path = "/") const;
    int acceptedConnections() const { return accepted_; }
    /// The requests read so far.
    std::vector<std::string> requests() const;

private:
    void acceptConnections();
    void serve(int socket, int number);
    void record(const std::string& request);

    Script script_;
    const ServerIdentity* identity_;
    int listener_ = -1;
    int port_ = 0;
    std::atomic<int> accepted_ = 0;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    bool stopping_ = false;
    std::vector<int> sockets_;
    std::vector<std::string> requests_;
    std::vector<std::thread> threads_;
    std::thread acceptor_;
};

/// A script that answers every request of a connection with what `answer` does; the connection stays open.
ScriptedServer::Script answering(std::function<void(ScriptedServer::Connection&, const std::string& request)> answer);

/// The lines of a request's head without its first one, sorted.
std::vector<std::string> headerLines(const std::string& request);
std::string bodyOf(const std::string& request);
std::string firstLine(const std::string& request);

}  // namespace flarebox::testing
