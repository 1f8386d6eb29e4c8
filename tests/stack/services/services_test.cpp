// The service codecs: the published example encodings byte for byte in both directions (their
// headers carry their own max-APDU codes; ours, 1476 octets or code 5, differ only in that octet),
// then optional elements, limits, the room checks of the encoders and the APDU header variants.
#include <gtest/gtest.h>

#include <cstring>
#include <tuple>

#include "TQTestCodec.h"
#include "tq_stack/apdu.h"
#include "tq_stack/codec.h"
#include "tq_stack/iam.h"
#include "tq_stack/rp.h"
#include "tq_stack/rpm.h"
#include "tq_stack/rr.h"
#include "tq_stack/timesync.h"
#include "tq_stack/whois.h"
#include "tq_stack/wp.h"
// The umbrella must compile on its own next to the single headers.
#include "tq_stack/stack.h"

using namespace TQTest;

namespace {

void headerBothWays(const char* example, uint8_t maxApduCode, uint8_t invokeId, uint8_t service) {
    BACNET_CONFIRMED_SERVICE_DATA h{};
    h.max_apdu_code = maxApduCode;
    h.invoke_id = invokeId;
    h.service_choice = service;
    bothWays(example, h, RECORD_ENCODER(apdu_encode_confirmed_header),
             RECORD_DECODER(apdu_decode_confirmed_header));
}

// A request record for the whole property, with no value, range or priority yet.
template <typename T>
T request(BACNET_OBJECT_TYPE type, uint32_t instance, BACNET_PROPERTY_ID property) {
    T d{};
    d.object_type = type;
    d.object_instance = instance;
    d.object_property = property;
    d.array_index = BACNET_ARRAY_ALL;
    return d;
}

// An example request as our own encoder sends it: max-APDU code 5.
std::string ours(const char* example) {
    Bytes b = hex(example);
    b[1] = 0x05;
    return hexText(b);
}

}  // namespace

TEST(AnnexExamples, ReadPropertyRequestAndAck) {
    // ReadProperty of analog-input 5 present-value, invoke id 1; the answer 72.3.
    BACNET_READ_PROPERTY_DATA rp = rpData(OBJECT_ANALOG_INPUT, 5, PROP_PRESENT_VALUE);
    headerBothWays("00 00 01 0C", 0, 1, SERVICE_CONFIRMED_READ_PROPERTY);
    EXPECT_EQ(50u, apdu_max_apdu_octets(0));
    bothWays("0C 00 00 00 05 19 55", rp, RECORD_ENCODER(rp_encode_service_request),
             RECORD_DECODER(rp_decode_service_request));
    EXPECT_EQ(ours("00 00 01 0C 0C 00 00 00 05 19 55"), ENCODED_HEX(rp_encode_apdu(p, 1, &rp)));

    const uint8_t real723[] = {0x44, 0x42, 0x90, 0x99, 0x9A};
    rp.application_data = real723;
    rp.application_data_len = sizeof real723;
    EXPECT_EQ("30 01 0C 0C 00 00 00 05 19 55 3E 44 42 90 99 9A 3F",
              ENCODED_HEX(rp_ack_encode_apdu(p, 1, &rp)));
    uint8_t invokeId = 0, service = 0;
    bool segmented = true;
    ASSERT_EQ(3, DECODED("30 01 0C", apdu_decode_complex_ack_header(p, n, &invokeId, &service, &segmented)));
    EXPECT_EQ(std::make_tuple(1, int(SERVICE_CONFIRMED_READ_PROPERTY), false),
              std::make_tuple(int(invokeId), int(service), segmented));
    const char* ackBody = "0C 00 00 00 05 19 55 3E 44 42 90 99 9A 3F";
    bothWays(ackBody, rp, RECORD_ENCODER(rp_ack_encode_service_request),
             RECORD_DECODER(rp_ack_decode_service_request));
    // The decoded value points into the buffer rather than being copied.
    ExactBuffer body(ackBody);
    BACNET_READ_PROPERTY_DATA ack{};
    ASSERT_EQ(int(body.size()), rp_ack_decode_service_request(body.data(), body.size(), &ack));
    EXPECT_EQ(std::make_tuple(body.data() + 8, 5),
              std::make_tuple(ack.application_data, ack.application_data_len));
}

TEST(AnnexExamples, WritePropertyRequestAndSimpleAck) {
    // WriteProperty analog-value 1 present-value 180.0, invoke id 89, no priority.
    auto wp = request<BACNET_WRITE_PROPERTY_DATA>(OBJECT_ANALOG_VALUE, 1, PROP_PRESENT_VALUE);
    wp.application_data_len = encode_application_real(wp.application_data, 180.0f);
    headerBothWays("00 04 59 0F", 4, 0x59, SERVICE_CONFIRMED_WRITE_PROPERTY);
    bothWays("0C 00 80 00 01 19 55 3E 44 43 34 00 00 3F", wp, RECORD_ENCODER(wp_encode_service_request),
             RECORD_DECODER(wp_decode_service_request));

    EXPECT_EQ("20 59 0F", ENCODED_HEX(apdu_encode_simple_ack(p, 0x59, 15)));
    uint8_t id = 0, service = 0;
    EXPECT_EQ(3, DECODED("20 59 0F", apdu_decode_simple_ack(p, n, &id, &service)));
    EXPECT_EQ(std::make_tuple(0x59, 15), std::make_tuple(int(id), int(service)));
}

TEST(AnnexExamples, ReadPropertyMultipleWithValuesAndPropertyError) {
    // analog-input 16: present-value and reliability; answered 72.3 and no-fault-detected.
    BACNET_PROPERTY_REFERENCE reliability = propertyRef(PROP_RELIABILITY, nullptr);
    BACNET_PROPERTY_REFERENCE presentValue = propertyRef(PROP_PRESENT_VALUE, &reliability);
    BACNET_READ_ACCESS_DATA rad{OBJECT_ANALOG_INPUT, 16, &presentValue, nullptr};
    EXPECT_EQ(ours("00 04 F1 0E 0C 00 00 00 10 1E 09 55 09 67 1F"),
              ENCODED_HEX(rpm_encode_apdu(p, MAX_APDU, 0xF1, &rad)));
    ExactBuffer ack("0C 00 00 00 10 1E 29 55 4E 44 42 90 99 9A 4F 29 67 4E 91 00 4F 1F");
    BACNET_READ_ACCESS_DATA result;
    ASSERT_EQ(int(ack.size()), rpm_ack_decode_service_request(ack.data(), ack.size(), &result));
    EXPECT_EQ("0,16: 85=(r72.3) 103=(e0)", describe(&result));  // analog-input 16, REAL, ENUMERATED
    rpm_ack_free_all(&result);                                  // what it leaves behind: RpmAck tests

    // analog-input 33 and analog-input 50; the second does not exist.
    BACNET_PROPERTY_REFERENCE pv1 = propertyRef(PROP_PRESENT_VALUE, nullptr), pv2 = pv1;
    BACNET_READ_ACCESS_DATA second{OBJECT_ANALOG_INPUT, 50, &pv2, nullptr};
    BACNET_READ_ACCESS_DATA first{OBJECT_ANALOG_INPUT, 33, &pv1, &second};
    EXPECT_EQ(ours("00 04 02 0E 0C 00 00 00 21 1E 09 55 1F 0C 00 00 00 32 1E 09 55 1F"),
              ENCODED_HEX(rpm_encode_apdu(p, MAX_APDU, 2, &first)));
    ExactBuffer errorAck(
        "0C 00 00 00 21 1E 29 55 4E 44 42 29 33 33 4F 1F 0C 00 00 00 32 1E 29 55 5E 91 01 91 1F 5F 1F");
    ASSERT_EQ(int(errorAck.size()),
              rpm_ack_decode_service_request(errorAck.data(), errorAck.size(), &result));
    EXPECT_EQ("0,33: 85=(r42.3); 0,50: 85=!1,31", describe(&result));  // object / unknown-object
    rpm_ack_free_all(&result);
}

TEST(AnnexExamples, ReadRangeByTimeAndAck) {
    // trend-log 1 log-buffer from 1998-03-23 19:52:34.00, 4 records; two come back.
    auto rr = request<BACNET_READ_RANGE_DATA>(OBJECT_TREND_LOG, 1, PROP_LOG_BUFFER);
    rr.request_type = RR_BY_TIME;
    rr.range.ref_time = BACNET_DATE_TIME{{1998, 3, 23, 1}, {19, 52, 34, 0}};
    rr.count = 4;
    headerBothWays("00 02 01 1A", 2, 1, SERVICE_CONFIRMED_READ_RANGE);
    bothWays("0C 05 00 00 01 19 83 7E A4 62 03 17 01 B4 13 34 22 00 31 04 7F", rr,
             RECORD_ENCODER(rr_encode_service_request), RECORD_DECODER(rr_decode_service_request));

    const std::string records =
        "0E A4 62 03 17 01 B4 13 34 22 00 0F 1E 2C 41 90 00 00 1F 2A 04 00"
        " 0E A4 62 03 17 01 B4 13 35 22 00 0F 1E 2C 41 90 00 00 1F 2A 04 00";
    const Bytes recordBytes = hex(records);
    rr.result_flags.bits_used = 3;
    rr.result_flags.value[0] = 0xC0;  // first and last item
    rr.item_count = 2;
    rr.first_sequence = 79;
    rr.application_data = recordBytes.data();
    rr.application_data_len = int(recordBytes.size());
    const std::string ackBody = "0C 05 00 00 01 19 83 3A 05 C0 49 02 5E " + records + " 5F 69 4F";
    EXPECT_EQ("30 01 1A " + ackBody, ENCODED_HEX(rr_ack_encode_apdu(p, 1, &rr)));
    ExactBuffer ack(ackBody);
    BACNET_READ_RANGE_DATA back{};
    ASSERT_EQ(int(ack.size()), rr_ack_decode_service_request(ack.data(), ack.size(), &back));
    EXPECT_EQ(std::make_tuple(3, 0xC0, 2u, 79u, int(recordBytes.size())),
              std::make_tuple(int(back.result_flags.bits_used), int(back.result_flags.value[0]),
                              back.item_count, back.first_sequence, back.application_data_len));
    EXPECT_EQ(0, std::memcmp(recordBytes.data(), back.application_data, recordBytes.size()));
}

TEST(AnnexExamples, ErrorPdu) {
    // ReadProperty answered with property / unknown-property.
    EXPECT_EQ("50 01 0C 91 02 91 20",
              ENCODED_HEX(apdu_encode_error(p, 1, SERVICE_CONFIRMED_READ_PROPERTY, ERROR_CLASS_PROPERTY,
                                            ERROR_CODE_UNKNOWN_PROPERTY)));
    uint8_t id = 0, service = 0;
    BACNET_ERROR_CLASS cls = ERROR_CLASS_DEVICE;
    BACNET_ERROR_CODE code = ERROR_CODE_OTHER;
    EXPECT_EQ(7, DECODED("50 01 0C 91 02 91 20", apdu_decode_error(p, n, &id, &service, &cls, &code)));
    EXPECT_EQ(std::make_tuple(1, int(SERVICE_CONFIRMED_READ_PROPERTY), ERROR_CLASS_PROPERTY,
                              ERROR_CODE_UNKNOWN_PROPERTY),
              std::make_tuple(int(id), int(service), cls, code));
    EXPECT_EQ(BACNET_STATUS_ERROR,
              DECODED("50 01 0C 91 02 91", apdu_decode_error(p, n, &id, &service, &cls, &code)));
}

TEST(ApduHeaders, SegmentedConfirmedAckRejectAbortAndCodes) {
    BACNET_CONFIRMED_SERVICE_DATA h{};
    h.segmented_message = h.more_follows = h.segmented_response_accepted = true;
    h.max_segs_code = 7;
    h.max_apdu_code = 5;
    h.invoke_id = 200;
    h.sequence_number = 3;
    h.proposed_window_size = 16;
    h.service_choice = SERVICE_CONFIRMED_READ_PROP_MULTIPLE;
    bothWays("0E 75 C8 03 10 0E", h, RECORD_ENCODER(apdu_encode_confirmed_header),
             RECORD_DECODER(apdu_decode_confirmed_header));
    // A segmented header cut short, and a PDU of another type.
    for (const char* bad : {"0E 75 C8 03 10", "10 08 00 00"})
        EXPECT_EQ(BACNET_STATUS_ERROR, DECODED(bad, apdu_decode_confirmed_header(p, n, &h))) << bad;
    EXPECT_EQ(std::make_tuple(1476u, 0u), std::make_tuple(apdu_max_apdu_octets(5), apdu_max_apdu_octets(6)));
    EXPECT_EQ(std::make_tuple(5, 5, 4, 0),
              std::make_tuple(int(apdu_max_apdu_code(1476)), int(apdu_max_apdu_code(60000)),
                              int(apdu_max_apdu_code(1475)), int(apdu_max_apdu_code(10))));
    // A segmented complex ACK is reported, its service choice taken from its own position.
    uint8_t id = 0, service = 0, reason = 0;
    bool segmented = false, server = false;
    EXPECT_EQ(5, DECODED("3C 07 00 04 0E", apdu_decode_complex_ack_header(p, n, &id, &service, &segmented)));
    EXPECT_EQ(std::make_tuple(true, uint8_t(SERVICE_CONFIRMED_READ_PROP_MULTIPLE)),
              std::make_tuple(segmented, service));
    EXPECT_EQ(BACNET_STATUS_ERROR,
              DECODED("3C 07 00 04", apdu_decode_complex_ack_header(p, n, &id, &service, &segmented)));

    EXPECT_EQ("60 09 04", ENCODED_HEX(apdu_encode_reject(p, 9, REJECT_REASON_INVALID_TAG)));
    EXPECT_EQ("71 09 04", ENCODED_HEX(apdu_encode_abort(p, 9, 4, true)));
    EXPECT_TRUE(DECODED("71 09 04", apdu_decode_abort(p, n, &id, &reason, &server)) == 3 && server);
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED("71 09 04", apdu_decode_reject(p, n, &id, &reason)));
    reason = 0;
    EXPECT_TRUE(DECODED("60 09 04", apdu_decode_reject(p, n, &id, &reason)) == 3 && reason == 4);
}

TEST(ReadPropertyCodec, IndexesLimitsRoomAndAckValues) {
    BACNET_READ_PROPERTY_DATA rp = rpData(OBJECT_DEVICE, BACNET_MAX_INSTANCE, PROP_OBJECT_LIST);
    rp.array_index = 0x12345678;
    EXPECT_EQ("00 05 07 0C 0C 02 3F FF FF 19 4C 2C 12 34 56 78", ENCODED_HEX(rp_encode_apdu(p, 7, &rp)));
    bothWays("0C 02 3F FF FF 19 4C 2C 12 34 56 78", rp, RECORD_ENCODER(rp_encode_service_request),
             RECORD_DECODER(rp_decode_service_request));
    // Proprietary property numbers take more octets.
    rp.object_property = BACNET_PROPERTY_ID(4194303);
    rp.array_index = BACNET_ARRAY_ALL;
    bothWays("0C 02 3F FF FF 1B 3F FF FF", rp, RECORD_ENCODER(rp_encode_service_request),
             RECORD_DECODER(rp_decode_service_request));
    // Invalid references never reach the wire.
    BACNET_READ_PROPERTY_DATA badInstance = rp, badType = rp;
    badInstance.object_instance = BACNET_MAX_INSTANCE + 1;
    badType.object_type = BACNET_OBJECT_TYPE(1024);
    for (const BACNET_READ_PROPERTY_DATA* bad : {&badInstance, &badType, (BACNET_READ_PROPERTY_DATA*)nullptr})
        EXPECT_EQ(BACNET_STATUS_ERROR, rp_encode_apdu(nullptr, 1, bad));

    // An acknowledgement must fit one APDU: 1476 octets in all.
    rp.object_type = OBJECT_ANALOG_INPUT;
    const Bytes nulls(MAX_APDU, 0x00);
    rp.application_data = nulls.data();
    rp.application_data_len = MAX_APDU - rp_ack_encode_apdu(nullptr, 1, &rp);
    EXPECT_EQ(size_t(MAX_APDU), encodedBy([&](uint8_t* p) { return rp_ack_encode_apdu(p, 1, &rp); }).size());
    for (int bad : {rp.application_data_len + 1, -1}) {
        rp.application_data_len = bad;
        EXPECT_EQ(BACNET_STATUS_ERROR, rp_ack_encode_apdu(nullptr, 1, &rp)) << bad;
    }
    rp.application_data = nullptr;
    rp.application_data_len = 3;
    EXPECT_EQ(BACNET_STATUS_ERROR, rp_ack_encode_apdu(nullptr, 1, &rp));

    // A constructed value (a date-time between tags) stays as it is; an empty list is legal.
    BACNET_READ_PROPERTY_DATA d{};
    for (const auto& [h, length] :
         {std::make_pair("0C 00 00 00 01 19 55 3E 0E A4 7C 01 02 03 B4 01 02 03 04 0F 3F", 12),
          std::make_pair("0C 00 00 00 01 19 55 3E 3F", 0)}) {
        ExactBuffer buf(h);
        ASSERT_EQ(int(buf.size()), rp_ack_decode_service_request(buf.data(), buf.size(), &d)) << h;
        EXPECT_EQ(length, d.application_data_len) << h;
        if (length) {
            EXPECT_EQ(0x0E, d.application_data[0]);
        }
    }
    rp = rpData(OBJECT_ANALOG_OUTPUT, 77, PROP_PRIORITY_ARRAY);
    rp.array_index = 16;
    rp.application_data = nulls.data();
    rp.application_data_len = 1;
    EXPECT_EQ("30 C8 0C 0C 00 40 00 4D 19 57 29 10 3E 00 3F", ENCODED_HEX(rp_ack_encode_apdu(p, 200, &rp)));
    bothWays("0C 00 40 00 4D 19 57 29 10 3E 00 3F", rp, RECORD_ENCODER(rp_ack_encode_service_request),
             RECORD_DECODER(rp_ack_decode_service_request));
}

TEST(WritePropertyCodec, PriorityIndexAndValidation) {
    auto wp = request<BACNET_WRITE_PROPERTY_DATA>(OBJECT_BINARY_OUTPUT, 3, PROP_PRESENT_VALUE);
    wp.application_data_len = encode_application_enumerated(wp.application_data, 1);  // active
    wp.priority = 8;
    EXPECT_EQ("00 05 0C 0F 0C 01 00 00 03 19 55 3E 91 01 3F 49 08", ENCODED_HEX(wp_encode_apdu(p, 12, &wp)));
    bothWays("0C 01 00 00 03 19 55 3E 91 01 3F 49 08", wp, RECORD_ENCODER(wp_encode_service_request),
             RECORD_DECODER(wp_decode_service_request));
    // With an array index and a constructed value.
    wp.array_index = 5;
    wp.application_data_len = int(hex("0E 21 01 0F").size());
    std::memcpy(wp.application_data, hex("0E 21 01 0F").data(), 4);
    wp.priority = BACNET_NO_PRIORITY;
    bothWays("0C 01 00 00 03 19 55 29 05 3E 0E 21 01 0F 3F", wp, RECORD_ENCODER(wp_encode_service_request),
             RECORD_DECODER(wp_decode_service_request));

    // Priorities outside 1..16 on the wire are rejected with the reason in the record; an empty value
    // between the tags is not a write.
    BACNET_WRITE_PROPERTY_DATA back{};
    for (const char* h :
         {"0C 01 00 00 03 19 55 3E 91 01 3F 49 11", "0C 01 00 00 03 19 55 3E 91 01 3F 49 00"}) {
        back.error_class = ERROR_CLASS_DEVICE;
        EXPECT_EQ(BACNET_STATUS_REJECT, DECODED(h, wp_decode_service_request(p, n, &back))) << h;
        EXPECT_EQ(std::make_tuple(ERROR_CLASS_SERVICES, ERROR_CODE_PARAMETER_OUT_OF_RANGE),
                  std::make_tuple(back.error_class, back.error_code));
    }
    EXPECT_EQ(BACNET_STATUS_ERROR,
              DECODED("0C 01 00 00 03 19 55 3E 3F", wp_decode_service_request(p, n, &back)));

    // Encoder checks: priority, empty value, oversize; the largest value fills one APDU exactly.
    wp.priority = 17;
    EXPECT_EQ(BACNET_STATUS_ERROR, wp_encode_apdu(nullptr, 1, &wp));
    wp.priority = 0;
    wp.array_index = BACNET_ARRAY_ALL;
    for (int bad : {0, MAX_APDU}) {
        wp.application_data_len = bad;
        EXPECT_EQ(BACNET_STATUS_ERROR, wp_encode_apdu(nullptr, 1, &wp)) << bad;
    }
    wp.application_data_len = MAX_APDU - 4 - 9;  // header, object, property, tags
    std::memset(wp.application_data, 0, size_t(wp.application_data_len));
    EXPECT_EQ(MAX_APDU, wp_encode_apdu(nullptr, 1, &wp));
}

TEST(ReadPropertyMultipleCodec, RequestRoomAndValidation) {
    BACNET_PROPERTY_REFERENCE all = propertyRef(PROP_PRIORITY_ARRAY, nullptr, 3);
    BACNET_READ_ACCESS_DATA rad{OBJECT_ANALOG_OUTPUT, 1, &all, nullptr};
    const Bytes apdu = encodedBy([&](uint8_t* p) { return rpm_encode_apdu(p, MAX_APDU, 5, &rad); });
    EXPECT_EQ("00 05 05 0E 0C 00 40 00 01 1E 09 57 19 03 1F", hexText(apdu));
    // Exactly enough room, and one octet short.
    Bytes buf(apdu.size());
    EXPECT_EQ(int(apdu.size()), rpm_encode_apdu(buf.data(), unsigned(apdu.size()), 5, &rad));
    EXPECT_EQ(BACNET_STATUS_ERROR, rpm_encode_apdu(buf.data(), unsigned(apdu.size() - 1), 5, &rad));
    // A record without properties or with a bad instance.
    BACNET_READ_ACCESS_DATA empty{OBJECT_ANALOG_OUTPUT, 1, nullptr, nullptr};
    BACNET_READ_ACCESS_DATA badInstance{OBJECT_ANALOG_OUTPUT, BACNET_MAX_INSTANCE + 1, &all, nullptr};
    for (BACNET_READ_ACCESS_DATA* bad : {&empty, &badInstance, (BACNET_READ_ACCESS_DATA*)nullptr})
        EXPECT_EQ(BACNET_STATUS_ERROR, rpm_encode_apdu(nullptr, MAX_APDU, 5, bad));
    // Many objects overflow a 1476-octet APDU; the encoder stops without writing past max_apdu.
    std::vector<BACNET_READ_ACCESS_DATA> many(200, rad);
    for (size_t i = 0; i + 1 < many.size(); ++i) many[i].next = &many[i + 1];
    EXPECT_EQ(4 + 200 * 11, rpm_encode_apdu(nullptr, MAX_APDU, 5, &many[0]));
    Bytes big(MAX_APDU + 16, 0xEE);
    EXPECT_EQ(BACNET_STATUS_ERROR, rpm_encode_apdu(big.data(), MAX_APDU, 5, &many[0]));
    EXPECT_EQ(0xEE, big[MAX_APDU]);
    // A cyclic chain does not hang the sizing pass.
    many.back().next = &many[0];
    EXPECT_EQ(BACNET_STATUS_ERROR, rpm_encode_apdu(nullptr, MAX_APDU, 5, &many[0]));
}

TEST(ReadRangeCodec, RangeChoicesAndAckSequence) {
    auto rr = request<BACNET_READ_RANGE_DATA>(OBJECT_TREND_LOG, 2, PROP_LOG_BUFFER);
    rr.request_type = RR_BY_POSITION;
    rr.range.ref_index = 1;
    rr.count = 1;  // the default range: first item, one item
    EXPECT_EQ("00 05 01 1A 0C 05 00 00 02 19 83 3E 21 01 31 01 3F", ENCODED_HEX(rr_encode_apdu(p, 1, &rr)));
    rr.request_type = RR_BY_SEQUENCE;
    rr.range.ref_seq_num = 0xFFFFFFFF;
    rr.count = -32768;
    bothWays("0C 05 00 00 02 19 83 6E 24 FF FF FF FF 32 80 00 6F", rr,
             RECORD_ENCODER(rr_encode_service_request), RECORD_DECODER(rr_decode_service_request));
    rr.request_type = RR_READ_ALL;
    rr.range.ref_seq_num = 0;
    bothWays("0C 05 00 00 02 19 83", rr, RECORD_ENCODER(rr_encode_service_request),
             RECORD_DECODER(rr_decode_service_request));
    // Without a range the decoded range is zero, whatever the output held before.
    std::memset(&rr.range, 0xAA, sizeof rr.range);
    ASSERT_EQ(7, DECODED("0C 05 00 00 02 19 83", rr_decode_service_request(p, n, &rr)));
    EXPECT_EQ(std::string(sizeof rr.range, '\0'),
              std::string(reinterpret_cast<const char*>(&rr.range), sizeof rr.range));
    rr.request_type = 3;
    EXPECT_EQ(BACNET_STATUS_ERROR, rr_encode_apdu(nullptr, 1, &rr));
    rr.request_type = RR_BY_POSITION;
    rr.count = 40000;
    EXPECT_EQ(BACNET_STATUS_ERROR, rr_encode_apdu(nullptr, 1, &rr));
    // A count beyond INTEGER16 on the wire; the withdrawn range tag 4.
    for (const char* bad :
         {"0C 05 00 00 02 19 83 3E 21 01 33 01 00 00 3F", "0C 05 00 00 02 19 83 4E 21 01 31 01 4F"})
        EXPECT_EQ(BACNET_STATUS_ERROR, DECODED(bad, rr_decode_service_request(p, n, &rr))) << bad;

    // By position the acknowledgement carries no first sequence number; an empty result neither.
    rr.request_type = RR_BY_POSITION;
    rr.count = 5;
    rr.result_flags.bits_used = 8;
    rr.result_flags.value[0] = 0xFF;  // only the three defined bits go out
    rr.item_count = 0;
    rr.first_sequence = 12;
    const char* emptyAck = "0C 05 00 00 02 19 83 3A 05 E0 49 00 5E 5F";
    EXPECT_EQ(emptyAck, ENCODED_HEX(rr_ack_encode_service_request(p, &rr)));
    BACNET_READ_RANGE_DATA back{};
    back.first_sequence = 99;
    ASSERT_EQ(14, DECODED(emptyAck, rr_ack_decode_service_request(p, n, &back)));
    EXPECT_EQ(std::make_tuple(0u, 0), std::make_tuple(back.first_sequence, back.application_data_len));
    rr.request_type = RR_BY_SEQUENCE;
    EXPECT_EQ(emptyAck, ENCODED_HEX(rr_ack_encode_service_request(p, &rr)));
    const uint8_t item = 0x00;
    rr.item_count = 1;
    rr.application_data = &item;
    rr.application_data_len = 1;
    EXPECT_EQ("0C 05 00 00 02 19 83 3A 05 E0 49 01 5E 00 5F 69 0C",
              ENCODED_HEX(rr_ack_encode_service_request(p, &rr)));
}

TEST(UnconfirmedServices, WhoIsIAmTimeSyncExamplesAndLimits) {
    // Without limits: the bare header, decoded as -1 / -1.
    const struct {
        int32_t low, high;
        const char* body;
    } whois[] = {{-1, -1, ""},
                 {3, 3, "09 03 19 03"},
                 {0, BACNET_MAX_INSTANCE, "09 00 1B 3F FF FF"},
                 {100, 200, "09 64 19 C8"}};
    int32_t low = 0, high = 0;
    EXPECT_EQ(0, whois_decode_service_request(nullptr, 0, &low, &high));
    for (const auto& w : whois) {
        EXPECT_EQ(hexText(hex(std::string("10 08 ") + w.body)),
                  ENCODED_HEX(whois_encode_apdu(p, w.low, w.high)));
        EXPECT_EQ(int(hex(w.body).size()), DECODED(w.body, whois_decode_service_request(p, n, &low, &high)));
        EXPECT_EQ(std::make_tuple(w.low, w.high), std::make_tuple(low, high));
    }
    EXPECT_EQ(BACNET_STATUS_ERROR, whois_encode_apdu(nullptr, 5, 4));
    EXPECT_EQ(BACNET_STATUS_ERROR, whois_encode_apdu(nullptr, 0, BACNET_MAX_INSTANCE + 1));
    for (const char* bad : {"09 00 1B 40 00 00", "09 05"})
        EXPECT_EQ(BACNET_STATUS_ERROR, DECODED(bad, whois_decode_service_request(p, n, &low, &high))) << bad;
    EXPECT_EQ(100, low);  // unchanged by the failures

    EXPECT_EQ("10 00 C4 02 00 00 03 22 04 00 91 03 21 63",
              ENCODED_HEX(iam_encode_apdu(p, 3, 1024, SEGMENTATION_NONE, 99)));
    uint32_t device = 0;
    unsigned maxApdu = 0;
    int segmentation = -1;
    uint16_t vendor = 0;
    EXPECT_EQ(12, DECODED("C4 02 00 00 03 22 04 00 91 03 21 63",
                          iam_decode_service_request(p, n, &device, &maxApdu, &segmentation, &vendor)));
    EXPECT_EQ(std::make_tuple(3u, 1024u, int(SEGMENTATION_NONE), 99),
              std::make_tuple(device, maxApdu, segmentation, int(vendor)));
    EXPECT_EQ("10 00 C4 02 3F FF FF 22 05 C4 91 00 22 03 B3",
              ENCODED_HEX(iam_encode_apdu(p, BACNET_MAX_INSTANCE, 1476, SEGMENTATION_BOTH, 947)));
    for (const auto& [instance, segmentation] : {std::make_pair(BACNET_MAX_INSTANCE + 1, 0), {1, 4}, {1, -1}})
        EXPECT_EQ(BACNET_STATUS_ERROR, iam_encode_apdu(nullptr, instance, 1476, segmentation, 1))
            << segmentation;
    // An I-Am naming another object type, a vendor beyond 16 bits, a segmentation of 4.
    device = 0;
    for (const char* bad :
         {"C4 00 00 00 03 22 04 00 91 03 21 63", "C4 02 00 00 03 22 04 00 91 03 23 01 00 00",
          "C4 02 00 00 03 22 04 00 91 04 21 63"})
        EXPECT_EQ(BACNET_STATUS_ERROR,
                  DECODED(bad, iam_decode_service_request(p, n, &device, nullptr, nullptr, nullptr)));
    EXPECT_EQ(0u, device);

    // 1992-11-17 (a Tuesday) 22:45:30.70; the UTC form differs only in the service choice.
    const BACNET_DATE date{1992, 11, 17, 2};
    const BACNET_TIME time{22, 45, 30, 70};
    EXPECT_EQ("10 06 A4 5C 0B 11 02 B4 16 2D 1E 46", ENCODED_HEX(timesync_encode_apdu(p, &date, &time)));
    EXPECT_EQ("10 09 A4 5C 0B 11 02 B4 16 2D 1E 46", ENCODED_HEX(timesync_utc_encode_apdu(p, &date, &time)));
    BACNET_DATE d{};
    BACNET_TIME t{};
    EXPECT_EQ(10, DECODED("A4 5C 0B 11 02 B4 16 2D 1E 46", timesync_decode_service_request(p, n, &d, &t)));
    EXPECT_EQ(std::make_tuple(1992, 11, 17, 2),
              std::make_tuple(int(d.year), int(d.month), int(d.day), int(d.wday)));
    EXPECT_EQ(0, std::memcmp(&t, &time, sizeof t));
    // Fully unspecified date and time are values, not errors; time before date is no request.
    const BACNET_DATE anyDate{2155, 255, 255, 255};
    const BACNET_TIME anyTime{255, 255, 255, 255};
    EXPECT_EQ("10 09 A4 FF FF FF FF B4 FF FF FF FF",
              ENCODED_HEX(timesync_utc_encode_apdu(p, &anyDate, &anyTime)));
    EXPECT_EQ(10, DECODED("A4 FF FF FF FF B4 FF FF FF FF", timesync_decode_service_request(p, n, &d, &t)));
    EXPECT_EQ(std::make_tuple(2155, 255), std::make_tuple(int(d.year), int(t.hundredths)));
    EXPECT_EQ(BACNET_STATUS_ERROR, timesync_encode_apdu(nullptr, nullptr, &anyTime));
    EXPECT_EQ(BACNET_STATUS_ERROR,
              DECODED("B4 01 02 03 04 A4 7C 01 01 01", timesync_decode_service_request(p, n, &d, &t)));
}
