// A log record broken into the primitives a guided decode of its encoding yields.
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "TQ_BACnet/DataType/BACnetLogRecord.h"

#include <algorithm>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

constexpr uint8_t TAG_TIMESTAMP = 0;
constexpr uint8_t TAG_LOG_DATUM = 1;
constexpr uint8_t TAG_STATUS_FLAGS = 2;

DataApplicationValue bitString(const uint8_t* bytes, unsigned bitsUsed) {
    BACNET_BIT_STRING bits{};
    bits.bits_used = static_cast<uint8_t>(bitsUsed);
    std::copy(bytes, bytes + (bitsUsed + 7) / 8, bits.value);
    DataApplicationValue value;
    value.tag = BACNET_APPLICATION_TAG_BIT_STRING;
    value.type.Bit_String = bits;
    value.setNull(false);
    return value;
}

void appendContext(std::vector<DataApplicationValue>& out, uint8_t tag, DataApplicationValue value) {
    value.context_specific = true;
    value.context_tag = tag;
    out.push_back(value);
}

}  // namespace

void BACnetLogRecord::getBACnetPrimitives(std::vector<DataApplicationValue>& out) const {
    out.push_back(getOpenTag(TAG_TIMESTAMP));
    BACnetDateTime(BACnetDateTime::fromTimestamp(_timestamp)).getBACnetPrimitives(out);
    out.push_back(getCloseTag(TAG_TIMESTAMP));
    out.push_back(getOpenTag(TAG_LOG_DATUM));
    DataApplicationValue value;
    switch (_choice) {
        case LOG_STATUS: {
            const uint8_t status = mirror(_datum.getLogStatus());
            appendContext(out, _choice, bitString(&status, 3));
            break;
        }
        case BOOLEAN_VALUE:
            value.setBool(_datum.getBoolean());
            appendContext(out, _choice, value);
            break;
        case REAL_VALUE:
        case TIME_CHANGE:
            value.setReal(_datum.getReal());
            appendContext(out, _choice, value);
            break;
        case ENUM_VALUE:
            value.setEnum(_datum.getEnumerated());
            appendContext(out, _choice, value);
            break;
        case UNSIGNED_VALUE:
            value.setUInt(_datum.getUnsigned());
            appendContext(out, _choice, value);
            break;
        case SIGNED_VALUE:
            value.setInt(_datum.getSigned());
            appendContext(out, _choice, value);
            break;
        case BITSTRING_VALUE: {
            const BitString held(_datum.getBytes());
            uint8_t bytes[DATUM_BITSTRING_BYTES];
            for (unsigned i = 0; i < DATUM_BITSTRING_BYTES; ++i) bytes[i] = mirror(held.getBytes()[i]);
            appendContext(out, _choice, bitString(bytes, std::min(held.getBitsUsed(), DATUM_BITSTRING_BYTES * 8)));
            break;
        }
        case NULL_VALUE:
            value.setNull(true);
            appendContext(out, _choice, value);
            break;
        case FAILURE:
            out.push_back(getOpenTag(_choice));
            value.setEnum(_datum.getErrorClass());
            out.push_back(value);
            value.setEnum(_datum.getErrorCode());
            out.push_back(value);
            out.push_back(getCloseTag(_choice));
            break;
        default:
            break;  // any-value and nothing logged: an empty datum
    }
    out.push_back(getCloseTag(TAG_LOG_DATUM));
    if (hasStatusFlags()) {
        const uint8_t flags = mirror(_statusFlags & 0x0F);
        appendContext(out, TAG_STATUS_FLAGS, bitString(&flags, 4));
    }
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
