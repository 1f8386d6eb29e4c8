#pragma once

#include "TQ_BACnet/Net/Cov.h"
#include "TQ_BACnet/Net/DeviceOperations.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <future>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace TQ {
namespace BACnet {
namespace Net {
class BipSocket;
class Link;
struct PortOptions;
}  // namespace Net
namespace Gateway {

struct Config;

/// The gateway's BACnet/IP port with the one thread that drives its client. Other threads hand
/// it requests and wait on futures; many requests are in flight at once, so a device that does
/// not answer costs only the requests sent to it.
class BacnetPort {
public:
    explicit BacnetPort(const Config& config);
    ~BacnetPort();
    BacnetPort(const BacnetPort&) = delete;
    BacnetPort& operator=(const BacnetPort&) = delete;

    /// Sends a request to a discovered device. A device never discovered gets Result::Failed
    /// at once (no Who-Is per request: an unknown instance must not cost a timeout each time).
    std::future<Net::Result> submit(uint32_t device, Net::Request request);
    /// Who-Is to all devices (and through the BBMD when registered); the devices that answered.
    std::future<std::vector<Net::IAm>> discover(unsigned durationMs);

    /// The COV notifications that arrived since the last call, oldest first (confirmed ones were
    /// acknowledged on arrival). Held up to a bound; a flood beyond it is dropped.
    std::vector<Net::CovNotification> takeNotifications();

    bool knows(uint32_t device) const;
    /// The devices seen so far, by instance.
    std::map<uint32_t, Net::IAm> devices() const;

private:
    struct Job {
        uint32_t device;
        Net::Request request;
        std::promise<Net::Result> done;
        int handle = -1;
    };
    void run();
    void startJobs();
    void finishJobs();

    std::unique_ptr<Net::BipSocket> _socket;
    std::unique_ptr<Net::Link> _link;
    std::unique_ptr<Net::Client> _client;

    mutable std::mutex _mutex;
    std::deque<std::unique_ptr<Job>> _incoming;
    std::deque<std::pair<unsigned, std::promise<std::vector<Net::IAm>>>> _discoveries;
    std::map<uint32_t, Net::IAm> _devices;
    std::vector<Net::CovNotification> _notifications;

    std::vector<std::unique_ptr<Job>> _waiting;  ///< network thread only
    std::atomic<bool> _stop{false};
    std::thread _thread;
};

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
