#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"

#include "TQ/Utility/BitBuffer.h"
#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/Entity/BnDataType.h"
#include "tq_stack/datetime.h"
#include "tq_stack/strings.h"

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

/// The text of a primitive as every other value of its kind prints; a kind without names (or
/// without a name for this value) falls back to its plain text.
std::string primitiveText(const DataApplicationValue& value, bool useNames, BACnetDataType dataType,
                          bool bitsAsBooleans, bool* ok = nullptr) {
    std::string text = value.getText(useNames, dataType, ok, nullptr, bitsAsBooleans);
    if (text.empty()) text = value.getText(false, BACNET_DT_NOT_FOUND, ok, nullptr, bitsAsBooleans);
    return text;
}

/// `bits` bits of LSB-first bytes as the host's (MSB-first) bit buffer.
TQ::Utility::BitBuffer toBitBuffer(const uint8_t* bytes, unsigned bits) {
    TQ::Utility::BitBuffer buffer(bits);
    for (unsigned i = 0; i < bits; ++i) {
        if ((bytes[i / 8] >> (i % 8)) & 1u) buffer.setBit(i);
    }
    return buffer;
}

}  // namespace

void BACnetLogRecord::getDateTimeString(std::string& out) const {
    const BACNET_DATE_TIME local = BACnetDateTime::fromTimestamp(_timestamp);
    uint8_t bytes[16];
    const int len = bacapp_encode_datetime(bytes, &local);
    TQ::Utility::OctetBuffer::over(bytes, sizeof bytes, static_cast<std::size_t>(len))
        .getHexString(out, false);
}

void BACnetLogRecord::getValueString(std::string& out, bool useNames, bool bitsAsBooleans) const {
    DataApplicationValue value;
    switch (_choice) {
        case LOG_STATUS: {
            BACNET_BIT_STRING status{};
            status.bits_used = 3;
            status.value[0] = mirror(_datum.getLogStatus());
            value.type.Bit_String = status;
            value.tag = BACNET_APPLICATION_TAG_BIT_STRING;
            value.setNull(false);
            // Names of the log-status bits come from the catalogue; without names no lookup.
            const BACnetDataType type =
                useNames ? Entity::BnDataType::findReverse("BACnetLogStatus") : BACNET_DT_BIT_STRING;
            bool ok = true;
            out = primitiveText(value, useNames, type, bitsAsBooleans, &ok);
            if (!ok) out = "???";
            return;
        }
        case BOOLEAN_VALUE:
            value.setBool(_datum.getBoolean());
            break;
        case REAL_VALUE:
        case TIME_CHANGE:
            value.setReal(_datum.getReal());
            break;
        case ENUM_VALUE:
            value.setEnum(_datum.getEnumerated());
            break;
        case UNSIGNED_VALUE:
            value.setUInt(_datum.getUnsigned());
            break;
        case SIGNED_VALUE:
            value.setInt(_datum.getSigned());
            break;
        case BITSTRING_VALUE: {
            const BitString held(_datum.getBytes());
            out = toBitBuffer(held.getBytes(), std::min(held.getBitsUsed(), DATUM_BITSTRING_BYTES * 8))
                      .getString();
            return;
        }
        case NULL_VALUE:
            break;
        case FAILURE:
            out = DataError(static_cast<BACNET_ERROR_CLASS>(_datum.getErrorClass()),
                            static_cast<BACNET_ERROR_CODE>(_datum.getErrorCode()))
                      .getString(false);
            return;
        case ANY_VALUE:
            out = "\"ANY\" type not supported";
            return;
        default:
            out = "UNEXPECTED";
            return;
    }
    out = primitiveText(value, useNames, value.getBACnetDataType(), bitsAsBooleans);
}

void BACnetLogRecord::getStatusFlagsString(std::string& out) const {
    out.clear();
    if (!hasStatusFlags()) return;
    const uint8_t flags = _statusFlags & 0x0F;
    out = toBitBuffer(&flags, 4).getString();
}

void BACnetLogRecord::getString(std::string& out) const {
    std::string part;
    getDateTimeString(out);
    getValueString(part, false, true);
    out += ' ';
    out += part;
    getStatusFlagsString(part);
    if (!part.empty()) {
        out += " status:";
        out += part;
    }
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
