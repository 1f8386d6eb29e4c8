#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {
namespace Net {

/// What the runtime did not take from the network. Each kind is counted, and its first
/// occurrence per port written as one line to standard output; a flood writes nothing more.
enum class Drop {
    BadBvlc,            ///< not BACnet/IP, or a length that disagrees with the datagram
    UnknownFunction,    ///< a BVLC function this node does not handle
    BbmdRequest,        ///< a BBMD's function sent to a node that is none (answered with a NAK)
    BadNpdu,            ///< wrong version or truncated network header
    NetworkMessage,     ///< a network-layer message (recognised, not acted on)
    NotForUs,           ///< routed to another network
    BadApdu,            ///< unknown PDU type or truncated APDU header
    UnmatchedInvokeId,  ///< an answer no transaction waits for
    SegmentOutOfOrder,  ///< a segment outside the window or repeated (answered with a negative Segment-ACK)
    Overflow,           ///< a segmented answer longer than accepted (the transaction is aborted)
    Count
};

class DropLog {
public:
    explicit DropLog(std::string name) : _name(std::move(name)) {}
    void note(Drop kind, const uint8_t from[6]);
    /// Readable from any thread (a test watching a device's thread).
    unsigned count(Drop kind) const { return _counts[unsigned(kind)].load(std::memory_order_relaxed); }
    unsigned total() const;

    static const char* describe(Drop kind);

private:
    std::string _name;
    std::atomic<unsigned> _counts[unsigned(Drop::Count)] = {};
};

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
