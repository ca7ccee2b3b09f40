#include "Service.h"

#include "Answer.h"
#include "ByteRange.h"
#include "Gallery.h"
#include "Listener.h"
#include "Media.h"
#include "Operations.h"
#include "Recorder.h"
#include "Validation.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <optional>
#include <utility>

namespace flarebox::examples {
namespace {

// The HTTP library mixes what it knows of the connection into the headers.
bool isSent(const std::string& header) {
    constexpr std::array<std::string_view, 4> invented = {"REMOTE_ADDR", "REMOTE_PORT", "LOCAL_ADDR", "LOCAL_PORT"};
    return std::find(invented.begin(), invented.end(), header) == invented.end();
}

ReceivedRequest received(const httplib::Request& request) {
    ReceivedRequest result;
    std::string_view target = request.target;
    auto question = target.find('?');
    result.method = request.method;
    result.path = target.substr(0, question);
    if (question != target.npos) result.query = target.substr(question + 1);
    for (const auto& [name, value] : request.headers) {
        if (isSent(name)) result.headers.emplace_back(name, value);
    }
    result.body = request.body;
    result.connection = Listener::currentConnection();
    return result;
}

void apply(const Behaviour& behaviour, Answer& answer) {
    if (behaviour.status) answer.status = *behaviour.status;
    if (behaviour.body) answer.body = *behaviour.body;
    if (behaviour.contentType) answer.contentType = *behaviour.contentType;
    answer.headers.insert(answer.headers.end(), behaviour.headers.begin(), behaviour.headers.end());
}

void write(const Answer& answer, httplib::Response& response) {
    response.status = answer.status;
    for (const auto& [name, value] : answer.headers) response.set_header(name, value);
    if (!answer.body.empty()) response.set_content(answer.body, answer.contentType);
}

void writeHalf(const Answer& answer, httplib::Response& response) {
    response.status = answer.status;
    auto giveHalf = [body = answer.body](std::size_t, std::size_t, httplib::DataSink& sink) {
        sink.write(body.data(), body.size() / 2);
        return false;
    };
    response.set_content_provider(answer.body.size(), answer.contentType, giveHalf);
}

}  // namespace

class Service::Implementation {
public:
    bool start(const Options& options);
    void stop();

    int port() const { return port_; }
    std::string baseURL() const { return port_ == 0 ? std::string() : "http://" + host_ + ":" + std::to_string(port_); }

    Recorder recorder;

private:
    bool handle(const httplib::Request& request, httplib::Response& response);
    Answer answer(ReceivedRequest& request);
    Answer answerFile(ReceivedRequest& request);

    Operations operations_;
    Gallery gallery_;
    Media media_;
    std::string host_, publicURL_;
    std::atomic<int> port_{0};
    std::unique_ptr<Listener> listener_;
};

bool Service::Implementation::start(const Options& options) {
    stop();
    gallery_.open();
    host_ = options.host;
    publicURL_ = options.publicURL;
    auto handler = [this](const auto& request, auto& response) { return handle(request, response); };
    listener_ = std::make_unique<Listener>(handler);
    if (!listener_->start(options.host, options.port)) {
        listener_.reset();
        return false;
    }
    port_ = listener_->port();
    return true;
}

void Service::Implementation::stop() {
    gallery_.close();
    listener_.reset();
    port_ = 0;
}

bool Service::Implementation::handle(const httplib::Request& httpRequest, httplib::Response& response) {
    ReceivedRequest request = received(httpRequest);
    Behaviour behaviour = recorder.takeBehaviour(request.path);
    Answer normal = answer(request);
    recorder.record(std::move(request));

    if (behaviour.ending == Behaviour::Ending::Hang) {
        Listener::waitForEndOfConnection();
        return false;
    }
    if (behaviour.delay.count() > 0 && !Listener::connectionLastsFor(behaviour.delay)) return false;

    apply(behaviour, normal);
    if (behaviour.ending == Behaviour::Ending::Cut) {
        writeHalf(normal, response);
    } else {
        write(normal, response);
    }
    return true;
}

Answer Service::Implementation::answer(ReceivedRequest& request) {
    const Operation* operation = operationAt(request.path);
    if (!operation) return answerFile(request);
    if (request.method != operation->method) {
        request.complaint = request.method + " on a path for " + std::string(operation->method);
        Answer refusal = errorAnswer(405, request.complaint);
        refusal.headers.emplace_back("Allow", operation->method);
        return refusal;
    }
    if (auto complaint = complaintAbout(request, *operation)) {
        request.complaint = *complaint;
        return errorAnswer(400, *complaint);
    }
    return operations_.answer(request, operation->name, publicURL_.empty() ? baseURL() : publicURL_, media_);
}

Answer Service::Implementation::answerFile(ReceivedRequest& request) {
    const auto picture = gallery_.pictureAt(request.path);
    const auto file = picture ? picture : media_.fileAt(request.path);
    if (!file) {
        request.complaint = "nothing at " + request.path;
        return errorAnswer(404, request.complaint);
    }
    if (request.method != "GET" && request.method != "HEAD") {
        request.complaint = request.method + " on a file";
        Answer refusal = errorAnswer(405, request.complaint);
        refusal.headers.emplace_back("Allow", "GET, HEAD");
        return refusal;
    }

    Answer result{200, file->bytes, file->contentType};
    if (request.header("If-None-Match") == file->etag) result = {304, "", file->contentType};
    result.headers = {{"ETag", file->etag}, {"Cache-Control", "public, max-age=3600"}, {"Accept-Ranges", "bytes"}};
    applyRange(request, file->etag, result);
    return result;
}

Service::Service() : implementation_(std::make_unique<Implementation>()) {}

Service::~Service() {
    stop();
}

bool Service::start(const Options& options) {
    return implementation_->start(options);
}

void Service::stop() {
    implementation_->stop();
}

int Service::port() const {
    return implementation_->port();
}

std::string Service::baseURL() const {
    return implementation_->baseURL();
}

std::vector<ReceivedRequest> Service::requests() const {
    return implementation_->recorder.requests();
}

std::vector<ReceivedRequest> Service::requests(std::string_view path) const {
    return implementation_->recorder.requests(path);
}

bool Service::waitForRequests(std::string_view path, std::size_t count, std::chrono::milliseconds time) const {
    return implementation_->recorder.waitForRequests(path, count, time);
}

void Service::forgetRequests() {
    implementation_->recorder.forgetRequests();
}

void Service::behave(std::string_view path, Behaviour behaviour) {
    implementation_->recorder.behave(path, std::move(behaviour));
}

void Service::behaveNormally() {
    implementation_->recorder.behaveNormally();
}

}  // namespace flarebox::examples
