#include <Benchmarks/Wire/CurlClient.h>
#include <Foundation/Clock.h>

#include <utility>

namespace flarebox::benchmarks {

namespace {

bool succeeded(CURL* easy, CURLcode code) {
    long status = 0;
    curl_easy_getinfo(easy, CURLINFO_RESPONSE_CODE, &status);
    return code == CURLE_OK && status == 200;
}

std::size_t appendBytes(char* bytes, std::size_t size, std::size_t count, void* text) {
    static_cast<std::string*>(text)->append(bytes, size * count);
    return size * count;
}

void appendQuoted(std::string& json, const std::string& text) {
    json += '"';
    for (const char letter : text) {
        if (letter == '"' || letter == '\\') json += '\\';
        json += letter;
    }
    json += '"';
}

void encode(const PlainEvent& event, std::string& json) {
    json.clear();
    for (const auto& [name, value] : event) {
        json += json.empty() ? '{' : ',';
        appendQuoted(json, name);
        json += ':';
        appendQuoted(json, value);
    }
    json += '}';
}

}  // namespace

CurlClient::CurlClient(std::string baseURL, PlainEvent event)
    : baseURL_(std::move(baseURL)),
      event_(std::move(event)),
      sequential_{Easy(curl_easy_init()), {}, {}, {}},
      events_(curl_multi_init()),
      models_(curl_multi_init()) {
    for (const char* line : {"Content-Type: application/json", "Accept: application/json"}) {
        curl_slist* longer = curl_slist_append(fields_.get(), line);
        require(longer, "no memory for the header fields");
        static_cast<void>(fields_.release());
        fields_.reset(longer);
    }
}

CurlClient::~CurlClient() = default;

std::vector<std::unique_ptr<CurlClient::Transfer>> CurlClient::makeTransfers(int count) {
    std::vector<std::unique_ptr<Transfer>> transfers;
    for (int index = 0; index < count; ++index) {
        transfers.push_back(std::make_unique<Transfer>());
        transfers.back()->easy.reset(curl_easy_init());
    }
    return transfers;
}

void CurlClient::prepareEvent(Transfer& transfer) const {
    CURL* easy = transfer.easy.get();
    transfer.answer.clear();
    encode(event_, transfer.body);
    curl_easy_setopt(easy, CURLOPT_URL, (baseURL_ + "/kafka/engagement/").c_str());
    curl_easy_setopt(easy, CURLOPT_HTTPHEADER, fields_.get());
    curl_easy_setopt(easy, CURLOPT_POSTFIELDSIZE_LARGE, static_cast<curl_off_t>(transfer.body.size()));
    curl_easy_setopt(easy, CURLOPT_POSTFIELDS, transfer.body.data());
    curl_easy_setopt(easy, CURLOPT_WRITEFUNCTION, appendBytes);
    curl_easy_setopt(easy, CURLOPT_WRITEDATA, &transfer.answer);
    // Spares it five system calls a transfer.
    curl_easy_setopt(easy, CURLOPT_NOSIGNAL, 1L);
}

std::vector<double> CurlClient::reportEvents(int count) {
    CURL* easy = sequential_.easy.get();
    curl_easy_reset(easy);
    std::vector<double> durations;
    durations.reserve(static_cast<std::size_t>(count));
    for (int done = 0; done < count; ++done) {
        const double start = Clock::real().uptime();
        prepareEvent(sequential_);
        const CURLcode code = curl_easy_perform(easy);
        durations.push_back(Clock::real().uptime() - start);
        require(succeeded(easy, code), "an event was not reported");
    }
    return durations;
}

template <class Next>
void CurlClient::runAtOnce(Multi& multi, std::vector<std::unique_ptr<Transfer>>& transfers, int count,
                           const Next& next) {
    int started = 0, completed = 0, running = 0, left = 0;
    const auto start = [&](Transfer& transfer) {
        next(transfer, started++);
        curl_easy_setopt(transfer.easy.get(), CURLOPT_PRIVATE, &transfer);
        curl_multi_add_handle(multi.get(), transfer.easy.get());
    };
    for (auto& transfer : transfers) start(*transfer);
    while (completed < count) {
        curl_multi_perform(multi.get(), &running);
        while (const CURLMsg* message = curl_multi_info_read(multi.get(), &left)) {
            if (message->msg != CURLMSG_DONE) continue;
            CURL* easy = message->easy_handle;
            require(succeeded(easy, message->data.result), "a transfer failed");
            curl_multi_remove_handle(multi.get(), easy);
            char* transfer = nullptr;
            curl_easy_getinfo(easy, CURLINFO_PRIVATE, &transfer);
            reinterpret_cast<Transfer*>(transfer)->file.reset();
            ++completed;
            if (started < count) start(*reinterpret_cast<Transfer*>(transfer));
        }
        if (completed < count) curl_multi_poll(multi.get(), nullptr, 0, 1000, nullptr);
    }
}

void CurlClient::reportEventsAtOnce(int count, int inFlight) {
    auto transfers = makeTransfers(inFlight);
    runAtOnce(events_, transfers, count, [&](Transfer& transfer, int) { prepareEvent(transfer); });
}

void CurlClient::prepareDownload(Transfer& transfer, int number, const std::string& folder) const {
    const std::string name = std::to_string(number);
    transfer.file.reset(std::fopen((folder + "/" + name).c_str(), "wb"));
    require(bool(transfer.file), "a file cannot be made");
    curl_easy_setopt(transfer.easy.get(), CURLOPT_URL, (baseURL_ + "/models/" + name).c_str());
    curl_easy_setopt(transfer.easy.get(), CURLOPT_WRITEDATA, transfer.file.get());
}

void CurlClient::downloadModels(int count, int inFlight, const std::string& folder) {
    if (inFlight == 1) return downloadOneByOne(count, folder);
    auto transfers = makeTransfers(inFlight);
    runAtOnce(models_, transfers, count,
              [&](Transfer& transfer, int number) { prepareDownload(transfer, number, folder); });
}

void CurlClient::downloadOneByOne(int count, const std::string& folder) {
    CURL* easy = sequential_.easy.get();
    curl_easy_reset(easy);
    for (int number = 0; number < count; ++number) {
        prepareDownload(sequential_, number, folder);
        const CURLcode code = curl_easy_perform(easy);
        require(succeeded(easy, code), "a download failed");
        sequential_.file.reset();
    }
}

}  // namespace flarebox::benchmarks
