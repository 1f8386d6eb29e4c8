#include "ReferenceTestSupport.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/Proprietary/Vendor947/BACnetTrendLogLastUploaded.h"

#include "tq_stack/datetime.h"

#include <Poco/LocalDateTime.h>

#include <gtest/gtest.h>

#include <cstdlib>

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using namespace TQReferenceTest;
using TQ::BACnet::DataType::Proprietary::Vendor947::BACnetTrendLogLastUploaded;

namespace {

const ObjectIdentifier DEVICE1234(OBJECT_DEVICE, 1234);
const ObjectIdentifier TREND_LOG1(OBJECT_TREND_LOG, 1);

/// The upload moment is written in local time, so the tests build it from local fields.
Poco::Timestamp localMoment(int year, int month, int day, int hour, int minute, int second, int millisecond,
                            int microsecond = 0) {
    return Poco::LocalDateTime(year, month, day, hour, minute, second, millisecond, microsecond).timestamp();
}

// [0] device,1234  [1] trend-log,1  Date 2024-03-15 (Friday)  Time 10:20:30.45
const char* const RECORD = "0C 020004D2 1C 05000001 A4 7C 03 0F 05 B4 0A 14 1E 2D";

}  // namespace

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
    EXPECT_FALSE(fresh.hasDevice());
    EXPECT_EQ(1024u, fresh.objectIdentifier.type);
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
    for (std::size_t n = 0; n < bytes.size(); ++n) {
        EXPECT_EQ(-1, decodeExactly(decoded, bytes, n)) << n;
        EXPECT_EQ(before, decoded) << n;
    }
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
    uint8_t framed[32];
    BACnetTrendLogLastUploaded source = before;
    ASSERT_EQ(22, source.encodeContext(framed, 2));
    EXPECT_EQ(0x2E, framed[0]);
    EXPECT_EQ(0x2F, framed[21]);
    BACnetTrendLogLastUploaded back;
    EXPECT_EQ(22, back.decodeContext(framed, 22u, 2));
    EXPECT_EQ(before, back);

    std::string text;
    before.getString(text);
    EXPECT_EQ("0C020004D21C05000001A47C030F05B40A141E2D", text);
    BACnetTrendLogLastUploaded parsed;
    EXPECT_TRUE(parsed.setString(text));
    EXPECT_EQ(before, parsed);
}

// The full record's walk is covered with the other references; a date without time is its own case.
TEST(TrendLogLastUploaded, DateWithoutTimeIsMidnight) {
    DataApplicationValue date;
    BACNET_DATE_TIME moment;
    ASSERT_EQ(10, bacapp_decode_datetime(hex("A4 7C 03 0F 05 B4 0A 14 1E 2D").data(), 10, &moment));
    date.setDate(Date(moment.date));

    const DataApplicationValue* next = nullptr;
    Chain dateOnly;
    dateOnly.ctx(1, objectId(TREND_LOG1.getValue())).app(date);
    const BACnetTrendLogLastUploaded midnight(DataPropertyInObject0(), dateOnly.first(), &next);
    EXPECT_EQ(localMoment(2024, 3, 15, 0, 0, 0, 0), midnight.getTimestamp());
    EXPECT_EQ(TREND_LOG1, midnight.getObjectIdentifier());
    EXPECT_EQ(nullptr, next);
}
