#include "TQ_BACnet/Net/DropLog.h"

#include "TQ/Utility/LogHelper.h"

#include <iostream>

namespace TQ {
namespace BACnet {
namespace Net {

namespace {

const char* const kTexts[] = {
    "bad BVLC header or length", "unknown BVLC function", "BBMD function (answered with a NAK)",
    "bad NPDU",                  "network-layer message",  "routed to another network",
    "bad APDU",                  "unmatched invoke id",    "segment out of order or window",
    "segmented answer too long",
};
static_assert(sizeof kTexts / sizeof kTexts[0] == unsigned(Drop::Count), "one text per kind");

}  // namespace

const char* DropLog::describe(Drop kind) { return kTexts[unsigned(kind)]; }

void DropLog::note(Drop kind, const uint8_t from[6]) {
    if (_counts[unsigned(kind)].fetch_add(1, std::memory_order_relaxed) != 0) return;
    std::cout << TQ::Utility::LogHelper::timeStamp() << " " << _name << ": dropped " << describe(kind)
              << " from " << unsigned(from[0]) << "." << unsigned(from[1]) << "." << unsigned(from[2]) << "."
              << unsigned(from[3]) << ":" << (unsigned(from[4]) << 8 | from[5])
              << " (further ones are counted, not logged)" << std::endl;
}

unsigned DropLog::total() const {
    unsigned sum = 0;
    for (const auto& c : _counts) sum += c.load(std::memory_order_relaxed);
    return sum;
}

}  // namespace Net
}  // namespace BACnet
}  // namespace TQ
