// Input layout: byte 0 data type selector, byte 1 application tag, byte 2 structure and the
// empty-allowed flag, byte 3 value limit, byte 4 array index selector; the rest is the value's
// bytes. Whatever decodes must print, encode, merge, break into primitives, build again from them
// and read back from its text without a fault, and the decoder must report failure only through
// its result and error.
#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/ValueContainer.h"

#include <Poco/Exception.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

using namespace TQ::BACnet;

// Primitive types, no value, every class the container decodes constructed values into, and
// types it holds as their encoding.
const BACnetDataType DATA_TYPES[] = {BACNET_DT_NULL,
                                     BACNET_DT_BOOLEAN,
                                     BACNET_DT_UNSIGNED_INT,
                                     BACNET_DT_SIGNED_INT,
                                     BACNET_DT_REAL,
                                     BACNET_DT_DOUBLE,
                                     BACNET_DT_OCTET_STRING,
                                     BACNET_DT_CHARACTER_STRING,
                                     BACNET_DT_BIT_STRING,
                                     BACNET_DT_ENUMERATED,
                                     BACNET_DT_DATE,
                                     BACNET_DT_TIME,
                                     BACNET_DT_OBJECT_ID,
                                     BACNET_DT_ANY,
                                     BACNET_DT_DATE_TIME,
                                     BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE,
                                     BACNET_DT_DEVICE_OBJECT_REFERENCE,
                                     BACNET_DT_OBJECT_PROPERTY_REFERENCE,
                                     BACNET_DT_RECIPIENT,
                                     BACNET_DT_LOG_RECORD,
                                     BACNET_DT_TREND_LOG_LAST_UPLOADED,
                                     BACNET_DT_PROPERTY_VALUE};
constexpr size_t DATA_TYPE_COUNT = sizeof(DATA_TYPES) / sizeof(DATA_TYPES[0]);
const int ARRAY_INDEXES[] = {-1, 0, 1, 16};

void check(bool condition) {
    if (!condition) std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 5) return 0;
    const BACnetDataType datatype = DATA_TYPES[data[0] % DATA_TYPE_COUNT];
    // Tags beyond 12 are kept: a descriptor from a damaged catalogue must not crash either.
    const auto tag = static_cast<BACNET_APPLICATION_TAG>(data[1] % 16);
    const auto structure = static_cast<BACnetDataTypeStructure>(data[2] % 3);
    const bool emptyAllowed = (data[2] & 0x80) != 0;
    const unsigned maxValues = data[3] % 4;
    const int arrayIndex = ARRAY_INDEXES[data[4] % 4];
    const uint8_t* apdu = data + 5;
    const int length = static_cast<int>(size - 5);

    ValueContainer::DataPropertyInObject descriptor(datatype, tag, structure, emptyAllowed, 4);
    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    DataErrorRef error(errorClass, errorCode);
    ValueContainer container;
    const int consumed = container.decode(apdu, length, maxValues, descriptor, arrayIndex, error);
    check(consumed <= length);
    if (consumed < 0) return 0;

    std::string text;
    container.getText(text, false);
    TQ::Utility::OctetBuffer encoded;
    container.encode2(encoded);
    uint8_t apduOut[2 * ValueContainer::MAX_ENCODED];
    check(container.encode(apduOut) <= ValueContainer::MAX_ENCODED);
    container.getLastTimeStamp();
    container.getString(text, "|", true);
    container.getString(text, "|", false);

    // Merged over itself it stays valid; built again from its own primitives
    // it must not fault (a run no class reads stays primitives).
    ValueContainer copy(container);
    std::vector<DataApplicationValue> primitives;
    copy.getValues(primitives);
    std::string reason;
    check(copy.merge(container, 0, reason));
    if (!primitives.empty()) {
        copy.setApplicationValueLinks(primitives);
        primitives.back().next = nullptr;
        ValueContainer rebuilt;
        try {
            rebuilt.setApplicationValue(primitives.front(), &container.getDescriptor());
        } catch (const Poco::AssertionViolationException&) {
            // a lone primitive the descriptor cannot take: refused as documented
        }
        rebuilt.getText(text, false);
    }

    ValueContainer again;
    if (again.setText(container.getDataType(), container.getTag(), text, false)) {
        std::string second;
        again.getText(second, false);
    }
    return 0;
}
