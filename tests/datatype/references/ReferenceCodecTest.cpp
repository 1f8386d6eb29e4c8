#include "TQTestSupport.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectReference.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetPropertyValue.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/Proprietary/Vendor947/BACnetTrendLogLastUploaded.h"
#include "tq_stack/datetime.h"
#include "tq_stack/rp.h"
#include "tq_stack/rr.h"

#include <Poco/LocalDateTime.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <tuple>

using TQ::BACnet::DataType::Proprietary::Vendor947::BACnetTrendLogLastUploaded;
using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using namespace TQTest;

namespace {

const ObjectIdentifier AI3(OBJECT_ANALOG_INPUT, 3);
const ObjectIdentifier DEVICE1234(OBJECT_DEVICE, 1234);
const ObjectIdentifier NO_DEVICE;
const ObjectIdentifier TREND_LOG1(OBJECT_TREND_LOG, 1);

/// The upload moment is written in local time, so the tests build it from local fields.
Poco::Timestamp localMoment(int year, int month, int day, int hour, int minute, int second, int millisecond,
                            int microsecond = 0) {
    return Poco::LocalDateTime(year, month, day, hour, minute, second, millisecond, microsecond).timestamp();
}

// [0] device,1234  [1] trend-log,1  Date 2024-03-15 (Friday)  Time 10:20:30.45
const char* const RECORD = "0C 020004D2 1C 05000001 A4 7C 03 0F 05 B4 0A 14 1E 2D";

}  // namespace

TEST(ReferenceCodec, OptionalMembersAppearOnlyWhenPresent) {
    // [0] object  [1] property  [2] index, absent for "all"; index 0 is the array's length.
    using OPR = BACnetObjectPropertyReference;
    expectWireForm(OPR(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL), "0C 00000003 19 55");
    expectWireForm(OPR(AI3, PROP_PRIORITY_ARRAY, 0), "0C 00000003 19 57 29 00");
    // A property number above 255 and a two-byte index.
    expectWireForm(OPR(ObjectIdentifier(OBJECT_DEVICE, 1), static_cast<BACNET_PROPERTY_ID>(512), 300),
                   "0C 02000001 1A 0200 2A 012C");
    // [0] device, absent when there is none  [1] object
    expectWireForm(BACnetDeviceObjectReference(1234u, AI3), "0C 020004D2 1C 00000003", {}, false);
    expectWireForm(BACnetDeviceObjectReference(NO_DEVICE, AI3), "1C 00000003", {}, false);
    // [0] object  [1] property  [2] index  [3] device
    using DOPR = BACnetDeviceObjectPropertyReference;
    expectWireForm(DOPR(1234u, OBJECT_ANALOG_INPUT, 3u, PROP_PRIORITY_ARRAY, 8u),
                   "0C 00000003 19 57 29 08 3C 020004D2");
    expectWireForm(DOPR(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, NO_DEVICE), "0C 00000003 19 55");
    expectWireForm(DOPR(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, DEVICE1234),
                   "0C 00000003 19 55 3C 020004D2");
    // The members of a property reference start at its first tag; from 15 on with an extension octet.
    using PR = BACnetPropertyReference;
    expectWireForm(PR(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 0), "09 55", PR(0), false);
    expectWireForm(PR(PROP_PRIORITY_ARRAY, 0, 0), "09 57 19 00", PR(0), false);
    expectWireForm(PR(PROP_PRIORITY_ARRAY, 16, 3), "39 57 49 10", PR(3), false);
    expectWireForm(PR(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 15), "F9 0F 55", PR(15), false);
    uint8_t buffer[8];
    EXPECT_EQ(-1, PR(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 254).encode(buffer));
    // Read with the standard's first tag, bytes under tag 3 are not a reference.
    PR standard;
    EXPECT_EQ(-1, decodeExactly(standard, hex("39 57 49 10"), 4));
}

TEST(ReferenceCodec, CutsAndBrokenInputAreRefused) {
    // Cut before an optional member, a reference reads as one without it.
    expectEveryCutRefused(BACnetObjectPropertyReference(), hex("0C 00000003 19 57 29 08"), {{7, 7}});
    expectEveryCutRefused(BACnetDeviceObjectReference(), hex("0C 020004D2 1C 00000003"));
    expectEveryCutRefused(BACnetDeviceObjectPropertyReference(), hex("0C 00000003 19 57 29 08 3C 020004D2"),
                          {{7, 7}, {9, 9}});
    expectEveryCutRefused(BACnetPropertyReference(3), hex("39 57 49 10"), {{2, 2}});
    expectMutationsStayInBounds<BACnetObjectPropertyReference>(hex("0C 00000003 19 57 29 08"));
    expectMutationsStayInBounds<BACnetDeviceObjectReference>(hex("0C 020004D2 1C 00000003"));
    expectMutationsStayInBounds<BACnetDeviceObjectPropertyReference>(
        hex("0C 00000003 19 57 29 08 3C 020004D2"));
    expectMutationsStayInBounds<BACnetPropertyValue>(hex("09 55 2E 44 41AC0000 2F 39 08"));
    BACnetObjectPropertyReference ref(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL);
    const BACnetObjectPropertyReference before = ref;
    // Cuts are swept above; here members missing or under the wrong tag.
    for (const char* broken : {"19 55", "0C 00000003 29 08", "1C 00000003 19 55"}) {
        EXPECT_EQ(-1, decodeExactly(ref, hex(broken), hex(broken).size())) << broken;
        EXPECT_EQ(before, ref) << broken;
    }
    EXPECT_EQ(-1, ref.decode(nullptr, 10));
    // What follows a reference without index belongs to the caller.
    EXPECT_EQ(7, decodeExactly(ref, hex("0C 00000003 19 55 3E"), 8));
    const Bytes wrongClose = hex("1E 0C 00000003 19 55 2F");
    EXPECT_EQ(-1, ref.decodeContext(wrongClose.data(), 9u, 1));
    for (const char* bad : {"0C0000000319", "0C0000000", "zz", ""}) EXPECT_FALSE(ref.setString(bad)) << bad;
    EXPECT_EQ(before, ref);
    BACnetDeviceObjectReference dor(1234u, AI3);
    uint8_t framed[16];
    ASSERT_EQ(12, dor.encodeContext(framed, 3));
    EXPECT_EQ(-1, dor.decodeContext(framed, 11u, 3));
}

TEST(ObjectPropertyReference, DefaultsAndRequestRecords) {
    const BACnetObjectPropertyReference fresh;
    EXPECT_TRUE(fresh.getObjectIdentifier().getValue() == 0 && !fresh.hasArrayIndex());
    EXPECT_EQ(BACnetObjectPropertyReference::NO_PROPERTY, fresh.getPropertyIdentifier());
    EXPECT_EQ(BACNET_DT_OBJECT_PROPERTY_REFERENCE, fresh.getBACnetDataType());
    const BACnetObjectPropertyReference ref(ObjectIdentifier(OBJECT_TREND_LOG, 7), PROP_LOG_BUFFER, 4);
    // Request records come back as the same reference, with no data and no error yet.
    BACNET_READ_PROPERTY_DATA rp;
    BACNET_READ_RANGE_DATA rr;
    rp.application_data_len = rr.application_data_len = 99;
    ref.get(rp);
    ref.get(rr);
    EXPECT_EQ(std::make_tuple(0, 8, 0, 0, 8),
              std::make_tuple(rp.application_data_len, int(rp.error_class), int(rp.error_code),
                              rr.application_data_len, int(rr.error_class)));
    BACnetObjectPropertyReference fromRp, fromRr;
    fromRp = rp;
    fromRr = rr;
    EXPECT_TRUE(ref == fromRp && ref == fromRr);
    EXPECT_EQ(BACnetObjectPropertyReference(AI3, PROP_PRESENT_VALUE, 2),
              BACnetObjectPropertyReference(BACnetDeviceObjectPropertyReference(
                  AI3, PROP_PRESENT_VALUE, 2, ObjectIdentifier(OBJECT_DEVICE, 9))));
}

TEST(DeviceObjectReference, DefaultsMaskingAndKey) {
    const BACnetDeviceObjectReference none;
    EXPECT_TRUE(!none.hasDevice() && none.getDeviceIdentifier().getValue() == 0);
    EXPECT_EQ(std::make_tuple(1024u, 0x3FFFFFu), std::make_tuple(unsigned(none.objectIdentifier.type),
                                                                 unsigned(none.objectIdentifier.instance)));
    EXPECT_EQ(BACNET_DT_DEVICE_OBJECT_REFERENCE, none.getBACnetDataType());
    // A device instance wider than 22 bits keeps only what the identifier can carry.
    const BACnetDeviceObjectReference ref(0x400000u | 1234u, OBJECT_ANALOG_INPUT, 3);
    EXPECT_EQ(ref, BACnetDeviceObjectReference(DEVICE1234, AI3));
    EXPECT_NE(ref, BACnetDeviceObjectReference(1235u, AI3));
    EXPECT_NE(ref, BACnetDeviceObjectReference(1234u, ObjectIdentifier(OBJECT_ANALOG_INPUT, 4)));
    // The key packs the device high and the object low; a bare device instance names the same device.
    EXPECT_EQ(0x020004D200000003ull, ref.getKey());
    BACnetDeviceObjectReference back;
    back.setKey(ref.getKey());
    EXPECT_TRUE(ref == back && back.deviceIdentifier.type == OBJECT_DEVICE);
    EXPECT_EQ(ref, BACnetDeviceObjectReference(0x000004D200000003ull));
    // All ones in the high word, and a decoded reference without device: no device, keyed as 0.
    const BACnetDeviceObjectReference local(0xFFFFFFFF00000003ull);
    EXPECT_TRUE(!local.hasDevice() && local.deviceIdentifier.type == 0 &&
                local.deviceIdentifier.instance == 0);
    EXPECT_EQ(3ull, local.getKey());
    BACnetDeviceObjectReference decoded;
    ASSERT_EQ(5, decodeExactly(decoded, hex("1C 00000003"), 5));
    EXPECT_EQ(local, decoded);
    EXPECT_EQ(BACnetDeviceObjectReference(NO_DEVICE, AI3), decoded);
}

TEST(DeviceObjectPropertyReference, DefaultsResetInitAndHexIdentifier) {
    // Object type and instance, property, index, device type and instance.
    const auto fields = [](const BACnetDeviceObjectPropertyReference& r) {
        return std::make_tuple(r.objectIdentifier.type, r.objectIdentifier.instance,
                               static_cast<unsigned>(r.propertyIdentifier), r.arrayIndex,
                               r.deviceIdentifier.type, r.deviceIdentifier.instance);
    };
    BACnetDeviceObjectPropertyReference ref;
    EXPECT_EQ(fields(ref), std::make_tuple(1023u, 0u, 0xFFFFFEu, BACNET_ARRAY_ALL, 0xFFFFu, 0xFFFFFFFFu));
    EXPECT_EQ(BACNET_DT_DEVICE_OBJECT_PROPERTY_REFERENCE, ref.getBACnetDataType());
    const BACnetDeviceObjectPropertyReference full(1234u, OBJECT_ANALOG_INPUT, 3u, PROP_PRIORITY_ARRAY, 8u);
    ref = full;
    ref.reset();
    EXPECT_EQ(fields(ref), std::make_tuple(1023u, 0u, 0xFFFFFEu, BACNET_ARRAY_ALL, 1023u, 0u));
    ref = full;
    ref.init();  // keeps object and property only
    EXPECT_EQ(BACnetDeviceObjectPropertyReference(AI3, PROP_PRIORITY_ARRAY, BACNET_ARRAY_ALL, NO_DEVICE),
              ref);
    // Every spelling of "no device" is the same reference.
    const BACnetDeviceObjectPropertyReference viaReset(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, NO_DEVICE);
    BACnetDeviceObjectPropertyReference viaInit(viaReset);
    viaInit.init();
    EXPECT_EQ(viaReset, viaInit);
    EXPECT_NE(viaReset,
              BACnetDeviceObjectPropertyReference(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, DEVICE1234));
    // The hexadecimal identifier takes the default device only when the reference has none.
    std::string out = "stale";
    viaReset.getHexIdentifier(DEVICE1234, out);
    EXPECT_EQ("020004D20000000300000055FFFFFFFF", out);
    BACnetDeviceObjectPropertyReference(AI3, PROP_PRIORITY_ARRAY, 16, DEVICE1234)
        .getHexIdentifier(ObjectIdentifier(OBJECT_DEVICE, 99), out);
    EXPECT_EQ("020004D2000000030000005700000010", out);
}

TEST(PropertyValue, EncodesReferenceValueAndOptionalPriority) {
    ValueContainer value;
    value.setReal(21.5f);
    const BACnetPropertyValue withPriority(BACnetPropertyReference(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 7),
                                           value, 8);
    EXPECT_TRUE(withPriority.getFirstTag() == 0 &&
                withPriority.getBACnetDataType() == BACNET_DT_PROPERTY_VALUE);
    // [0] present-value  [2] { REAL 21.5 }  [3] 8
    const Bytes bytes = hex("09 55 2E 44 41AC0000 2F 39 08");
    EXPECT_EQ(bytes, encoded(withPriority));
    EXPECT_EQ(hex("09 57 19 03 2E 44 41AC0000 2F"),
              encoded(BACnetPropertyValue(BACnetPropertyReference(PROP_PRIORITY_ARRAY, 3, 0), value, -1)));
    // No property yet and a null value.
    const BACnetPropertyValue empty;
    EXPECT_EQ(hex("0B FFFFFE 2E 00 2F"), encoded(empty));
    EXPECT_TRUE(empty.getPriority() == BACnetPropertyValue::NO_PRIORITY && empty.encode(nullptr) == 0);
    BACnetPropertyValue decoded;
    ASSERT_EQ(static_cast<int>(bytes.size()), decodeExactly(decoded, bytes, bytes.size()));
    EXPECT_EQ(std::make_tuple(PROP_PRESENT_VALUE, 8, 21.5f),
              std::make_tuple(decoded.getPropertyIdentifier(), decoded.getPriority(),
                              decoded.getValue().getReal(false)));
    EXPECT_EQ(bytes, encoded(decoded));
    // A list value: every primitive between the tags is kept.
    const Bytes list = hex("09 57 2E 21 01 21 02 2F");
    ASSERT_EQ(8, decodeExactly(decoded, list, list.size()));
    EXPECT_EQ(BACnetPropertyValue::NO_PRIORITY, decoded.getPriority());
    EXPECT_EQ(list, encoded(decoded));
    ValueContainer four;
    four.setUInt(4);
    uint8_t buffer[16];
    const BACnetPropertyValue framed(BACnetPropertyReference(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 0), four,
                                     -1);
    ASSERT_EQ(8, framed.encodeContext(buffer, 0));
    EXPECT_EQ(hex("0E 09 55 2E 21 04 2F 0F"), Bytes(buffer, buffer + 8));
}

TEST(PropertyValue, RejectsBrokenInputAndKeepsTheValue) {
    ValueContainer value;
    value.setUInt(4);
    BACnetPropertyValue decoded(BACnetPropertyReference(PROP_OUT_OF_SERVICE, BACNET_ARRAY_ALL, 0), value, 1);
    const Bytes before = encoded(decoded);
    // Cut inside the value or the priority; without a value only the reference is read, and
    // after the closing tag the priority is optional.
    const Bytes full = hex("09 55 2E 44 41AC0000 2F 39 08");
    for (std::size_t n = 0; n < full.size(); ++n) {
        const int result = decodeExactly(decoded, full, n);
        if (n == 2 || n == 9) {
            EXPECT_EQ(static_cast<int>(n), result);
            decoded = BACnetPropertyValue(BACnetPropertyReference(PROP_OUT_OF_SERVICE, BACNET_ARRAY_ALL, 0),
                                          value, 1);
            continue;
        }
        EXPECT_EQ(-1, result) << n;
        EXPECT_EQ(before, encoded(decoded)) << n;
    }
    for (const char* broken :
         {"09 55 2E 0C 00000003 2F", "09 55 2E 44 41AC0000 3F", "19 55 2E 44 41AC0000 2F"}) {
        EXPECT_EQ(-1, decodeExactly(decoded, hex(broken), hex(broken).size())) << broken;
        EXPECT_EQ(before, encoded(decoded)) << broken;
    }
    EXPECT_EQ(2, decodeExactly(decoded, hex("09 55 39 08"), 4));
}

TEST(TrendLogLastUploaded, EncodesReferenceThenLocalDateTime) {
    const BACnetTrendLogLastUploaded record(DEVICE1234, TREND_LOG1,
                                            localMoment(2024, 3, 15, 10, 20, 30, 450, 999));
    EXPECT_EQ(hex(RECORD), encoded(record));
    EXPECT_EQ(BACNET_DT_TREND_LOG_LAST_UPLOADED, record.getBACnetDataType());
    // Kept to the hundredth, the resolution of the encoding.
    EXPECT_EQ(localMoment(2024, 3, 15, 10, 20, 30, 450), record.getTimestamp());
    // Without a device only the object precedes the date-time.
    const BACnetTrendLogLastUploaded local(ObjectIdentifier(), TREND_LOG1,
                                           localMoment(2024, 3, 15, 10, 20, 30, 450));
    EXPECT_EQ(hex("1C 05000001 A4 7C 03 0F 05 B4 0A 14 1E 2D"), encoded(local));
    const BACnetTrendLogLastUploaded fresh;
    EXPECT_TRUE(!fresh.hasDevice() && fresh.objectIdentifier.type == 1024);
    EXPECT_LE(std::abs(Poco::Timestamp() - fresh.getTimestamp()), 5 * Poco::Timestamp::resolution());
    EXPECT_EQ(0, fresh.getTimestamp().epochMicroseconds() % 10000);
}

TEST(TrendLogLastUploaded, DecodesBackAndRefusesBrokenOrUnspecifiedMoments) {
    const Bytes bytes = hex(RECORD);
    BACnetTrendLogLastUploaded decoded;
    ASSERT_EQ(20, decodeExactly(decoded, bytes, bytes.size()));
    EXPECT_EQ(BACnetTrendLogLastUploaded(DEVICE1234, TREND_LOG1, localMoment(2024, 3, 15, 10, 20, 30, 450)),
              decoded);
    EXPECT_EQ(bytes, encoded(decoded));
    const BACnetTrendLogLastUploaded before = decoded;
    expectEveryCutRefused(before, bytes);
    expectMutationsStayInBounds<BACnetTrendLogLastUploaded>(bytes);
    // Unspecified hour, and an impossible day: no moment to store.
    for (const char* broken :
         {"1C 05000001 A4 7C 03 0F 05 B4 FF 14 1E 2D", "1C 05000001 A4 7C 02 1E FF B4 0A 14 1E 2D",
          "1C 05000001 B4 0A 14 1E 2D A4 7C 03 0F 05"}) {
        const Bytes b = hex(broken);
        EXPECT_EQ(-1, decodeExactly(decoded, b, b.size())) << broken;
        EXPECT_EQ(before, decoded) << broken;
    }
    // Unspecified hundredths only blur the moment.
    const Bytes blurred = hex("1C 05000001 A4 7C 03 0F 05 B4 0A 14 1E FF");
    ASSERT_EQ(15, decodeExactly(decoded, blurred, blurred.size()));
    EXPECT_EQ(localMoment(2024, 3, 15, 10, 20, 30, 0), decoded.getTimestamp());
    EXPECT_FALSE(decoded.hasDevice());
    // The context form frames the whole record, date-time included.
    expectWireForm(before, RECORD);
}

// The full record's walk is covered with the other references; a date without time is its own case.
TEST(TrendLogLastUploaded, DateWithoutTimeIsMidnight) {
    DataApplicationValue date;
    BACNET_DATE_TIME moment;
    ASSERT_EQ(10, bacapp_decode_datetime(hex("A4 7C 03 0F 05 B4 0A 14 1E 2D").data(), 10, &moment));
    date.setDate(Date(moment.date));
    const DataApplicationValue* next = nullptr;
    std::vector<DataApplicationValue> dateOnly = {context(objectIdValue(TREND_LOG1), 1), date};
    link(dateOnly);
    const BACnetTrendLogLastUploaded midnight(DataPropertyInObject0(), dateOnly[0], &next);
    EXPECT_EQ(localMoment(2024, 3, 15, 0, 0, 0, 0), midnight.getTimestamp());
    EXPECT_TRUE(midnight.getObjectIdentifier() == TREND_LOG1 && next == nullptr);
}
