#include "AddressTestSupport.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/Error.h"

#include <gtest/gtest.h>

using TQ::BACnet::DataApplicationValue;
using TQ::BACnet::DataType::Error;
using TQ::Utility::OctetBuffer;
using namespace TQAddressTest;

namespace {
// Class property (2), code unknown-property (32), each an application-tagged Enumerated.
const Bytes unknownProperty = {0x91, 0x02, 0x91, 0x20};

int encodeUnknownProperty(OctetBuffer& buffer, unsigned offset) {
    return Error::encode(buffer, ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY, offset);
}
}  // namespace

TEST(Error, EncodesTheProductionInPlaceOrByGrowing) {
    uint8_t apdu[16];
    ASSERT_EQ(Error::encode(apdu, ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY), 4);
    EXPECT_EQ(Bytes(apdu, apdu + 4), unknownProperty);
    ASSERT_EQ(Error::encode(apdu, ERROR_CLASS_PROPERTY, static_cast<BACNET_ERROR_CODE>(300)), 5);
    EXPECT_EQ(Bytes(apdu, apdu + 5), (Bytes{0x91, 0x02, 0x92, 0x01, 0x2C}));

    // Too small: grows to end with the production, keeping what is before the offset.
    OctetBuffer grown(Bytes{0xAA, 0xBB}.data(), 2);
    EXPECT_EQ(encodeUnknownProperty(grown, 1), 4);
    EXPECT_EQ(grown.getHexString(), "AA91029120");
    // Room for 20 bytes past the offset: written in place, the size stays the caller's.
    OctetBuffer roomy;
    roomy.reserve(64);
    roomy.resize(3);
    EXPECT_EQ(encodeUnknownProperty(roomy, 2), 4);
    EXPECT_EQ(roomy.size(), 3u);
    EXPECT_EQ(Bytes(roomy.data() + 2, roomy.data() + 6), unknownProperty);
    // Foreign storage: in place when it fits, refused when it would have to grow.
    uint8_t storage[24] = {};
    OctetBuffer fits = OctetBuffer::over(storage, sizeof storage);
    EXPECT_EQ(encodeUnknownProperty(fits, 4), 4);
    EXPECT_EQ(Bytes(storage + 4, storage + 8), unknownProperty);
    OctetBuffer tooSmall = OctetBuffer::over(storage, sizeof storage);
    EXPECT_EQ(messageOf<Poco::InvalidAccessException>([&] { encodeUnknownProperty(tooSmall, 5); }),
              "Cannot resize buffer which does not own its storage.");
}

TEST(Error, StandsInForAValueWithoutAnEncodingOfItsOwn) {
    Error error(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY);
    uint8_t apdu[16];
    EXPECT_EQ(error.encode(apdu), -1);
    EXPECT_EQ(error.encodeContext(apdu, 0), -1);
    EXPECT_EQ(error.decode(unknownProperty.data(), 4), -1);
    EXPECT_EQ(error.decodeContext(unknownProperty.data(), 4, 0), -1);
    EXPECT_FALSE(error.setString("91029120"));
    EXPECT_EQ(error, Error(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY));

    // Printing a failed property shows the error rather than an empty text.
    std::string text;
    error.getString(text);
    EXPECT_NE(text.find("unknown-property"), std::string::npos) << text;

    std::vector<DataApplicationValue> primitives;
    error.getBACnetPrimitives(primitives);
    ASSERT_EQ(primitives.size(), 2u);
    EXPECT_EQ(primitives[0].type.Enumerated, 2u);
    EXPECT_EQ(primitives[1].type.Enumerated, 32u);

    // Built empty from primitives, which stay where they are.
    const DataApplicationValue* next = &primitives[0];
    EXPECT_EQ(Error(TQ::BACnet::DataPropertyInObject0(), primitives[0], &next), Error());
    EXPECT_EQ(next, &primitives[0]);
}
