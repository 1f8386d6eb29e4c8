#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataError.h"
#include "TQ_BACnet/DataErrorRef.h"
#include "TQ_BACnet/DataErrorWithId.h"
#include "TQ_BACnet/DataWriteProperty.h"

#include <cstring>

#include <gtest/gtest.h>

using TQ::BACnet::DataError;

TEST(DataErrorText, errorsAbortsRejectsAndNoError) {
    EXPECT_EQ("", DataError().getString(true));
    EXPECT_EQ("", DataError(ERROR_CLASS_PROPERTY, static_cast<BACNET_ERROR_CODE>(257)).getString(true));
    const DataError unknownProperty(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY);
    EXPECT_EQ("BACnet Error: property (2) : unknown-property (32)", unknownProperty.getString(true));
    EXPECT_EQ("BACnet Error: property : unknown-property", unknownProperty.getString(false));

    const DataError abort(DataError::ABORT_CLASS, static_cast<BACNET_ERROR_CODE>(4));
    EXPECT_EQ("BACnet Abort: segmentation-not-supported", abort.getString(false));
    EXPECT_EQ("BACnet Abort: segmentation-not-supported (4)", abort.getString(true));
    const DataError reject(DataError::REJECT_CLASS, static_cast<BACNET_ERROR_CODE>(9));
    EXPECT_EQ("BACnet Reject: unrecognized-service (9)", reject.getString(true));
    EXPECT_TRUE(abort.isAbort());
    EXPECT_TRUE(reject.isReject());

    // Numbers without a name leave the name's place empty.
    EXPECT_EQ("BACnet Error:  (300) :  (9999)",
              DataError(static_cast<BACNET_ERROR_CLASS>(300), static_cast<BACNET_ERROR_CODE>(9999))
                  .getString(true));
}

TEST(DataErrorEncoding, errorProductionAtOffset) {
    TQ::Utility::OctetBuffer buffer;
    buffer.append(0xAA);
    const DataError error(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY);
    EXPECT_EQ(4, error.encode(buffer, 1));
    EXPECT_EQ("AA 91 02 91 20", buffer.getHexString(true));
    EXPECT_EQ(4, error.encode(buffer, 3));
    EXPECT_EQ(7u, buffer.size());
    EXPECT_EQ(0x91, buffer.data()[3]);
    EXPECT_EQ(6,
              DataError(DataError::NO_ERROR_CLASS, static_cast<BACNET_ERROR_CODE>(65535)).encode(buffer, 0));
    EXPECT_EQ("92 FF FF 92 FF FF", buffer.getHexString(true));
}

TEST(DataErrorHolders, withIdAndReferences) {
    TQ::BACnet::DataErrorWithId withId(DataError(ERROR_CLASS_OBJECT, ERROR_CODE_UNKNOWN_OBJECT), 42);
    EXPECT_EQ(42u, withId.getId());
    EXPECT_EQ(ERROR_CLASS_OBJECT, withId.getErrorClass());
    EXPECT_EQ(0u, TQ::BACnet::DataErrorWithId().getId());
    TQ::BACnet::DataErrorWithId direct(ERROR_CLASS_DEVICE, ERROR_CODE_OTHER, 7);
    EXPECT_EQ(7u, direct.getId());
    DataError copy;
    copy.setError(withId);
    EXPECT_EQ(ERROR_CODE_UNKNOWN_OBJECT, copy.getErrorCode());

    BACNET_ERROR_CLASS errorClass = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE errorCode = ERROR_CODE_OTHER;
    TQ::BACnet::DataErrorRef ref(errorClass, errorCode);
    ref.setError(ERROR_CLASS_SERVICES, ERROR_CODE_TIMEOUT);
    EXPECT_EQ(ERROR_CLASS_SERVICES, errorClass);
    EXPECT_EQ(ERROR_CODE_TIMEOUT, errorCode);
}

TEST(DataWritePropertyRequest, fillsTheCallersRecord) {
    BACnet_Write_Property_Data data{};
    TQ::BACnet::DataWriteProperty request(data, true);
    EXPECT_TRUE(request.getFlag());
    TQ::Utility::OctetBuffer value(std::string("4443F80000"));
    ASSERT_TRUE(request.set(static_cast<BACNET_OBJECT_TYPE>(2), 0x400003, static_cast<BACNET_PROPERTY_ID>(85),
                            BACNET_ARRAY_ALL, value, 8));
    EXPECT_EQ(2u, data.object_type);
    EXPECT_EQ(3u, data.object_instance);
    EXPECT_EQ(85u, data.object_property);
    EXPECT_EQ(5, data.application_data_len);
    EXPECT_EQ(8, data.priority);
    EXPECT_EQ(8u, data.error_class);
    EXPECT_EQ(200u, data.error_code);
    std::string hex;
    EXPECT_EQ("4443F80000", request.getApduAsHexString(hex));

    // The error part writes into the record itself.
    request.setError(ERROR_CLASS_PROPERTY, ERROR_CODE_WRITE_ACCESS_DENIED);
    EXPECT_EQ(ERROR_CLASS_PROPERTY, data.error_class);

    BACnet_Write_Property_Data copy{};
    request.getC(copy);
    EXPECT_EQ(5, copy.application_data_len);
    EXPECT_EQ(0, std::memcmp(copy.application_data, data.application_data, 5));
    EXPECT_EQ(ERROR_CODE_WRITE_ACCESS_DENIED, copy.error_code);

    TQ::Utility::OctetBuffer longest(1475);
    EXPECT_TRUE(request.set(static_cast<BACNET_OBJECT_TYPE>(2), 1, static_cast<BACNET_PROPERTY_ID>(87), 3,
                            longest, 0));
    EXPECT_EQ(1475, data.application_data_len);
    TQ::Utility::OctetBuffer tooLong(1476);
    EXPECT_FALSE(request.set(static_cast<BACNET_OBJECT_TYPE>(4), 9, static_cast<BACNET_PROPERTY_ID>(85), 1,
                             tooLong, 16));
    EXPECT_EQ(4u, data.object_type);  // the target is taken, the value is not
    EXPECT_EQ(16, data.priority);
    EXPECT_EQ(1475, data.application_data_len);
}
