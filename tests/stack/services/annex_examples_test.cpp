// The published example encodings of the protocol's services, byte for byte in both directions.
// Headers in the examples carry their own max-APDU codes; the service data must match exactly and
// our own request header (1476 octets, code 5) is checked separately.
#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "hex.h"
#include "tq_stack/apdu.h"
#include "tq_stack/context_decode.h"
#include "tq_stack/iam.h"
#include "tq_stack/rp.h"
#include "tq_stack/rpm.h"
#include "tq_stack/rr.h"
#include "tq_stack/timesync.h"
#include "tq_stack/whois.h"
#include "tq_stack/wp.h"

using namespace svc_test;

namespace {

BACNET_CONFIRMED_SERVICE_DATA header(uint8_t maxApduCode, uint8_t invokeId, uint8_t service) {
    BACNET_CONFIRMED_SERVICE_DATA h{};
    h.max_apdu_code = maxApduCode;
    h.invoke_id = invokeId;
    h.service_choice = service;
    return h;
}

std::vector<uint8_t> concat(std::vector<uint8_t> a, const std::vector<uint8_t>& b) {
    a.insert(a.end(), b.begin(), b.end());
    return a;
}

BACNET_READ_PROPERTY_DATA rpData(BACNET_OBJECT_TYPE type, uint32_t instance, BACNET_PROPERTY_ID property) {
    BACNET_READ_PROPERTY_DATA d{};
    d.object_type = type;
    d.object_instance = instance;
    d.object_property = property;
    d.array_index = BACNET_ARRAY_ALL;
    return d;
}

BACNET_PROPERTY_REFERENCE propertyRef(BACNET_PROPERTY_ID id, BACNET_PROPERTY_REFERENCE* next) {
    BACNET_PROPERTY_REFERENCE r{};
    r.propertyIdentifier = id;
    r.propertyArrayIndex = BACNET_ARRAY_ALL;
    r.next = next;
    return r;
}

}  // namespace

TEST(AnnexExamples, ReadPropertyRequestAndAck) {
    // ReadProperty of analog-input 5 present-value, invoke id 1; the answer 72.3.
    const auto request = bytes("00 00 01 0C 0C 00 00 00 05 19 55");
    const auto ack = bytes("30 01 0C 0C 00 00 00 05 19 55 3E 44 42 90 99 9A 3F");

    BACNET_READ_PROPERTY_DATA rp = rpData(OBJECT_ANALOG_INPUT, 5, PROP_PRESENT_VALUE);
    auto h = header(0, 1, SERVICE_CONFIRMED_READ_PROPERTY);
    const auto ourHeader = encoded([&](uint8_t* p) { return apdu_encode_confirmed_header(p, &h); });
    const auto body = encoded([&](uint8_t* p) { return rp_encode_service_request(p, &rp); });
    EXPECT_EQ(hex(request), hex(concat(ourHeader, body)));
    // Our own requests differ only in the max-APDU octet.
    auto ours = encoded([&](uint8_t* p) { return rp_encode_apdu(p, 1, &rp); });
    auto expected = request;
    expected[1] = 0x05;
    EXPECT_EQ(hex(expected), hex(ours));
    EXPECT_EQ(int(ours.size()), rp_encode_apdu(nullptr, 1, &rp));

    BACNET_CONFIRMED_SERVICE_DATA decodedHeader{};
    ASSERT_EQ(4, apdu_decode_confirmed_header(request.data(), uint32_t(request.size()), &decodedHeader));
    EXPECT_EQ(std::make_tuple(1, int(SERVICE_CONFIRMED_READ_PROPERTY), 50u),
              std::make_tuple(int(decodedHeader.invoke_id), int(decodedHeader.service_choice),
                              apdu_max_apdu_octets(decodedHeader.max_apdu_code)));
    BACNET_READ_PROPERTY_DATA decoded{};
    ASSERT_EQ(7, rp_decode_service_request(request.data() + 4, uint32_t(request.size() - 4), &decoded));
    EXPECT_EQ(std::make_tuple(OBJECT_ANALOG_INPUT, 5u, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL),
              std::make_tuple(decoded.object_type, decoded.object_instance, decoded.object_property,
                              decoded.array_index));

    // The acknowledgement.
    const uint8_t real723[] = {0x44, 0x42, 0x90, 0x99, 0x9A};
    rp.application_data = real723;
    rp.application_data_len = sizeof real723;
    EXPECT_EQ(hex(ack), hex(encoded([&](uint8_t* p) { return rp_ack_encode_apdu(p, 1, &rp); })));
    uint8_t invokeId = 0, service = 0;
    bool segmented = true;
    ASSERT_EQ(
        3, apdu_decode_complex_ack_header(ack.data(), uint32_t(ack.size()), &invokeId, &service, &segmented));
    EXPECT_EQ(std::make_tuple(1, int(SERVICE_CONFIRMED_READ_PROPERTY), false),
              std::make_tuple(int(invokeId), int(service), segmented));
    BACNET_READ_PROPERTY_DATA ackData{};
    ASSERT_EQ(int(ack.size() - 3),
              rp_ack_decode_service_request(ack.data() + 3, uint32_t(ack.size() - 3), &ackData));
    EXPECT_EQ(5u, ackData.object_instance);
    ASSERT_EQ(5, ackData.application_data_len);
    EXPECT_EQ(0, std::memcmp(real723, ackData.application_data, 5));
    EXPECT_EQ(ack.data() + 11, ackData.application_data);  // points into the buffer, not copied
}

TEST(AnnexExamples, WritePropertyRequestAndSimpleAck) {
    // WriteProperty analog-value 1 present-value 180.0, invoke id 89, no priority.
    const auto request = bytes("00 04 59 0F 0C 00 80 00 01 19 55 3E 44 43 34 00 00 3F");
    const auto simpleAck = bytes("20 59 0F");

    BACNET_WRITE_PROPERTY_DATA wp{};
    wp.object_type = OBJECT_ANALOG_VALUE;
    wp.object_instance = 1;
    wp.object_property = PROP_PRESENT_VALUE;
    wp.array_index = BACNET_ARRAY_ALL;
    const uint8_t value[] = {0x44, 0x43, 0x34, 0x00, 0x00};
    std::memcpy(wp.application_data, value, sizeof value);
    wp.application_data_len = sizeof value;
    auto h = header(4, 0x59, SERVICE_CONFIRMED_WRITE_PROPERTY);
    EXPECT_EQ(hex(request),
              hex(concat(encoded([&](uint8_t* p) { return apdu_encode_confirmed_header(p, &h); }),
                         encoded([&](uint8_t* p) { return wp_encode_service_request(p, &wp); }))));

    BACNET_WRITE_PROPERTY_DATA decoded{};
    ASSERT_EQ(int(request.size() - 4),
              wp_decode_service_request(request.data() + 4, uint32_t(request.size() - 4), &decoded));
    EXPECT_EQ(std::make_tuple(OBJECT_ANALOG_VALUE, 1u, int(BACNET_NO_PRIORITY)),
              std::make_tuple(decoded.object_type, decoded.object_instance, int(decoded.priority)));
    ASSERT_EQ(5, decoded.application_data_len);
    EXPECT_EQ(0, std::memcmp(value, decoded.application_data, 5));

    EXPECT_EQ(hex(simpleAck), hex(encoded([](uint8_t* p) { return apdu_encode_simple_ack(p, 0x59, 15); })));
    uint8_t id = 0, service = 0;
    EXPECT_EQ(3, apdu_decode_simple_ack(simpleAck.data(), 3, &id, &service));
    EXPECT_EQ(std::make_tuple(0x59, 15), std::make_tuple(int(id), int(service)));
}

TEST(AnnexExamples, ReadPropertyMultipleSingleObject) {
    // analog-input 16: present-value and reliability; answered 72.3 and no-fault-detected.
    const auto request = bytes("00 04 F1 0E 0C 00 00 00 10 1E 09 55 09 67 1F");
    const auto ack = bytes("30 F1 0E 0C 00 00 00 10 1E 29 55 4E 44 42 90 99 9A 4F 29 67 4E 91 00 4F 1F");

    BACNET_PROPERTY_REFERENCE reliability = propertyRef(PROP_RELIABILITY, nullptr);
    BACNET_PROPERTY_REFERENCE presentValue = propertyRef(PROP_PRESENT_VALUE, &reliability);
    BACNET_READ_ACCESS_DATA rad{OBJECT_ANALOG_INPUT, 16, &presentValue, nullptr};
    auto ours = encoded([&](uint8_t* p) { return rpm_encode_apdu(p, MAX_APDU, 0xF1, &rad); });
    auto expected = request;
    expected[1] = 0x05;
    EXPECT_EQ(hex(expected), hex(ours));

    BACNET_READ_ACCESS_DATA result;
    ASSERT_EQ(int(ack.size() - 3),
              rpm_ack_decode_service_request(ack.data() + 3, uint32_t(ack.size() - 3), &result));
    EXPECT_EQ(std::make_tuple(OBJECT_ANALOG_INPUT, 16u, (BACNET_READ_ACCESS_DATA*)nullptr),
              std::make_tuple(result.object_type, result.object_instance, result.next));
    const BACNET_PROPERTY_REFERENCE* p = result.listOfProperties;
    ASSERT_TRUE(p && p->value && p->next && p->next->value);
    EXPECT_EQ(std::make_tuple(PROP_PRESENT_VALUE, false, uint8_t(BACNET_APPLICATION_TAG_REAL)),
              std::make_tuple(p->propertyIdentifier, p->has_error, uint8_t(p->value->tag)));
    EXPECT_FLOAT_EQ(72.3f, p->value->type.Real);
    EXPECT_EQ(nullptr, p->value->next);
    p = p->next;
    EXPECT_EQ(
        std::make_tuple(PROP_RELIABILITY, uint8_t(BACNET_APPLICATION_TAG_ENUMERATED), 0u,
                        (BACNET_PROPERTY_REFERENCE*)nullptr),
        std::make_tuple(p->propertyIdentifier, uint8_t(p->value->tag), p->value->type.Enumerated, p->next));
    rpm_ack_free_all(&result);
    EXPECT_EQ(nullptr, result.listOfProperties);
}

TEST(AnnexExamples, ReadPropertyMultipleWithPropertyError) {
    // analog-input 33 and analog-input 50; the second does not exist.
    const auto request = bytes("00 04 02 0E 0C 00 00 00 21 1E 09 55 1F 0C 00 00 00 32 1E 09 55 1F");
    const auto ack = bytes(
        "30 02 0E 0C 00 00 00 21 1E 29 55 4E 44 42 29 33 33 4F 1F"
        " 0C 00 00 00 32 1E 29 55 5E 91 01 91 1F 5F 1F");

    BACNET_PROPERTY_REFERENCE pv1 = propertyRef(PROP_PRESENT_VALUE, nullptr), pv2 = pv1;
    BACNET_READ_ACCESS_DATA second{OBJECT_ANALOG_INPUT, 50, &pv2, nullptr};
    BACNET_READ_ACCESS_DATA first{OBJECT_ANALOG_INPUT, 33, &pv1, &second};
    auto ours = encoded([&](uint8_t* p) { return rpm_encode_apdu(p, MAX_APDU, 2, &first); });
    auto expected = request;
    expected[1] = 0x05;
    EXPECT_EQ(hex(expected), hex(ours));

    BACNET_READ_ACCESS_DATA result;
    ASSERT_EQ(int(ack.size() - 3),
              rpm_ack_decode_service_request(ack.data() + 3, uint32_t(ack.size() - 3), &result));
    ASSERT_NE(nullptr, result.listOfProperties);
    EXPECT_FLOAT_EQ(42.3f, result.listOfProperties->value->type.Real);
    ASSERT_NE(nullptr, result.next);
    EXPECT_EQ(50u, result.next->object_instance);
    const BACNET_PROPERTY_REFERENCE* failed = result.next->listOfProperties;
    ASSERT_NE(nullptr, failed);
    EXPECT_EQ(std::make_tuple(true, (BACNET_APPLICATION_DATA_VALUE*)nullptr, ERROR_CLASS_OBJECT,
                              ERROR_CODE_UNKNOWN_OBJECT),
              std::make_tuple(failed->has_error, failed->value, failed->error_class, failed->error_code));
    rpm_ack_free_all(&result);
    EXPECT_EQ(nullptr, result.next);
}

TEST(AnnexExamples, ReadRangeByTimeAndAck) {
    // trend-log 1 log-buffer from 1998-03-23 19:52:34.00, 4 records; two come back.
    const auto request = bytes("00 02 01 1A 0C 05 00 00 01 19 83 7E A4 62 03 17 01 B4 13 34 22 00 31 04 7F");
    const auto records = bytes(
        "0E A4 62 03 17 01 B4 13 34 22 00 0F 1E 2C 41 90 00 00 1F 2A 04 00"
        " 0E A4 62 03 17 01 B4 13 35 22 00 0F 1E 2C 41 90 00 00 1F 2A 04 00");
    const auto ack =
        concat(concat(bytes("30 01 1A 0C 05 00 00 01 19 83 3A 05 C0 49 02 5E"), records), bytes("5F 69 4F"));

    BACNET_READ_RANGE_DATA rr{};
    rr.object_type = OBJECT_TREND_LOG;
    rr.object_instance = 1;
    rr.object_property = PROP_LOG_BUFFER;
    rr.array_index = BACNET_ARRAY_ALL;
    rr.request_type = RR_BY_TIME;
    rr.range.ref_time = BACNET_DATE_TIME{{1998, 3, 23, 1}, {19, 52, 34, 0}};
    rr.count = 4;
    auto h = header(2, 1, SERVICE_CONFIRMED_READ_RANGE);
    EXPECT_EQ(hex(request),
              hex(concat(encoded([&](uint8_t* p) { return apdu_encode_confirmed_header(p, &h); }),
                         encoded([&](uint8_t* p) { return rr_encode_service_request(p, &rr); }))));
    BACNET_READ_RANGE_DATA decoded{};
    ASSERT_EQ(int(request.size() - 4),
              rr_decode_service_request(request.data() + 4, uint32_t(request.size() - 4), &decoded));
    EXPECT_EQ(
        std::make_tuple(int(RR_BY_TIME), 1998, 52, 4, PROP_LOG_BUFFER),
        std::make_tuple(int(decoded.request_type), int(decoded.range.ref_time.date.year),
                        int(decoded.range.ref_time.time.min), int(decoded.count), decoded.object_property));

    rr.result_flags.bits_used = 3;
    rr.result_flags.value[0] = 0xC0;  // first and last item
    rr.item_count = 2;
    rr.first_sequence = 79;
    rr.application_data = records.data();
    rr.application_data_len = int(records.size());
    EXPECT_EQ(hex(ack), hex(encoded([&](uint8_t* p) { return rr_ack_encode_apdu(p, 1, &rr); })));
    BACNET_READ_RANGE_DATA ackData{};
    ASSERT_EQ(int(ack.size() - 3),
              rr_ack_decode_service_request(ack.data() + 3, uint32_t(ack.size() - 3), &ackData));
    EXPECT_EQ(std::make_tuple(3, 0xC0, 2u, 79u),
              std::make_tuple(int(ackData.result_flags.bits_used), int(ackData.result_flags.value[0]),
                              ackData.item_count, ackData.first_sequence));
    ASSERT_EQ(int(records.size()), ackData.application_data_len);
    EXPECT_EQ(0, std::memcmp(records.data(), ackData.application_data, records.size()));
}

TEST(AnnexExamples, WhoIsIAmAndTimeSynchronization) {
    const auto whoIs = bytes("10 08 09 03 19 03");
    const auto iAm = bytes("10 00 C4 02 00 00 03 22 04 00 91 03 21 63");
    const auto timeSync = bytes("10 06 A4 5C 0B 11 02 B4 16 2D 1E 46");

    EXPECT_EQ(hex(whoIs), hex(encoded([](uint8_t* p) { return whois_encode_apdu(p, 3, 3); })));
    int32_t low = 0, high = 0;
    EXPECT_EQ(4, whois_decode_service_request(whoIs.data() + 2, 4, &low, &high));
    EXPECT_EQ(std::make_pair(3, 3), std::make_pair(low, high));

    EXPECT_EQ(hex(iAm),
              hex(encoded([](uint8_t* p) { return iam_encode_apdu(p, 3, 1024, SEGMENTATION_NONE, 99); })));
    uint32_t device = 0;
    unsigned maxApdu = 0;
    int segmentation = -1;
    uint16_t vendor = 0;
    EXPECT_EQ(12, iam_decode_service_request(iAm.data() + 2, 12, &device, &maxApdu, &segmentation, &vendor));
    EXPECT_EQ(std::make_tuple(3u, 1024u, int(SEGMENTATION_NONE), 99),
              std::make_tuple(device, maxApdu, segmentation, int(vendor)));

    // 1992-11-17 (a Tuesday) 22:45:30.70.
    const BACNET_DATE date{1992, 11, 17, 2};
    const BACNET_TIME time{22, 45, 30, 70};
    EXPECT_EQ(hex(timeSync), hex(encoded([&](uint8_t* p) { return timesync_encode_apdu(p, &date, &time); })));
    auto utc = encoded([&](uint8_t* p) { return timesync_utc_encode_apdu(p, &date, &time); });
    ASSERT_EQ(timeSync.size(), utc.size());
    EXPECT_EQ(9, utc[1]);
    EXPECT_EQ(0, std::memcmp(timeSync.data() + 2, utc.data() + 2, timeSync.size() - 2));
    BACNET_DATE d{};
    BACNET_TIME t{};
    EXPECT_EQ(10, timesync_decode_service_request(timeSync.data() + 2, 10, &d, &t));
    EXPECT_EQ(
        std::make_tuple(1992, 11, 17, 2, 22, 70),
        std::make_tuple(int(d.year), int(d.month), int(d.day), int(d.wday), int(t.hour), int(t.hundredths)));
}

TEST(AnnexExamples, ErrorPdu) {
    // ReadProperty answered with property / unknown-property.
    const auto error = bytes("50 01 0C 91 02 91 20");
    EXPECT_EQ(hex(error), hex(encoded([](uint8_t* p) {
                  return apdu_encode_error(p, 1, SERVICE_CONFIRMED_READ_PROPERTY, ERROR_CLASS_PROPERTY,
                                           ERROR_CODE_UNKNOWN_PROPERTY);
              })));
    uint8_t id = 0, service = 0;
    BACNET_ERROR_CLASS cls = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE code = ERROR_CODE_OTHER;
    EXPECT_EQ(7, apdu_decode_error(error.data(), 7, &id, &service, &cls, &code));
    EXPECT_EQ(std::make_tuple(1, int(SERVICE_CONFIRMED_READ_PROPERTY), ERROR_CLASS_PROPERTY,
                              ERROR_CODE_UNKNOWN_PROPERTY),
              std::make_tuple(int(id), int(service), cls, code));
    EXPECT_EQ(BACNET_STATUS_ERROR, apdu_decode_error(error.data(), 6, &id, &service, &cls, &code));
}
