#include "TQ_BACnet/Gateway/BacnetPort.h"

#include "TQ_BACnet/Gateway/Config.h"
#include "TQ_BACnet/Net/BipSocket.h"
#include "TQ_BACnet/Net/Link.h"

#include <Poco/Exception.h>

#include <arpa/inet.h>

#include <cstring>

namespace TQ {
namespace BACnet {
namespace Gateway {

using Net::Result;

namespace {

// "192.168.1.5:47808" as a B/IP address.
void parseEndpoint(const std::string& text, uint8_t mac[6]) {
    const auto colon = text.find(':');
    in_addr address{};
    const std::string host = text.substr(0, colon);
    const unsigned long port = colon == std::string::npos ? 47808 : std::strtoul(text.c_str() + colon + 1, nullptr, 10);
    if (inet_pton(AF_INET, host.c_str(), &address) != 1 || port == 0 || port > 65535)
        throw Poco::InvalidArgumentException("bacnet.bbmd: expected ADDRESS:PORT, not \"" + text + "\"");
    const uint16_t p = htons(uint16_t(port));
    std::memcpy(mac, &address.s_addr, 4);
    std::memcpy(mac + 4, &p, 2);
}

Result failed() {
    Result r;
    r.kind = Result::Failed;
    return r;
}

// While requests are in flight the thread looks at its queue this often; idle, it waits on
// the socket a little longer.
constexpr int kBusyPollMs = 1;
constexpr int kIdlePollMs = 5;
// COV notifications kept for the polling thread between two of its rounds.
constexpr std::size_t kMaxNotifications = 4096;

}  // namespace

BacnetPort::BacnetPort(const Config& config) {
    Net::PortOptions port;
    port.interface = config.interface;
    port.udpPort = config.udpPort;
    port.broadcast = config.broadcast;
    _socket = std::make_unique<Net::BipSocket>(port);
    _link = std::make_unique<Net::Link>(*_socket, "gateway");
    Net::ClientOptions options;
    options.apduTimeoutMs = config.apduTimeoutMs;
    options.retries = config.retries;
    _client = std::make_unique<Net::Client>(*_link, options);
    _client->onCovNotification([this](const Net::CovNotification& n) {
        std::lock_guard<std::mutex> lock(_mutex);
        if (_notifications.size() < kMaxNotifications) _notifications.push_back(n);
    });
    if (!config.bbmd.empty()) {
        uint8_t bbmd[6];
        parseEndpoint(config.bbmd, bbmd);
        _link->registerForeignDevice(bbmd, uint16_t(config.bbmdTtl));
    }
    _thread = std::thread([this] { run(); });
}

BacnetPort::~BacnetPort() {
    _stop = true;
    if (_thread.joinable()) _thread.join();
    // Whoever still waits learns that nothing will come.
    for (auto& job : _waiting) job->done.set_value(failed());
    for (auto& job : _incoming) job->done.set_value(failed());
    for (auto& d : _discoveries) d.second.set_value({});
}

std::future<Result> BacnetPort::submit(uint32_t device, Net::Request request) {
    auto job = std::make_unique<Job>();
    job->device = device;
    job->request = std::move(request);
    std::future<Result> f = job->done.get_future();
    if (!job->request.ok() || _stop) {
        job->done.set_value(failed());
        return f;
    }
    std::lock_guard<std::mutex> lock(_mutex);
    _incoming.push_back(std::move(job));
    return f;
}

std::future<std::vector<Net::IAm>> BacnetPort::discover(unsigned durationMs) {
    std::promise<std::vector<Net::IAm>> p;
    auto f = p.get_future();
    std::lock_guard<std::mutex> lock(_mutex);
    _discoveries.emplace_back(durationMs, std::move(p));
    return f;
}

std::vector<Net::CovNotification> BacnetPort::takeNotifications() {
    std::vector<Net::CovNotification> taken;
    std::lock_guard<std::mutex> lock(_mutex);
    taken.swap(_notifications);
    return taken;
}

bool BacnetPort::knows(uint32_t device) const {
    std::lock_guard<std::mutex> lock(_mutex);
    return _devices.count(device) != 0;
}

std::map<uint32_t, Net::IAm> BacnetPort::devices() const {
    std::lock_guard<std::mutex> lock(_mutex);
    return _devices;
}

void BacnetPort::startJobs() {
    std::deque<std::unique_ptr<Job>> fresh;
    {
        std::lock_guard<std::mutex> lock(_mutex);
        fresh.swap(_incoming);
    }
    for (auto& job : fresh) {
        BACNET_ADDRESS to{};
        if (!_client->addressOf(job->device, to)) {
            job->done.set_value(failed());
            continue;
        }
        job->handle = _client->submit(to, job->request.service, job->request.data.data(),
                                      unsigned(job->request.data.size()));
        if (job->handle < 0) {
            // Every invoke id in use: the job waits for the next round.
            std::lock_guard<std::mutex> lock(_mutex);
            _incoming.push_back(std::move(job));
            continue;
        }
        _waiting.push_back(std::move(job));
    }
}

void BacnetPort::finishJobs() {
    for (auto it = _waiting.begin(); it != _waiting.end();) {
        if (!_client->isDone((*it)->handle)) {
            ++it;
            continue;
        }
        (*it)->done.set_value(_client->take((*it)->handle));
        it = _waiting.erase(it);
    }
}

void BacnetPort::run() {
    while (!_stop) {
        startJobs();
        _client->poll(_waiting.empty() ? kIdlePollMs : kBusyPollMs);
        finishJobs();
        std::pair<unsigned, std::promise<std::vector<Net::IAm>>> discovery;
        bool discovering = false;
        {
            std::lock_guard<std::mutex> lock(_mutex);
            if (!_discoveries.empty()) {
                discovery = std::move(_discoveries.front());
                _discoveries.pop_front();
                discovering = true;
            }
        }
        if (!discovering) continue;
        // A foreign device's Who-Is goes through the BBMD: wait for the registration first.
        const auto until = Net::Clock::now() + std::chrono::milliseconds(discovery.first);
        while (_link->registration() == Net::Link::Registration::Pending && Net::Clock::now() < until) {
            _client->poll(kBusyPollMs);
            finishJobs();
        }
        // Answers to requests in flight are handled while the I-Ams are collected.
        std::vector<Net::IAm> found = _client->whoIs(discovery.first);
        {
            std::lock_guard<std::mutex> lock(_mutex);
            for (const Net::IAm& iam : found) _devices[iam.deviceInstance] = iam;
        }
        discovery.second.set_value(std::move(found));
        finishJobs();
    }
}

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
