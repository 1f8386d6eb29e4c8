// Behaviour of the service codecs beyond the published examples: optional elements, limits,
// sizing with a NULL buffer, the room checks of the encoders and the APDU header variants.
#include <gtest/gtest.h>

#include <cstring>
#include <tuple>
#include <vector>

#include "hex.h"
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

using namespace svc_test;

TEST(ApduHeaders, ConfirmedSegmentedAndCodes) {
    BACNET_CONFIRMED_SERVICE_DATA h{};
    h.segmented_message = true;
    h.more_follows = true;
    h.segmented_response_accepted = true;
    h.max_segs_code = 7;
    h.max_apdu_code = 5;
    h.invoke_id = 200;
    h.sequence_number = 3;
    h.proposed_window_size = 16;
    h.service_choice = SERVICE_CONFIRMED_READ_PROP_MULTIPLE;
    const auto bytesOut = encoded([&](uint8_t* p) { return apdu_encode_confirmed_header(p, &h); });
    EXPECT_EQ("0E 75 C8 03 10 0E", hex(bytesOut));
    EXPECT_EQ(6, apdu_encode_confirmed_header(nullptr, &h));
    BACNET_CONFIRMED_SERVICE_DATA back{};
    ASSERT_EQ(6, apdu_decode_confirmed_header(bytesOut.data(), 6, &back));
    EXPECT_TRUE(back.segmented_message && back.more_follows && back.segmented_response_accepted);
    EXPECT_EQ(std::make_tuple(7, 200, 3, 16, int(SERVICE_CONFIRMED_READ_PROP_MULTIPLE)),
              std::make_tuple(int(back.max_segs_code), int(back.invoke_id), int(back.sequence_number),
                              int(back.proposed_window_size), int(back.service_choice)));
    // A segmented header cut short, and a PDU of another type.
    EXPECT_EQ(BACNET_STATUS_ERROR, apdu_decode_confirmed_header(bytesOut.data(), 5, &back));
    const uint8_t unconfirmed[] = {0x10, 0x08, 0x00, 0x00};
    EXPECT_EQ(BACNET_STATUS_ERROR, apdu_decode_confirmed_header(unconfirmed, 4, &back));

    EXPECT_EQ(std::make_pair(1476u, 0u), std::make_pair(apdu_max_apdu_octets(5), apdu_max_apdu_octets(6)));
    EXPECT_EQ(std::make_tuple(5, 5, 4, 0),
              std::make_tuple(int(apdu_max_apdu_code(1476)), int(apdu_max_apdu_code(60000)),
                              int(apdu_max_apdu_code(1475)), int(apdu_max_apdu_code(10))));

    // Segmented complex ACK: reported, service choice taken from its own position.
    const uint8_t segmentedAck[] = {0x3C, 0x07, 0x00, 0x04, 0x0E};
    uint8_t id = 0, service = 0;
    bool segmented = false;
    EXPECT_EQ(5, apdu_decode_complex_ack_header(segmentedAck, 5, &id, &service, &segmented));
    EXPECT_TRUE(segmented);
    EXPECT_EQ(SERVICE_CONFIRMED_READ_PROP_MULTIPLE, service);
    EXPECT_EQ(BACNET_STATUS_ERROR,
              apdu_decode_complex_ack_header(segmentedAck, 4, &id, &service, &segmented));

    const auto reject =
        encoded([](uint8_t* p) { return apdu_encode_reject(p, 9, REJECT_REASON_INVALID_TAG); });
    EXPECT_EQ("60 09 04", hex(reject));
    const auto abortPdu = encoded([](uint8_t* p) { return apdu_encode_abort(p, 9, 4, true); });
    EXPECT_EQ("71 09 04", hex(abortPdu));
    uint8_t reason = 0;
    bool server = false;
    EXPECT_EQ(3, apdu_decode_abort(abortPdu.data(), 3, &id, &reason, &server));
    EXPECT_TRUE(server);
    EXPECT_EQ(BACNET_STATUS_ERROR, apdu_decode_reject(abortPdu.data(), 3, &id, &reason));
    EXPECT_EQ(3, apdu_decode_reject(reject.data(), 3, &id, &reason));
    EXPECT_EQ(4, reason);
}

TEST(ReadPropertyCodec, ArrayIndexLimitsAndRoom) {
    BACNET_READ_PROPERTY_DATA rp{};
    rp.object_type = OBJECT_DEVICE;
    rp.object_instance = BACNET_MAX_INSTANCE;
    rp.object_property = PROP_OBJECT_LIST;
    rp.array_index = 0x12345678;
    const auto apdu = encoded([&](uint8_t* p) { return rp_encode_apdu(p, 7, &rp); });
    EXPECT_EQ("00 05 07 0C 0C 02 3F FF FF 19 4C 2C 12 34 56 78", hex(apdu));
    BACNET_READ_PROPERTY_DATA back{};
    ASSERT_EQ(int(apdu.size() - 4),
              rp_decode_service_request(apdu.data() + 4, uint32_t(apdu.size() - 4), &back));
    EXPECT_EQ(std::make_tuple(OBJECT_DEVICE, uint32_t(BACNET_MAX_INSTANCE), 0x12345678u),
              std::make_tuple(back.object_type, back.object_instance, back.array_index));

    // Proprietary property numbers take more octets.
    rp.object_property = BACNET_PROPERTY_ID(4194303);
    rp.array_index = BACNET_ARRAY_ALL;
    const auto wide = encoded([&](uint8_t* p) { return rp_encode_apdu(p, 7, &rp); });
    ASSERT_GT(rp_decode_service_request(wide.data() + 4, uint32_t(wide.size() - 4), &back), 0);
    EXPECT_EQ(BACNET_PROPERTY_ID(4194303), back.object_property);
    EXPECT_EQ(BACNET_ARRAY_ALL, back.array_index);

    // Invalid references never reach the wire.
    rp.object_instance = BACNET_MAX_INSTANCE + 1;
    EXPECT_EQ(BACNET_STATUS_ERROR, rp_encode_apdu(nullptr, 1, &rp));
    rp.object_instance = 1;
    rp.object_type = BACNET_OBJECT_TYPE(1024);
    EXPECT_EQ(BACNET_STATUS_ERROR, rp_encode_apdu(nullptr, 1, &rp));
    EXPECT_EQ(BACNET_STATUS_ERROR, rp_encode_apdu(nullptr, 1, nullptr));

    // An acknowledgement must fit one APDU: 1476 octets in all.
    rp.object_type = OBJECT_ANALOG_INPUT;
    std::vector<uint8_t> value(MAX_APDU, 0x00);  // NULLs
    rp.application_data = value.data();
    const int overhead = rp_ack_encode_apdu(nullptr, 1, &rp) - 0;  // with length 0
    rp.application_data_len = MAX_APDU - overhead;
    EXPECT_EQ(MAX_APDU, rp_ack_encode_apdu(nullptr, 1, &rp));
    std::vector<uint8_t> out(MAX_APDU);
    EXPECT_EQ(MAX_APDU, rp_ack_encode_apdu(out.data(), 1, &rp));
    rp.application_data_len += 1;
    EXPECT_EQ(BACNET_STATUS_ERROR, rp_ack_encode_apdu(nullptr, 1, &rp));
    rp.application_data_len = -1;
    EXPECT_EQ(BACNET_STATUS_ERROR, rp_ack_encode_apdu(nullptr, 1, &rp));
    rp.application_data = nullptr;
    rp.application_data_len = 3;
    EXPECT_EQ(BACNET_STATUS_ERROR, rp_ack_encode_apdu(nullptr, 1, &rp));
}

TEST(ReadPropertyCodec, AckWithNestedValueAndEmptyValue) {
    // A constructed value (a date-time between tags) stays as it is; the tags inside balance.
    const auto ack = bytes("0C 00 00 00 01 19 55 3E 0E A4 7C 01 02 03 B4 01 02 03 04 0F 3F");
    BACNET_READ_PROPERTY_DATA d{};
    ASSERT_EQ(int(ack.size()), rp_ack_decode_service_request(ack.data(), uint32_t(ack.size()), &d));
    EXPECT_EQ(12, d.application_data_len);
    EXPECT_EQ(0x0E, d.application_data[0]);
    // An empty value (an empty list) is legal.
    const auto empty = bytes("0C 00 00 00 01 19 55 3E 3F");
    ASSERT_EQ(int(empty.size()), rp_ack_decode_service_request(empty.data(), uint32_t(empty.size()), &d));
    EXPECT_EQ(0, d.application_data_len);
    // Round trip of our own encoding with an index.
    BACNET_READ_PROPERTY_DATA rp{};
    rp.object_type = OBJECT_ANALOG_OUTPUT;
    rp.object_instance = 77;
    rp.object_property = PROP_PRIORITY_ARRAY;
    rp.array_index = 16;
    const uint8_t nul = 0x00;
    rp.application_data = &nul;
    rp.application_data_len = 1;
    const auto out = encoded([&](uint8_t* p) { return rp_ack_encode_apdu(p, 200, &rp); });
    EXPECT_EQ("30 C8 0C 0C 00 40 00 4D 19 57 29 10 3E 00 3F", hex(out));
    ASSERT_EQ(int(out.size() - 3),
              rp_ack_decode_service_request(out.data() + 3, uint32_t(out.size() - 3), &d));
    EXPECT_EQ(16u, d.array_index);
    EXPECT_EQ(1, d.application_data_len);
}

TEST(WritePropertyCodec, PriorityIndexAndValidation) {
    BACNET_WRITE_PROPERTY_DATA wp{};
    wp.object_type = OBJECT_BINARY_OUTPUT;
    wp.object_instance = 3;
    wp.object_property = PROP_PRESENT_VALUE;
    wp.array_index = BACNET_ARRAY_ALL;
    wp.application_data[0] = 0x91;  // enumerated active
    wp.application_data[1] = 0x01;
    wp.application_data_len = 2;
    wp.priority = 8;
    const auto apdu = encoded([&](uint8_t* p) { return wp_encode_apdu(p, 12, &wp); });
    EXPECT_EQ("00 05 0C 0F 0C 01 00 00 03 19 55 3E 91 01 3F 49 08", hex(apdu));
    EXPECT_EQ(int(apdu.size()), wp_encode_apdu(nullptr, 12, &wp));

    BACNET_WRITE_PROPERTY_DATA back{};
    ASSERT_EQ(int(apdu.size() - 4),
              wp_decode_service_request(apdu.data() + 4, uint32_t(apdu.size() - 4), &back));
    EXPECT_EQ(std::make_tuple(8, 2, 0x91),
              std::make_tuple(int(back.priority), back.application_data_len, int(back.application_data[0])));

    // Priorities outside 1..16 on the wire are rejected with the reason in the record.
    auto bad = apdu;
    bad.back() = 17;
    back.error_class = ERROR_CLASS_DEVICE;
    EXPECT_EQ(BACNET_STATUS_REJECT,
              wp_decode_service_request(bad.data() + 4, uint32_t(bad.size() - 4), &back));
    EXPECT_EQ(ERROR_CLASS_SERVICES, back.error_class);
    EXPECT_EQ(ERROR_CODE_PARAMETER_OUT_OF_RANGE, back.error_code);
    bad.back() = 0;
    EXPECT_EQ(BACNET_STATUS_REJECT,
              wp_decode_service_request(bad.data() + 4, uint32_t(bad.size() - 4), &back));

    // Encoder checks: priority, empty value, oversize.
    wp.priority = 17;
    EXPECT_EQ(BACNET_STATUS_ERROR, wp_encode_apdu(nullptr, 1, &wp));
    wp.priority = 0;
    wp.application_data_len = 0;
    EXPECT_EQ(BACNET_STATUS_ERROR, wp_encode_apdu(nullptr, 1, &wp));
    wp.application_data_len = MAX_APDU;
    EXPECT_EQ(BACNET_STATUS_ERROR, wp_encode_apdu(nullptr, 1, &wp));
    wp.application_data_len = MAX_APDU - 4 - 9;  // header, object, property, tags
    std::memset(wp.application_data, 0, size_t(wp.application_data_len));
    EXPECT_EQ(MAX_APDU, wp_encode_apdu(nullptr, 1, &wp));

    // An empty value between the tags is not a write.
    const auto noValue = bytes("0C 01 00 00 03 19 55 3E 3F");
    EXPECT_EQ(BACNET_STATUS_ERROR,
              wp_decode_service_request(noValue.data(), uint32_t(noValue.size()), &back));
    // With an array index and a constructed value.
    const auto indexed = bytes("0C 01 00 00 03 19 57 29 05 3E 0E 21 01 0F 3F");
    ASSERT_EQ(int(indexed.size()),
              wp_decode_service_request(indexed.data(), uint32_t(indexed.size()), &back));
    EXPECT_EQ(std::make_tuple(5u, int(BACNET_NO_PRIORITY), 4),
              std::make_tuple(back.array_index, int(back.priority), back.application_data_len));
}

TEST(ReadPropertyMultipleCodec, RequestRoomAndValidation) {
    BACNET_PROPERTY_REFERENCE all{};
    all.propertyIdentifier = PROP_PRIORITY_ARRAY;
    all.propertyArrayIndex = 3;
    BACNET_READ_ACCESS_DATA rad{OBJECT_ANALOG_OUTPUT, 1, &all, nullptr};
    const auto apdu = encoded([&](uint8_t* p) { return rpm_encode_apdu(p, MAX_APDU, 5, &rad); });
    EXPECT_EQ("00 05 05 0E 0C 00 40 00 01 1E 09 57 19 03 1F", hex(apdu));
    // Exactly enough room, one octet short.
    std::vector<uint8_t> buf(apdu.size());
    EXPECT_EQ(int(apdu.size()), rpm_encode_apdu(buf.data(), unsigned(apdu.size()), 5, &rad));
    EXPECT_EQ(BACNET_STATUS_ERROR, rpm_encode_apdu(buf.data(), unsigned(apdu.size() - 1), 5, &rad));
    // A record without properties or with a bad instance.
    BACNET_READ_ACCESS_DATA empty{OBJECT_ANALOG_OUTPUT, 1, nullptr, nullptr};
    EXPECT_EQ(BACNET_STATUS_ERROR, rpm_encode_apdu(nullptr, MAX_APDU, 5, &empty));
    BACNET_READ_ACCESS_DATA badInstance{OBJECT_ANALOG_OUTPUT, BACNET_MAX_INSTANCE + 1, &all, nullptr};
    EXPECT_EQ(BACNET_STATUS_ERROR, rpm_encode_apdu(nullptr, MAX_APDU, 5, &badInstance));
    EXPECT_EQ(BACNET_STATUS_ERROR, rpm_encode_apdu(nullptr, MAX_APDU, 5, nullptr));
    // Many objects overflow a 1476-octet APDU; the encoder stops without writing past max_apdu.
    std::vector<BACNET_READ_ACCESS_DATA> many(200, rad);
    for (size_t i = 0; i + 1 < many.size(); ++i) many[i].next = &many[i + 1];
    std::vector<uint8_t> big(MAX_APDU + 16, 0xEE);
    EXPECT_EQ(BACNET_STATUS_ERROR, rpm_encode_apdu(big.data(), MAX_APDU, 5, &many[0]));
    EXPECT_EQ(0xEE, big[MAX_APDU]);
    EXPECT_EQ(4 + 200 * 11, rpm_encode_apdu(nullptr, MAX_APDU, 5, &many[0]));
    // A cyclic chain does not hang the sizing pass.
    many.back().next = &many[0];
    EXPECT_EQ(BACNET_STATUS_ERROR, rpm_encode_apdu(nullptr, MAX_APDU, 5, &many[0]));
}

TEST(ReadRangeCodec, RangeChoicesAndAckSequence) {
    BACNET_READ_RANGE_DATA rr{};
    rr.object_type = OBJECT_TREND_LOG;
    rr.object_instance = 2;
    rr.object_property = PROP_LOG_BUFFER;
    rr.array_index = BACNET_ARRAY_ALL;
    rr.request_type = RR_BY_POSITION;
    rr.range.ref_index = 1;
    rr.count = 1;  // the default range: first item, one item
    EXPECT_EQ("00 05 01 1A 0C 05 00 00 02 19 83 3E 21 01 31 01 3F",
              hex(encoded([&](uint8_t* p) { return rr_encode_apdu(p, 1, &rr); })));
    rr.request_type = RR_BY_SEQUENCE;
    rr.range.ref_seq_num = 0xFFFFFFFF;
    rr.count = -32768;
    const auto bySeq = encoded([&](uint8_t* p) { return rr_encode_service_request(p, &rr); });
    EXPECT_EQ("0C 05 00 00 02 19 83 6E 24 FF FF FF FF 32 80 00 6F", hex(bySeq));
    BACNET_READ_RANGE_DATA back{};
    ASSERT_EQ(int(bySeq.size()), rr_decode_service_request(bySeq.data(), uint32_t(bySeq.size()), &back));
    EXPECT_EQ(std::make_tuple(int(RR_BY_SEQUENCE), 0xFFFFFFFFu, -32768),
              std::make_tuple(int(back.request_type), back.range.ref_seq_num, int(back.count)));
    rr.request_type = RR_READ_ALL;
    const auto all = encoded([&](uint8_t* p) { return rr_encode_service_request(p, &rr); });
    EXPECT_EQ("0C 05 00 00 02 19 83", hex(all));
    ASSERT_EQ(int(all.size()), rr_decode_service_request(all.data(), uint32_t(all.size()), &back));
    EXPECT_EQ(RR_READ_ALL, back.request_type);
    rr.request_type = 3;
    EXPECT_EQ(BACNET_STATUS_ERROR, rr_encode_apdu(nullptr, 1, &rr));
    rr.request_type = RR_BY_POSITION;
    rr.count = 40000;
    EXPECT_EQ(BACNET_STATUS_ERROR, rr_encode_apdu(nullptr, 1, &rr));
    // A count beyond INTEGER16 on the wire.
    const auto hugeCount = bytes("0C 05 00 00 02 19 83 3E 21 01 33 01 00 00 3F");
    EXPECT_EQ(BACNET_STATUS_ERROR,
              rr_decode_service_request(hugeCount.data(), uint32_t(hugeCount.size()), &back));
    // The deprecated range tag 4 is not accepted.
    const auto tag4 = bytes("0C 05 00 00 02 19 83 4E 21 01 31 01 4F");
    EXPECT_EQ(BACNET_STATUS_ERROR, rr_decode_service_request(tag4.data(), uint32_t(tag4.size()), &back));

    // By position the acknowledgement carries no first sequence number; an empty result neither.
    rr.request_type = RR_BY_POSITION;
    rr.count = 5;
    rr.result_flags.bits_used = 8;
    rr.result_flags.value[0] = 0xFF;  // only the three defined bits go out
    rr.item_count = 0;
    rr.first_sequence = 12;
    const auto ack = encoded([&](uint8_t* p) { return rr_ack_encode_service_request(p, &rr); });
    EXPECT_EQ("0C 05 00 00 02 19 83 3A 05 E0 49 00 5E 5F", hex(ack));
    back.first_sequence = 99;
    ASSERT_EQ(int(ack.size()), rr_ack_decode_service_request(ack.data(), uint32_t(ack.size()), &back));
    EXPECT_EQ(std::make_pair(0u, 0), std::make_pair(back.first_sequence, back.application_data_len));
    rr.request_type = RR_BY_SEQUENCE;
    EXPECT_EQ(hex(ack), hex(encoded([&](uint8_t* p) { return rr_ack_encode_service_request(p, &rr); })));
    rr.item_count = 1;
    const uint8_t item = 0x00;
    rr.application_data = &item;
    rr.application_data_len = 1;
    const auto withSeq = encoded([&](uint8_t* p) { return rr_ack_encode_service_request(p, &rr); });
    EXPECT_EQ("0C 05 00 00 02 19 83 3A 05 E0 49 01 5E 00 5F 69 0C", hex(withSeq));
}

TEST(UnconfirmedServices, WhoIsIAmTimeSyncLimits) {
    // Without limits: the bare header, decoded as -1 / -1.
    EXPECT_EQ("10 08", hex(encoded([](uint8_t* p) { return whois_encode_apdu(p, -1, -1); })));
    int32_t low = 0, high = 0;
    EXPECT_EQ(0, whois_decode_service_request(nullptr, 0, &low, &high));
    EXPECT_EQ(std::make_pair(-1, -1), std::make_pair(low, high));
    const auto wide = encoded([](uint8_t* p) { return whois_encode_apdu(p, 100, 200); });
    EXPECT_EQ("10 08 09 64 19 C8", hex(wide));
    EXPECT_EQ(4, whois_decode_service_request(wide.data() + 2, 4, &low, &high));
    EXPECT_EQ(std::make_pair(100, 200), std::make_pair(low, high));
    const auto max = encoded([](uint8_t* p) { return whois_encode_apdu(p, 0, BACNET_MAX_INSTANCE); });
    EXPECT_EQ("10 08 09 00 1B 3F FF FF", hex(max));
    EXPECT_EQ(BACNET_STATUS_ERROR, whois_encode_apdu(nullptr, 5, 4));
    EXPECT_EQ(BACNET_STATUS_ERROR, whois_encode_apdu(nullptr, 0, BACNET_MAX_INSTANCE + 1));
    const auto tooHigh = bytes("09 00 1B 40 00 00");
    EXPECT_EQ(BACNET_STATUS_ERROR, whois_decode_service_request(tooHigh.data(), 6, &low, &high));
    const auto lowOnly = bytes("09 05");
    EXPECT_EQ(BACNET_STATUS_ERROR, whois_decode_service_request(lowOnly.data(), 2, &low, &high));
    EXPECT_EQ(100, low);  // unchanged by the failures

    const auto iam = encoded(
        [](uint8_t* p) { return iam_encode_apdu(p, BACNET_MAX_INSTANCE, 1476, SEGMENTATION_BOTH, 947); });
    EXPECT_EQ("10 00 C4 02 3F FF FF 22 05 C4 91 00 22 03 B3", hex(iam));
    EXPECT_EQ(BACNET_STATUS_ERROR, iam_encode_apdu(nullptr, BACNET_MAX_INSTANCE + 1, 1476, 0, 1));
    EXPECT_EQ(BACNET_STATUS_ERROR, iam_encode_apdu(nullptr, 1, 1476, 4, 1));
    EXPECT_EQ(BACNET_STATUS_ERROR, iam_encode_apdu(nullptr, 1, 1476, -1, 1));
    // An I-Am naming another object type, a vendor beyond 16 bits, a segmentation of 4.
    const auto notDevice = bytes("C4 00 00 00 03 22 04 00 91 03 21 63");
    const auto bigVendor = bytes("C4 02 00 00 03 22 04 00 91 03 23 01 00 00");
    const auto badSegmentation = bytes("C4 02 00 00 03 22 04 00 91 04 21 63");
    uint32_t device = 0;
    EXPECT_EQ(BACNET_STATUS_ERROR,
              iam_decode_service_request(notDevice.data(), 12, &device, nullptr, nullptr, nullptr));
    EXPECT_EQ(BACNET_STATUS_ERROR,
              iam_decode_service_request(bigVendor.data(), 14, &device, nullptr, nullptr, nullptr));
    EXPECT_EQ(BACNET_STATUS_ERROR,
              iam_decode_service_request(badSegmentation.data(), 12, &device, nullptr, nullptr, nullptr));
    EXPECT_EQ(0u, device);

    // Fully unspecified date and time are values, not errors.
    const BACNET_DATE anyDate{2155, 255, 255, 255};
    const BACNET_TIME anyTime{255, 255, 255, 255};
    const auto wild = encoded([&](uint8_t* p) { return timesync_utc_encode_apdu(p, &anyDate, &anyTime); });
    EXPECT_EQ("10 09 A4 FF FF FF FF B4 FF FF FF FF", hex(wild));
    BACNET_DATE d{};
    BACNET_TIME t{};
    EXPECT_EQ(10, timesync_decode_service_request(wild.data() + 2, 10, &d, &t));
    EXPECT_EQ(std::make_pair(2155, 255), std::make_pair(int(d.year), int(t.hundredths)));
    EXPECT_EQ(BACNET_STATUS_ERROR, timesync_encode_apdu(nullptr, nullptr, &anyTime));
    // Time before date is not a TimeSynchronization.
    const auto swapped = bytes("B4 01 02 03 04 A4 7C 01 01 01");
    EXPECT_EQ(BACNET_STATUS_ERROR, timesync_decode_service_request(swapped.data(), 10, &d, &t));
}
