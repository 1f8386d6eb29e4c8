#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataWriteProperty.h"

#include <cstring>

#include <gtest/gtest.h>

using TQ::BACnet::DataError;

TEST(DataErrorText, errorsAbortsRejectsAndNoError) {
    const auto code = [](unsigned c) { return static_cast<BACNET_ERROR_CODE>(c); };
    const struct {
        DataError error;
        bool numbers;
        const char* text;
    } cases[] = {
        {DataError(), true, ""},
        {{ERROR_CLASS_PROPERTY, code(257)}, true, ""},
        {{ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY},
         true,
         "BACnet Error: property (2) : unknown-property (32)"},
        {{ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY},
         false,
         "BACnet Error: property : unknown-property"},
        {{DataError::ABORT_CLASS, code(4)}, false, "BACnet Abort: segmentation-not-supported"},
        {{DataError::ABORT_CLASS, code(4)}, true, "BACnet Abort: segmentation-not-supported (4)"},
        {{DataError::REJECT_CLASS, code(9)}, true, "BACnet Reject: unrecognized-service (9)"},
        // Numbers without a name leave the name's place empty.
        {{static_cast<BACNET_ERROR_CLASS>(300), code(9999)}, true, "BACnet Error:  (300) :  (9999)"},
    };
    for (const auto& c : cases) EXPECT_EQ(c.text, c.error.getString(c.numbers));
    EXPECT_TRUE(cases[4].error.isAbort() && !cases[4].error.isReject());
    EXPECT_TRUE(cases[6].error.isReject() && !cases[6].error.isAbort());
}

TEST(DataErrorEncoding, errorProductionAtOffset) {
    TQ::Utility::OctetBuffer buffer;
    buffer.append(0xAA);
    const DataError error(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY);
    EXPECT_EQ(4, error.encode(buffer, 1));
    EXPECT_EQ("AA 91 02 91 20", buffer.getHexString(true));
    EXPECT_EQ(4, error.encode(buffer, 3));
    EXPECT_TRUE(buffer.size() == 7 && buffer.data()[3] == 0x91);
    EXPECT_EQ(6,
              DataError(DataError::NO_ERROR_CLASS, static_cast<BACNET_ERROR_CODE>(65535)).encode(buffer, 0));
    EXPECT_EQ("92 FF FF 92 FF FF", buffer.getHexString(true));
}

TEST(DataWritePropertyRequest, fillsTheCallersRecord) {
    BACnet_Write_Property_Data data{};
    TQ::BACnet::DataWriteProperty request(data, true);
    EXPECT_TRUE(request.getFlag());
    TQ::Utility::OctetBuffer value(std::string("4443F80000"));
    ASSERT_TRUE(request.set(static_cast<BACNET_OBJECT_TYPE>(2), 0x400003, static_cast<BACNET_PROPERTY_ID>(85),
                            BACNET_ARRAY_ALL, value, 8));
    EXPECT_EQ((std::vector<unsigned>{2, 3, 85, 5, 8, 8, 200}),
              (std::vector<unsigned>{data.object_type, data.object_instance, data.object_property,
                                     unsigned(data.application_data_len), unsigned(data.priority),
                                     data.error_class, data.error_code}));
    std::string hex;
    EXPECT_EQ("4443F80000", request.getApduAsHexString(hex));

    // The error part writes into the record itself.
    request.setError(ERROR_CLASS_PROPERTY, ERROR_CODE_WRITE_ACCESS_DENIED);
    EXPECT_EQ(ERROR_CLASS_PROPERTY, data.error_class);
    BACnet_Write_Property_Data copy{};
    request.getC(copy);
    EXPECT_TRUE(copy.application_data_len == 5 && copy.error_code == ERROR_CODE_WRITE_ACCESS_DENIED);
    EXPECT_EQ(0, std::memcmp(copy.application_data, data.application_data, 5));

    TQ::Utility::OctetBuffer longest(1475), tooLong(1476);
    EXPECT_TRUE(request.set(static_cast<BACNET_OBJECT_TYPE>(2), 1, static_cast<BACNET_PROPERTY_ID>(87), 3,
                            longest, 0));
    EXPECT_EQ(1475, data.application_data_len);
    EXPECT_FALSE(request.set(static_cast<BACNET_OBJECT_TYPE>(4), 9, static_cast<BACNET_PROPERTY_ID>(85), 1,
                             tooLong, 16));
    EXPECT_EQ(4u, data.object_type);  // the target is taken, the value is not
    EXPECT_EQ(16, data.priority);
    EXPECT_EQ(1475, data.application_data_len);
}
