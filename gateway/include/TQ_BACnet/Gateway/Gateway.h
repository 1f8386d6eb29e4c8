#pragma once

#include "TQ_BACnet/Gateway/BacnetPort.h"
#include "TQ_BACnet/Gateway/Config.h"
#include "TQ_BACnet/Gateway/Store.h"

#include <atomic>
#include <condition_variable>
#include <map>
#include <memory>
#include <mutex>
#include <thread>

namespace TQ {
namespace BACnet {
namespace Gateway {

/// The gateway's BACnet side: its port, the devices it found and their stored tree, and the
/// polling and COV subscriptions that keep stored values fresh. Every call may come from any HTTP worker; a call
/// waits only for its own device.
class Gateway {
public:
    explicit Gateway(const Config& config);
    ~Gateway();

    /// Who-Is, then each answering device's object list and object names and present values
    /// into the stored tree. Returns the devices that answered.
    std::vector<uint32_t> discover();
    /// Starts keeping the configured list fresh in the background: by COV subscription where
    /// the device takes one, by polling otherwise.
    void startPolling();

    /// A property read live, or from the stored value when it is younger than the configured
    /// age (`fromStore` tells which). A live value is stored when the tree holds the property.
    Net::Outcome readProperty(uint32_t device, const DataType::BACnetObjectPropertyReference& what,
                              ValueContainer& value, bool allowStored, bool* fromStore = nullptr);
    Net::Outcome readPropertyMultiple(uint32_t device, const Service::ObjectAccess::ReadPropertyMultiple& request,
                                      Service::ObjectAccess::ReadPropertyMultipleAck& ack);
    Net::Outcome writeProperty(uint32_t device, const DataType::BACnetObjectPropertyReference& what,
                               const TQ::Utility::OctetBuffer& value, uint8_t priority);
    Net::Outcome readRange(uint32_t device, const Service::ObjectAccess::ReadRange& request,
                           Service::ObjectAccess::ReadRangeAck& ack);

    bool knows(uint32_t device) const { return _port.knows(device); }
    /// A device that stopped answering: requests to it fail at once until its next retry is due.
    bool isResting(uint32_t device) const;
    const Config& config() const { return _config; }
    Store& store() { return _store; }

private:
    Net::Result run(uint32_t device, Net::Request request);
    void noteAnswer(uint32_t device, const Net::Result& result);
    bool readObjects(uint32_t device, std::vector<Store::FoundObject>& objects);
    struct Watched;
    void poll();
    void pollRound(std::vector<Watched>& items);
    void subscribeRound(Watched& item, Store::Clock::time_point now);
    void storeNotified(std::vector<Watched>& items);
    void cancelSubscriptions(std::vector<Watched>& items);

    struct Health {
        unsigned failures = 0;
        Store::Clock::time_point retryAt{};
    };

    Config _config;
    Store _store;
    BacnetPort _port;
    mutable std::mutex _healthMutex;
    std::map<uint32_t, Health> _health;

    std::mutex _pollMutex;
    std::condition_variable _pollWake;
    bool _stopPolling = false;
    std::thread _poller;
};

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
