#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/ValueContainer.h"
#include "tq_stack/context_decode.h"
#include "tq_stack/strings.h"

#include <Poco/Bugcheck.h>
#include <Poco/Exception.h>

#include <algorithm>
#include <iostream>

namespace TQ {
namespace BACnet {
namespace DataType {

namespace {

using Primitive = BACnet_Application_Data_Value;

/// The context tag of the status flags after the log datum.
constexpr uint8_t TAG_STATUS_FLAGS = 2;

bool isPseudoTag(const Primitive* p, uint8_t pseudoTag, uint8_t number) {
    return p && p->context_specific && p->tag == pseudoTag && p->context_tag == number;
}

const Primitive* skipPseudoTag(const Primitive* p, uint8_t pseudoTag, uint8_t number) {
    return isPseudoTag(p, pseudoTag, number) ? p->next : p;
}

uint16_t errorPart(const Primitive* p) {
    if (!p) throw Poco::DataFormatException("BACnetLogRecord: failure datum without error code");
    const auto tag = p->tag;
    poco_assert(tag == BACNET_APPLICATION_TAG_ENUMERATED || tag == BACNET_APPLICATION_TAG_UNSIGNED_INT);
    const uint32_t value =
        tag == BACNET_APPLICATION_TAG_ENUMERATED ? p->type.Enumerated : p->type.Unsigned_Int;
    if (value > 0xFFFFu) throw Poco::DataFormatException("BACnetLogRecord: error class or code out of range");
    return static_cast<uint16_t>(value);
}

void refuse(const char* operation, unsigned tag) {
    std::cerr << operation << tag << std::endl;
}

}  // namespace

BACnetLogRecord::BACnetLogRecord(const DataPropertyInObject0& /*descriptor*/, const DataApplicationValue& v,
                                 const DataApplicationValue** next) {
    // A context-guided decode brackets the members with pseudo tags; a flat chain does not.
    // Both are read, so the record does not depend on which decoder made the chain.
    const Primitive* cur = skipPseudoTag(&v, BACNET_PSEUDO_TAG_OPENING, 0);
    if (!cur || cur->tag != BACNET_APPLICATION_TAG_DATE) {
        throw Poco::DataFormatException(
            "BACnetLogRecord: a log record starts with the date of its timestamp");
    }
    BACNET_DATE_TIME local;
    local.date = cur->type.Date;
    local.time = BACNET_TIME{0, 0, 0, 0};
    cur = cur->next;
    if (cur && cur->tag == BACNET_APPLICATION_TAG_TIME) {
        local.time = cur->type.Time;
        cur = cur->next;
    }
    Poco::Timestamp moment;
    if (!BACnetDateTime::toTimestamp(local, moment)) {
        throw Poco::DataFormatException("BACnetLogRecord: the timestamp is not a moment in time");
    }
    setTimestamp(moment);
    cur = skipPseudoTag(cur, BACNET_PSEUDO_TAG_CLOSING, 0);

    const bool bracketed = isPseudoTag(cur, BACNET_PSEUDO_TAG_OPENING, 1);
    if (bracketed) cur = cur->next;
    if (isPseudoTag(cur, BACNET_PSEUDO_TAG_OPENING, FAILURE)) {
        const uint16_t errorClass = errorPart(cur->next);
        const uint16_t errorCode = errorPart(cur->next->next);
        _datum.setError(errorClass, errorCode);
        _choice = FAILURE;
        cur = skipPseudoTag(cur->next->next->next, BACNET_PSEUDO_TAG_CLOSING, FAILURE);
    } else if (cur && !(bracketed && isPseudoTag(cur, BACNET_PSEUDO_TAG_CLOSING, 1)) &&
               !(cur->tag == BACNET_APPLICATION_TAG_DATE && !cur->context_specific)) {
        // A date here starts the next record: this one logged nothing, and the date stays.
        if (cur->context_specific && cur->context_tag == LOG_STATUS) {
            if (cur->tag != BACNET_APPLICATION_TAG_BIT_STRING) {
                throw Poco::DataFormatException("BACnetLogRecord: log-status is not a bit string");
            }
            if (cur->type.Bit_String.bits_used > 0)
                _datum.setLogStatus(mirror(cur->type.Bit_String.value[0]));
            _choice = LOG_STATUS;
            cur = cur->next;
        } else if (cur->context_specific && cur->context_tag == FAILURE) {
            const uint16_t errorClass = errorPart(cur);
            _datum.setError(errorClass, errorPart(cur->next));
            _choice = FAILURE;
            cur = cur->next->next;
        } else if (cur->context_specific && cur->context_tag == TIME_CHANGE) {
            if (cur->tag != BACNET_APPLICATION_TAG_REAL) {
                throw Poco::DataFormatException("BACnetLogRecord: time-change is not a real");
            }
            _datum.setReal(cur->type.Real);
            _choice = TIME_CHANGE;
            cur = cur->next;
        } else {
            if (!assignPrimitive(*cur)) {
                refuse("BACnetLogRecord::assignAppValue: Trying to log invalid TL-type: ", cur->tag);
            }
            cur = cur->next;
        }
    }
    if (bracketed) cur = skipPseudoTag(cur, BACNET_PSEUDO_TAG_CLOSING, 1);

    if (cur && cur->context_specific && cur->context_tag == TAG_STATUS_FLAGS &&
        cur->tag == BACNET_APPLICATION_TAG_BIT_STRING) {
        setStatusFlags(mirror(cur->type.Bit_String.value[0]));
        cur = cur->next;
    }
    // The chain's values are the caller's DataApplicationValues; the cast only restores that.
    if (next) *next = static_cast<const DataApplicationValue*>(cur);
}

bool BACnetLogRecord::assignPrimitive(const BACnet_Application_Data_Value& value) {
    switch (value.tag) {
        case BACNET_APPLICATION_TAG_NULL:
            _datum.clear();
            _choice = NULL_VALUE;
            return true;
        case BACNET_APPLICATION_TAG_BOOLEAN:
            _datum.setBoolean(value.type.Boolean);
            _choice = BOOLEAN_VALUE;
            return true;
        case BACNET_APPLICATION_TAG_UNSIGNED_INT:
            _datum.setUnsigned(value.type.Unsigned_Int);
            _choice = UNSIGNED_VALUE;
            return true;
        case BACNET_APPLICATION_TAG_SIGNED_INT:
            _datum.setSigned(value.type.Signed_Int);
            _choice = SIGNED_VALUE;
            return true;
        case BACNET_APPLICATION_TAG_REAL:
            _datum.setReal(value.type.Real);
            _choice = REAL_VALUE;
            return true;
        case BACNET_APPLICATION_TAG_BIT_STRING: {
            const BACNET_BIT_STRING& bits = value.type.Bit_String;
            const unsigned count = std::min<unsigned>((bits.bits_used + 7u) / 8u, DATUM_BITSTRING_BYTES);
            uint8_t bytes[DATUM_BITSTRING_BYTES] = {0, 0, 0, 0};
            for (unsigned i = 0; i < count; ++i) bytes[i] = mirror(bits.value[i]);
            _datum.setBitString(bytes, static_cast<uint8_t>(count),
                                static_cast<uint8_t>(std::min<unsigned>(bits.bits_used, 32)));
            _choice = BITSTRING_VALUE;
            return true;
        }
        case BACNET_APPLICATION_TAG_ENUMERATED:
            _datum.setEnumerated(value.type.Enumerated);
            _choice = ENUM_VALUE;
            return true;
        default:
            return false;
    }
}

bool BACnetLogRecord::assignAppValue(const DataApplicationValue& value) {
    // A typed null ("no value" of a REAL property) is logged as what it is: nothing.
    if (value.isNull()) return assignPrimitive(DataApplicationValue());
    if (assignPrimitive(value)) return true;
    refuse("BACnetLogRecord::assignAppValue: Trying to log invalid TL-type: ", value.tag);
    return false;
}

bool BACnetLogRecord::assignValue(const ValueContainer& value) {
    if (value.getStructure() != BACNET_DTS_SINGLE_VALUE || !value.isPrimitive()) return false;
    const auto* single = Poco::AnyCast<DataApplicationValue>(&value.getAny());
    return single && assignAppValue(*single);
}

bool BACnetLogRecord::assignValue(const ANY& value) {
    const DataPropertyInObject0& descriptor = value.getDescriptor();
    if (descriptor.structure != BACNET_DTS_SINGLE_VALUE) return false;
    if (descriptor.tag == BACNET_APPLICATION_TAG_NULL &&
        descriptor.datatype > BACNET_DT_MAX_APPLICATION_TAG) {
        return false;
    }
    // Whether the descriptor's kind can be logged at all is asked of a zeroed stand-in, so the
    // answer comes from the one table of loggable kinds and this record stays untouched.
    BACnet_Application_Data_Value probe{};
    probe.tag = static_cast<uint8_t>(descriptor.tag);
    BACnetLogRecord trial(*this);
    if (!trial.assignPrimitive(probe)) {
        refuse("BACnetLogRecord::assignAppValue(ANY): Trying to log invalid TL-type: ", descriptor.tag);
        return false;
    }
    if (descriptor.tag == BACNET_APPLICATION_TAG_NULL) {
        *this = trial;
        return true;
    }

    unsigned length = 0;
    const uint8_t* bytes = value.getValue(&length);
    DataApplicationValue held;
    if (!bytes || held.decode(bytes, length) <= 0 || held.context_specific) return false;
    // Read leniently: whatever the bytes hold is taken as the descriptor's kind when it converts.
    try {
        held.applyTag(descriptor.tag);
    } catch (const Poco::BadCastException&) {
        return false;
    }
    if (held.isNull()) return assignPrimitive(DataApplicationValue());
    return assignPrimitive(held);
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
