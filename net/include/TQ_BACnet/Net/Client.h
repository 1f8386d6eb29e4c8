#pragma once

#include "TQ_BACnet/Net/Link.h"
#include "tq_stack/enums.h"

#include <functional>
#include <map>
#include <memory>
#include <vector>

namespace TQ {
namespace BACnet {
namespace Net {

struct CovNotification;

struct ClientOptions {
    unsigned apduTimeoutMs = 3000;
    unsigned retries = 3;
    /// Segments of one answer we accept (2, 4, 8, 16, 32 or 64); more is aborted as an overflow.
    unsigned maxSegments = 64;
    /// Segments we take before acknowledging (1..127).
    uint8_t windowSize = 16;
};

/// The outcome of one confirmed request.
struct Result {
    enum Kind { SimpleAck, ComplexAck, Error, Reject, Abort, Timeout, Failed };
    Kind kind = Failed;
    uint8_t service = 0;
    /// ComplexAck: the service data after the header, segments joined.
    std::vector<uint8_t> data;
    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    /// Error PDUs that carry one (CreateObject-Error), else 0.
    uint32_t firstFailedElement = 0;
    /// Reject or Abort reason.
    uint8_t reason = 0;
    /// Abort: sent by the server (else by this client, e.g. on overflow).
    bool byServer = false;
    bool ok() const { return kind == SimpleAck || kind == ComplexAck; }
};

/// A device that answered Who-Is.
struct IAm {
    uint32_t deviceInstance = 0;
    BACNET_ADDRESS address{};
    unsigned maxApdu = 0;
    int segmentation = 0;
    uint16_t vendorId = 0;
};

/// The client side of a BACnet/IP port: confirmed requests with invoke ids, the APDU timeout
/// and retries, segmented Complex-ACKs reassembled with Segment-ACKs, and devices bound to
/// their addresses by Who-Is/I-Am. Single-threaded: everything runs in the caller's calls.
class Client {
public:
    Client(Link& link, const ClientOptions& options = ClientOptions());
    ~Client();

    /// Sends a request (service choice and its service data) and returns its handle, or -1
    /// when all 256 invoke ids are in use or the data is too long for one APDU.
    int submit(const BACNET_ADDRESS& to, uint8_t service, const uint8_t* data, unsigned length);
    /// Waits up to timeoutMs for network traffic or a timer, and handles what comes.
    void poll(int timeoutMs);
    bool isDone(int handle) const;
    /// The result of a finished request; its handle is free again.
    Result take(int handle);

    /// Sends, waits and returns the result (Timeout after the retries).
    Result request(const BACNET_ADDRESS& to, uint8_t service, const uint8_t* data, unsigned length);
    Result request(const BACNET_ADDRESS& to, uint8_t service, const std::vector<uint8_t>& data) {
        return request(to, service, data.data(), unsigned(data.size()));
    }
    /// To a device by instance: bound first by a Who-Is for that instance when not yet known
    /// (Failed when it does not answer within the APDU timeout).
    Result requestDevice(uint32_t deviceInstance, uint8_t service, const std::vector<uint8_t>& data);

    /// Broadcasts Who-Is (to `to`, by default the local broadcast) and collects the I-Ams that
    /// come within durationMs, one per device. Limits -1: all devices.
    std::vector<IAm> whoIs(unsigned durationMs, int32_t low = -1, int32_t high = -1,
                           const BACNET_ADDRESS& to = Link::localBroadcast());
    /// The address a device was last seen at; false when unknown.
    bool addressOf(uint32_t deviceInstance, BACNET_ADDRESS& out) const;

    /// Where COV notifications go (called from `poll`). A confirmed one is acknowledged with a
    /// Simple-ACK once it decodes; without a handler confirmed ones are rejected as before.
    using CovHandler = std::function<void(const CovNotification&)>;
    void onCovNotification(CovHandler handler) { _covHandler = std::move(handler); }
    /// SubscribeCOV (lifetimeS 0: no expiry) and its cancellation, waiting for the answer.
    Result subscribeCov(const BACNET_ADDRESS& to, uint32_t processId, BACNET_OBJECT_TYPE type, uint32_t instance,
                        bool confirmed, uint32_t lifetimeS);
    Result cancelCov(const BACNET_ADDRESS& to, uint32_t processId, BACNET_OBJECT_TYPE type, uint32_t instance);

    /// Handles one APDU the link took (what `poll` does with each).
    void dispatch(const Received& frame);

    unsigned outstanding() const;
    Link& link() { return _link; }

private:
    struct Transaction;
    void handleIAm(const Received& frame, const uint8_t* data, unsigned length);
    void handleCov(const Received& frame, const uint8_t* data, unsigned length, int invokeId);
    void handleSegment(Transaction& t, const Received& frame, const uint8_t* apdu, unsigned length);
    void finish(Transaction& t, Result::Kind kind);
    void sendSegmentAck(Transaction& t, bool nak, uint8_t sequence);
    void abort(Transaction& t, uint8_t reason);
    void checkTimers();
    int nextTimerMs() const;
    Transaction* find(uint8_t invokeId, const BACNET_ADDRESS& from);

    Link& _link;
    ClientOptions _options;
    std::unique_ptr<Transaction> _transactions[256];
    uint8_t _nextInvokeId = 0;
    std::map<uint32_t, IAm> _bindings;
    std::vector<IAm>* _collecting = nullptr;
    CovHandler _covHandler;
};

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
