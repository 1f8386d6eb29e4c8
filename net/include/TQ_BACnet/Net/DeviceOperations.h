#pragma once

#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/Net/Client.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyMultiple.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyMultipleAck.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadRange.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadRangeAck.h"
#include "TQ_BACnet/ValueContainer.h"

#include <Poco/Timestamp.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace Net {

/// Where a request goes: a device by its instance (bound by Who-Is when not yet known), or an
/// address as it is.
struct Target {
    static Target device(uint32_t instance) {
        Target t;
        t.instance = instance;
        return t;
    }
    static Target at(const BACNET_ADDRESS& address) {
        Target t;
        t.byAddress = true;
        t.address = address;
        return t;
    }
    bool byAddress = false;
    uint32_t instance = 0;
    BACNET_ADDRESS address{};
};

/// What became of one operation, said plainly: done (with its value or acknowledgement), the
/// device's Error (class and code), a Reject or Abort (reason), no answer in time, or a
/// failure on this side (with a text).
struct Outcome {
    enum Kind { Done, Error, Reject, Abort, Timeout, Failed };
    Kind kind = Failed;
    /// Error: the class and code; Reject and Abort: DataError's REJECT_CLASS or ABORT_CLASS with
    /// the reason as the code, so that one value carries every outcome to a web client.
    DataError error;
    std::string text;

    bool ok() const { return kind == Done; }
    /// One line for people: "done", "BACnet Error: ...", "timeout", "failed: ...".
    std::string describe() const;

    static Outcome done() {
        Outcome o;
        o.kind = Done;
        return o;
    }
    static Outcome failed(const std::string& why) {
        Outcome o;
        o.text = why;
        return o;
    }
    /// The outcome of a confirmed request that was not acknowledged.
    static Outcome of(const Result& result);
};

/// A confirmed request made ready for `Client::submit`: the service choice and its data. Empty
/// data: it did not encode, `why` says why.
struct Request {
    uint8_t service = 0;
    std::vector<uint8_t> data;
    std::string why;
    bool ok() const { return !data.empty(); }
};

/// One object found on a device, with the properties read at discovery (those the device
/// refused are left out).
struct FoundObject {
    DataType::ObjectIdentifier id;
    std::vector<std::pair<BACNET_PROPERTY_ID, ValueContainer>> values;
};

/// The operations a gateway or a tool performs on a device, on top of the client's
/// transactions and the service classes: encoded by the services, answered values decoded and
/// typed through the catalogue, acknowledgements checked against their requests. Runs in the
/// caller's thread, as the client does.
class DeviceOperations {
public:
    /// bindMs: how long an unconfirmed request to a device by instance waits for its I-Am.
    explicit DeviceOperations(Client& client, unsigned bindMs = 1000) : _client(client), _bindMs(bindMs) {}

    /// ReadProperty into `value`.
    Outcome readProperty(const Target& target, const DataType::BACnetObjectPropertyReference& what,
                         ValueContainer& value);
    /// ReadPropertyMultiple into its acknowledgement (per property a value or the device's Error).
    Outcome readPropertyMultiple(const Target& target, const Service::ObjectAccess::ReadPropertyMultiple& request,
                                 Service::ObjectAccess::ReadPropertyMultipleAck& ack);
    /// WriteProperty of encoded value bytes; priority 0 sends none (the device's default).
    Outcome writeProperty(const Target& target, const DataType::BACnetObjectPropertyReference& what,
                          const TQ::Utility::OctetBuffer& value, uint8_t priority);
    Outcome writeProperty(const Target& target, const DataType::BACnetObjectPropertyReference& what,
                          const ValueContainer& value, uint8_t priority);
    /// ReadRange into its acknowledgement.
    Outcome readRange(const Target& target, const Service::ObjectAccess::ReadRange& request,
                      Service::ObjectAccess::ReadRangeAck& ack);
    /// Who-Is, collecting the I-Ams that come within durationMs.
    std::vector<IAm> whoIs(unsigned durationMs, int32_t low = -1, int32_t high = -1);
    /// (UTC-)TimeSynchronization with `moment`, to a device or, without one, to the local broadcast.
    Outcome timeSync(const Target* target, Poco::Timestamp moment, bool utc);

    Client& client() { return _client; }

    /// How a discovery reaches the device: one property, or several objects at once. The gateway
    /// routes these through its network thread, a tool calls the operations above directly.
    using ReadOne = std::function<Outcome(const DataType::BACnetObjectPropertyReference&, ValueContainer&)>;
    using ReadMany = std::function<Outcome(const Service::ObjectAccess::ReadPropertyMultiple&,
                                           Service::ObjectAccess::ReadPropertyMultipleAck&)>;
    /// The objects of `device` (its object list whole, or element by element from a device that
    /// cannot send it whole) with `properties` of each, read a few objects per request. The
    /// outcome of reading the object list: its failure leaves `objects` untouched.
    static Outcome readObjects(uint32_t device, const std::vector<BACNET_PROPERTY_ID>& properties,
                               const ReadOne& readOne, const ReadMany& readMany, std::vector<FoundObject>& objects);
    /// The same through this object's own operations.
    Outcome readObjects(const Target& target, uint32_t device, const std::vector<BACNET_PROPERTY_ID>& properties,
                        std::vector<FoundObject>& objects);

    // The two halves of each confirmed operation, for a caller that keeps many requests in
    // flight through `Client::submit` and `Client::take`; the operations above are these two
    // around one `Client::request`.
    static Request readPropertyRequest(const DataType::BACnetObjectPropertyReference& what);
    static Outcome readPropertyAnswer(const Result& result, const DataType::BACnetObjectPropertyReference& what,
                                      ValueContainer& value);
    static Request readPropertyMultipleRequest(const Service::ObjectAccess::ReadPropertyMultiple& request);
    static Outcome readPropertyMultipleAnswer(const Result& result,
                                              const Service::ObjectAccess::ReadPropertyMultiple& request,
                                              Service::ObjectAccess::ReadPropertyMultipleAck& ack);
    static Request writePropertyRequest(const DataType::BACnetObjectPropertyReference& what,
                                        const TQ::Utility::OctetBuffer& value, uint8_t priority);
    static Outcome writePropertyAnswer(const Result& result);
    static Request readRangeRequest(const Service::ObjectAccess::ReadRange& request);
    static Outcome readRangeAnswer(const Result& result, const Service::ObjectAccess::ReadRange& request,
                                   Service::ObjectAccess::ReadRangeAck& ack);

private:
    Result confirmed(const Target& target, const Request& request);

    Client& _client;
    unsigned _bindMs;
};

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
