// Input: byte 0 picks the property descriptor; the rest is the JSON body. A failure must be one
// of the encoder's web-service errors with the caller's buffer untouched, a success a value
// that fits one APDU; nothing may throw.
#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/WS/DataWsError.h"
#include "TQ_BACnet/WS/EncoderJSON.h"
#include "tq_stack/config.h"
#include "ws_fuzz_catalogue.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

using namespace TQ::BACnet;

struct Choice {
    unsigned type, tag, structure;
};

// Primitives, enumerations and bits by name, arrays and lists, sequences with optional and
// context members, choices, inline groups, sequences-of, and abstract-syntax values.
const Choice CHOICES[] = {
    {4, 4, 0},    {2, 2, 0},    {3, 3, 0},    {7, 7, 0},    {6, 6, 0},    {10, 10, 0},  {11, 11, 0},
    {12, 12, 1},  {5038, 9, 0}, {5090, 8, 0}, {1064, 0, 1}, {1028, 0, 0}, {1084, 0, 0}, {1083, 0, 0},
    {1264, 0, 0}, {1241, 0, 0}, {1000, 0, 0}, {1054, 0, 2}, {1288, 0, 0}, {7, 7, 2},    {2999, 0, 0},
};
constexpr std::size_t kChoices = sizeof(CHOICES) / sizeof(CHOICES[0]);
constexpr uint8_t kGuard = 0x5A;
constexpr std::size_t kOffset = 3;

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    TQFuzz::openCatalogue();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1) return 0;
    const Choice& c = CHOICES[data[0] % kChoices];
    const DataPropertyInObject0 descriptor(static_cast<BACnetDataType>(c.type),
                                           static_cast<BACNET_APPLICATION_TAG>(c.tag),
                                           static_cast<BACnetDataTypeStructure>(c.structure), true, 0);
    const std::string json(reinterpret_cast<const char*>(data + 1), size - 1);
    uint8_t storage[kOffset + MAX_APDU + 1];
    for (uint8_t& byte : storage) byte = kGuard;
    TQ::Utility::OctetBuffer buffer = TQ::Utility::OctetBuffer::over(storage, sizeof storage);
    WS::DataWsError error;
    const int length = WS::EncoderJSON().encode(descriptor, json, buffer, kOffset, error);
    if (length < 0) {
        const int code = error.getWsErrorCode();
        TQFuzz::check(code == 12 || code == 13 || code == 24 || code == 29);
        for (uint8_t byte : storage) TQFuzz::check(byte == kGuard);
        return 0;
    }
    TQFuzz::check(!error.hasWsError() && length <= MAX_APDU);
    TQFuzz::check(storage[kOffset + static_cast<std::size_t>(length)] == kGuard);
    return 0;
}
