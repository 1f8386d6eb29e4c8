#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "TQ_BACnet/DataType/Error.h"

#include "TQ/Utility/LogHelper.h"
#include "tq_stack/codec.h"
#include "tq_stack/datetime.h"
#include "tq_stack/strings.h"

#include <algorithm>
#include <iostream>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

constexpr uint8_t TAG_TIMESTAMP = 0;
constexpr uint8_t TAG_LOG_DATUM = 1;
constexpr uint8_t TAG_STATUS_FLAGS = 2;
constexpr int NO_OPENING_TAG = -997;
constexpr int NO_CLOSING_TAG = -998;
constexpr int ANY_VALUE_DATUM = -999;
// Status flags are a bit string of one octet: the unused-bits byte and the octet.
constexpr uint32_t STATUS_FLAGS_CONTENT = 2;

uint8_t* at(uint8_t* apdu, int offset) {
    return apdu ? apdu + offset : nullptr;
}

void printLine(const char* text) {
    std::cout << TQ::Utility::LogHelper::timeStamp() << ' ' << text << std::endl;
}

}  // namespace

int BACnetLogRecord::encode(uint8_t* apdu) const {
    const BACNET_DATE_TIME local = BACnetDateTime::fromTimestamp(_timestamp);
    int len = bacapp_encode_context_datetime(apdu, TAG_TIMESTAMP, &local);
    len += encode_opening_tag(at(apdu, len), TAG_LOG_DATUM);
    len += encodeDatum(at(apdu, len));
    len += encode_closing_tag(at(apdu, len), TAG_LOG_DATUM);
    if (hasStatusFlags()) {
        BACNET_BIT_STRING flags{};
        flags.bits_used = 4;
        flags.value[0] = mirror(_statusFlags & 0x0F);
        len += encode_context_bitstring(at(apdu, len), TAG_STATUS_FLAGS, &flags);
    }
    if (_choice == FAILURE) printLine("--------C) ENCODING TL_TYPE_ERROR");
    return len;
}

int BACnetLogRecord::encodeDatum(uint8_t* apdu) const {
    switch (_choice) {
        case LOG_STATUS: {
            BACNET_BIT_STRING status{};
            status.bits_used = 3;
            status.value[0] = mirror(_datum.getLogStatus());
            return encode_context_bitstring(apdu, _choice, &status);
        }
        case BOOLEAN_VALUE:
            return encode_context_boolean(apdu, _choice, _datum.getBoolean());
        case REAL_VALUE:
        case TIME_CHANGE:
            return encode_context_real(apdu, _choice, _datum.getReal());
        case ENUM_VALUE:
            return encode_context_enumerated(apdu, _choice, _datum.getEnumerated());
        case UNSIGNED_VALUE:
            return encode_context_unsigned(apdu, _choice, _datum.getUnsigned());
        case SIGNED_VALUE:
            return encode_context_signed(apdu, _choice, _datum.getSigned());
        case BITSTRING_VALUE: {
            const BitString held(_datum.getBytes());
            BACNET_BIT_STRING bits{};
            // The count byte may claim more than the four bytes hold; the bytes win.
            bits.bits_used = static_cast<uint8_t>(std::min(held.getBitsUsed(), DATUM_BITSTRING_BYTES * 8));
            for (unsigned i = 0; i < DATUM_BITSTRING_BYTES; ++i) bits.value[i] = mirror(held.getBytes()[i]);
            return encode_context_bitstring(apdu, _choice, &bits);
        }
        case NULL_VALUE:
            return encode_context_null(apdu, _choice);
        case FAILURE: {
            int len = encode_opening_tag(apdu, _choice);
            len += Error::encode(at(apdu, len), static_cast<BACNET_ERROR_CLASS>(_datum.getErrorClass()),
                                 static_cast<BACNET_ERROR_CODE>(_datum.getErrorCode()));
            return len + encode_closing_tag(at(apdu, len), _choice);
        }
        default:
            // any-value and nothing logged: the datum stays empty.
            return 0;
    }
}

int BACnetLogRecord::decode(const uint8_t* apdu, unsigned length) {
    if (!apdu) return BACNET_STATUS_ERROR;
    // Decoded into a copy so that a failure leaves this record as it was.
    BACnetLogRecord decoded(*this);
    BACNET_DATE_TIME local;
    int len = bacapp_decode_context_datetime(apdu, length, TAG_TIMESTAMP, &local);
    if (len < 0) return len;
    Poco::Timestamp moment;
    if (len == 0 || !BACnetDateTime::toTimestamp(local, moment)) return BACNET_STATUS_ERROR;
    decoded.setTimestamp(moment);

    if (!decode_is_opening_tag_number(apdu + len, length - len, TAG_LOG_DATUM)) return NO_OPENING_TAG;
    len += 1;
    const int datum = decoded.decodeDatum(apdu + len, length - len);
    if (datum < 0) return datum;
    len += datum;
    if (!decode_is_closing_tag_number(apdu + len, length - len, TAG_LOG_DATUM)) return NO_CLOSING_TAG;
    len += 1;

    decoded._statusFlags = 0;
    BACNET_TAG tag;
    if (static_cast<unsigned>(len) < length && bacnet_tag_decode(apdu + len, length - len, &tag) > 0 &&
        tag.context && tag.number == TAG_STATUS_FLAGS && tag.len_value_type == STATUS_FLAGS_CONTENT) {
        BACNET_BIT_STRING flags{};
        const int flagsLen = decode_context_bitstring(apdu + len, length - len, TAG_STATUS_FLAGS, &flags);
        if (flagsLen <= 0) return BACNET_STATUS_ERROR;
        decoded.setStatusFlags(mirror(flags.value[0]));
        len += flagsLen;
    }
    *this = decoded;
    return len;
}

int BACnetLogRecord::decodeDatum(const uint8_t* apdu, unsigned length) {
    BACNET_TAG tag;
    const int header = bacnet_tag_decode(apdu, length, &tag);
    if (header <= 0 || tag.application) return BACNET_STATUS_ERROR;
    _datum.clear();
    if (tag.closing) {
        // Nothing logged: what this record writes for an empty datum reads back the same.
        if (tag.number != TAG_LOG_DATUM) return BACNET_STATUS_ERROR;
        _choice = NO_VALUE;
        return 0;
    }
    const uint8_t choice = tag.number;
    int len = BACNET_STATUS_ERROR;
    if (tag.opening) {
        if (choice == ANY_VALUE) return ANY_VALUE_DATUM;
        if (choice == FAILURE) {
            len = header;
            uint32_t word[2];
            for (uint32_t& part : word) {
                BACNET_TAG inner;
                const int innerHeader = bacnet_tag_decode(apdu + len, length - len, &inner);
                if (innerHeader <= 0 || !inner.application ||
                    (inner.number != BACNET_APPLICATION_TAG_ENUMERATED &&
                     inner.number != BACNET_APPLICATION_TAG_UNSIGNED_INT)) {
                    return BACNET_STATUS_ERROR;
                }
                len += innerHeader;
                const int content = decode_unsigned(apdu + len, length - len, inner.len_value_type, &part);
                if (content <= 0 || part > 0xFFFFu) return BACNET_STATUS_ERROR;
                len += content;
            }
            if (!decode_is_closing_tag_number(apdu + len, length - len, FAILURE)) return BACNET_STATUS_ERROR;
            _datum.setError(static_cast<uint16_t>(word[0]), static_cast<uint16_t>(word[1]));
            _choice = FAILURE;
            return len + 1;
        }
    }
    switch (tag.opening ? static_cast<uint8_t>(NO_VALUE) : choice) {
        case LOG_STATUS: {
            BACNET_BIT_STRING status{};
            len = decode_context_bitstring(apdu, length, choice, &status);
            _datum.setLogStatus(mirror(status.value[0]));
            break;
        }
        case BOOLEAN_VALUE: {
            bool value = false;
            len = decode_context_boolean(apdu, length, choice, &value);
            _datum.setBoolean(value);
            break;
        }
        case REAL_VALUE:
        case TIME_CHANGE: {
            float value = 0;
            len = decode_context_real(apdu, length, choice, &value);
            _datum.setReal(value);
            break;
        }
        case ENUM_VALUE: {
            uint32_t value = 0;
            len = decode_context_enumerated(apdu, length, choice, &value);
            _datum.setEnumerated(value);
            break;
        }
        case UNSIGNED_VALUE: {
            BACNET_UNSIGNED_INTEGER value = 0;
            len = decode_context_unsigned(apdu, length, choice, &value);
            _datum.setUnsigned(value);
            break;
        }
        case SIGNED_VALUE: {
            int32_t value = 0;
            len = decode_context_signed(apdu, length, choice, &value);
            _datum.setSigned(value);
            break;
        }
        case BITSTRING_VALUE: {
            BACNET_BIT_STRING bits{};
            len = decode_context_bitstring(apdu, length, choice, &bits);
            uint8_t bytes[DATUM_BITSTRING_BYTES];
            for (unsigned i = 0; i < DATUM_BITSTRING_BYTES; ++i) bytes[i] = mirror(bits.value[i]);
            _datum.setBitString(bytes, DATUM_BITSTRING_BYTES,
                                static_cast<uint8_t>(std::min<unsigned>(bits.bits_used, 32)));
            break;
        }
        case NULL_VALUE:
            len = decode_context_null(apdu, length, choice);
            break;
        default: {
            // A datum this record does not know (a newer revision's choice, or a constructed
            // any-value of another tag): skipped whole so the closing tag can still be checked.
            printLine("C) BACnetLogRecord::decode() UNKNOWN!!!");
            _choice = NO_VALUE;
            if (!tag.opening) return header + static_cast<int>(tag.len_value_type);
            const int inner = bacnet_enclosed_data_length(apdu, length);
            return inner < 0 ? BACNET_STATUS_ERROR : inner + 2 * header;
        }
    }
    if (len <= 0) return BACNET_STATUS_ERROR;
    _choice = choice;
    return len;
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
