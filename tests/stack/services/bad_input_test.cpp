// Every service decoder against what a hostile or broken peer can send, and the record chains of
// the ReadPropertyMultiple-ACK, released after success and after failures at every point (the
// sanitizer build's leak checker watches each case).
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "TQTestCodec.h"
#include "tq_stack/context_decode.h"
#include "tq_stack/iam.h"
#include "tq_stack/rp.h"
#include "tq_stack/rpm.h"
#include "tq_stack/rr.h"
#include "tq_stack/strings.h"
#include "tq_stack/timesync.h"
#include "tq_stack/whois.h"
#include "tq_stack/wp.h"

using namespace TQTest;

namespace {

// Three objects: values of several kinds, a constructed value, an empty list, a property error.
const char* kRpmAck =
    "0C 00 00 00 01"                                       // analog-input 1
    " 1E 29 4D 4E 75 06 00 4F 75 74 65 72 4F"              // object-name "Outer"
    " 29 6F 4E 82 04 00 4F"                                // status-flags
    " 29 57 39 03 4E 00 4F 1F"                             // priority-array[3] NULL
    " 0C 02 00 00 07"                                      // device 7
    " 1E 29 38 4E 0E A4 7C 05 1E 03 B4 0A 0B 0C 0D 0F 4F"  // a constructed date-time
    " 29 4C 4E 4F"                                         // an empty list
    " 29 1C 5E 91 02 91 20 5F 1F"                          // description: unknown-property
    " 0C 00 80 00 02 1E 29 55 4E 44 00 00 00 00 4F 1F";

int rpmAck(const uint8_t* p, uint32_t n) {
    BACNET_READ_ACCESS_DATA d;
    const int r = rpm_ack_decode_service_request(p, n, &d);
    if (r < 0) {  // a failed decode leaves nothing linked
        EXPECT_EQ(nullptr, d.listOfProperties);
        EXPECT_EQ(nullptr, d.next);
    }
    rpm_ack_free_all(&d);
    rpm_ack_free_all(&d);  // twice is harmless
    return r;
}

int rpAckFull(const uint8_t* p, uint32_t n) {
    BACNET_READ_ACCESS_DATA d;
    const int r = rp_ack_fully_decode_service_request(p, n, nullptr, nullptr, &d);
    free_BACNET_READ_ACCESS_DATA_Internals(&d);
    return r;
}

// Heap-held, so an over-long value copy is seen by the sanitizer.
int wpDecode(const uint8_t* p, uint32_t n) {
    auto d = std::make_unique<BACNET_WRITE_PROPERTY_DATA>();
    return wp_decode_service_request(p, n, d.get());
}

struct Limits {
    int32_t low, high;
};
struct IamOut {
    uint32_t device;
    unsigned maxApdu;
    int segmentation;
    uint16_t vendor;
};

// A decoder into a fresh record of type T; `d` names the record inside `call`.
#define DEC(T, call)                   \
    [](const uint8_t* p, uint32_t n) { \
        T d{};                         \
        return call;                   \
    }

struct Service {
    const char* name;
    std::function<int(const uint8_t*, uint32_t)> decode;
    std::string valid;
    // Prefixes of `valid` that are complete shorter requests: they end where only optional
    // elements (an array index, a priority, a range, limits, results) would follow.
    int completePrefixes;
};

enum { RP, RP_ACK, WP, RPM_ACK, RP_ACK_FULL, RR, RR_ACK, WHOIS, IAM, TIMESYNC };
const std::vector<Service>& services() {
    static const std::vector<Service> table = {
        {"rp", DEC(BACNET_READ_PROPERTY_DATA, rp_decode_service_request(p, n, &d)),
         "0C 00 00 00 05 19 55 29 03", 1},
        {"rp_ack", DEC(BACNET_READ_PROPERTY_DATA, rp_ack_decode_service_request(p, n, &d)),
         "0C 00 00 00 05 19 55 3E 44 42 90 99 9A 3F", 0},
        {"wp", wpDecode, "0C 00 80 00 01 19 55 3E 44 43 34 00 00 3F 49 10", 1},
        // After each object identifier (its result list is optional) and after each whole object.
        {"rpm_ack", rpmAck, kRpmAck, 5},
        {"rp_ack_full", rpAckFull,
         "0C 00 00 00 05 19 55 3E 0E A4 7C 01 02 03 1C 00 00 00 01 0F 2D 03 41 42 43 3F", 0},
        {"rr", DEC(BACNET_READ_RANGE_DATA, rr_decode_service_request(p, n, &d)),
         "0C 05 00 00 01 19 83 7E A4 62 03 17 01 B4 13 34 22 00 31 FC 7F", 1},
        {"rr_ack", DEC(BACNET_READ_RANGE_DATA, rr_ack_decode_service_request(p, n, &d)),
         "0C 05 00 00 01 19 83 3A 05 C0 49 01 5E 0E A4 62 03 17 01 B4 13 34 22 00 0F 1E 2C 41 90 00 00 1F 5F "
         "69 4F",
         1},
        {"whois", DEC(Limits, whois_decode_service_request(p, n, &d.low, &d.high)), "09 03 1A 01 00", 1},
        {"iam",
         DEC(IamOut, iam_decode_service_request(p, n, &d.device, &d.maxApdu, &d.segmentation, &d.vendor)),
         "C4 02 00 00 03 22 04 00 91 03 21 63", 0},
        {"timesync", DEC(BACNET_DATE_TIME, timesync_decode_service_request(p, n, &d.date, &d.time)),
         "A4 5C 0B 11 02 B4 16 2D 1E 46", 0},
    };
    return table;
}

int decodeExact(const Service& s, const Bytes& in) {
    ExactBuffer buf(in);
    return s.decode(buf.data(), buf.size());
}

// Hex text with runs spelled as marks: '.' a NULL, '(' an opening and ')' a closing tag [0].
std::string withRuns(const std::string& text) {
    std::string out;
    for (char c : text) out += c == '.' ? " 00" : c == '(' ? " 0E" : c == ')' ? " 0F" : std::string(1, c);
    return out;
}

Bytes nestedRpAck(int depth) {
    return hex(withRuns("0C 00 00 00 05 19 55 3E" + std::string(size_t(depth), '(') +
                        std::string(size_t(depth), ')') + " 3F"));
}

}  // namespace

TEST(ServiceBadInput, TruncationMarkersAndMutationAtEveryByte) {
    const uint8_t replacements[] = {0x00, 0x05, 0x06, 0x07, 0x0D, 0x0E, 0x0F, 0x3E,
                                    0x3F, 0x4E, 0x7F, 0x80, 0xF9, 0xFD, 0xFE, 0xFF};
    for (const auto& s : services()) {
        SCOPED_TRACE(s.name);
        const Bytes in = hex(s.valid);
        EXPECT_EQ(int(in.size()), decodeExact(s, in));
        EXPECT_LT(s.decode(nullptr, uint32_t(in.size())), 0) << "NULL buffer";
        // A prefix is rejected or a complete shorter request; it never reports bytes it did not have.
        int complete = 0;
        for (size_t n = 0; n < in.size(); ++n) {
            const int r = decodeExact(s, Bytes(in.begin(), in.begin() + long(n)));
            EXPECT_TRUE(r < 0 || r == int(n)) << "prefix " << n << " gave " << r;
            complete += r >= 0;
        }
        EXPECT_EQ(s.completePrefixes, complete);
        for (uint8_t marker : {0xF9, 0xFD, 0xFE, 0xFF, 0x0D, 0x3E, 0x1F}) {
            Bytes longer = in;
            longer.push_back(marker);
            EXPECT_LT(decodeExact(s, longer), 0) << "trailing " << int(marker);
            EXPECT_LT(decodeExact(s, {marker}), 0) << "only " << int(marker);
        }
        for (size_t i = 0; i < in.size(); ++i) {
            for (uint8_t b : replacements) {
                Bytes mutated = in;
                mutated[i] = b;
                EXPECT_LE(decodeExact(s, mutated), int(mutated.size())) << "byte " << i << " = " << int(b);
            }
        }
    }
}

// Malformed requests that are no prefix of a valid one (prefixes and trailing markers are swept
// above, cuts inside a member too; huge lengths of every primitive are refused by the codec's own
// tests).
TEST(ServiceBadInput, HugeLengthsShortFieldsUnbalancedTagsAndDeepNesting) {
    const std::tuple<int, const char*, const char*> rows[] = {
        {RP, "0D FF FF FF FF FF 00 00 00 05", "object id with a length near 2^32"},
        {RP, "0B 00 00 05 19 55", "object id declared 3 bytes"},
        {RP, "0C 00 00 00 05 1D 05 01 00 00 00 00", "property of 5 octets"},
        {RP, "0C 00 00 00 05 19 55 2D 05 01 00 00 00 00", "array index beyond 32 bits"},
        {RP, "19 55 0C 00 00 00 05", "elements out of order"},
        {RP, "C4 00 00 00 05 19 55", "application tag where context tag 0 belongs"},
        {RP_ACK, "0C 00 00 00 05 19 55 3E 44 42 90 99 9A 4F", "closing tag of another number"},
        {RP_ACK, "0C 00 00 00 05 19 55 3E 0E 44 42 90 99 9A 3F", "inner opening tag never closed"},
        {RP_ACK, "0C 00 00 00 05 19 55 3E 1F 3F", "inner closing tag never opened"},
        {RP_ACK, "0C 00 00 00 05 19 55 3E 45 FF FF FF FF FF 3F", "value with a length near 2^32"},
        {RP_ACK, "0C 00 00 00 05 19 55 3E 44 42 90 99 3F", "REAL one byte short, closing tag swallowed"},
        {RP_ACK, "0C 00 00 00 05 19 55 3E 3F 3F", "a second closing tag"},
        {WP, "0C 00 80 00 01 19 55 49 10 3E 44 43 34 00 00 3F", "priority before the value"},
        {RPM_ACK, "0C 00 00 00 10 1E 29 55 1F", "result without value or error"},
        {RPM_ACK, "0C 00 00 00 10 1E 29 55 5E 91 02 5F 1F", "error with the class only"},
        {RPM_ACK, "0C 00 00 00 10 1E 29 55 5E 91 02 91 20 91 00 5F 1F", "error with a third element"},
        {RPM_ACK, "0C 00 00 00 10 1E 29 55 4E 44 42 90 99 9A 5F 1F", "value closed by the error tag"},
        {RPM_ACK, "0C 00 00 00 10 1E 29 55 6E 4F 1F", "result tag 6"},
        {RP_ACK_FULL, "0C 00 00 00 05 19 55 3E 0E 0E 0F 3F", "unbalanced nesting inside the value"},
        {RP_ACK_FULL, "0C 00 00 00 05 19 55 3E 0E 1F 3F", "mismatched nesting inside the value"},
        {RP_ACK_FULL, "0C 00 00 00 05 19 55 3E 0D FF FF FF FF FF 3F", "context primitive with a huge length"},
        {RR, "0C 05 00 00 01 19 83 3E 21 01 3F", "range without count"},
        {RR, "0C 05 00 00 01 19 83 3E 21 01 34 80 00 00 00 3F", "count with the high bit set (INT32_MIN)"},
        {RR, "0C 05 00 00 01 19 83 7E A4 62 03 17 B4 13 34 22 00 31 04 7F", "date one byte short"},
        {RR, "0C 05 00 00 01 19 83 3E 21 01 31 01 7F", "range closed with another tag"},
        {RR, "0C 05 00 00 01 19 83 3E 21 01 31 01 3F 00", "bytes after the range"},
        {RR_ACK, "0C 05 00 00 01 19 83 3A 05 C0 5E 5F", "item count missing"},
        {RR_ACK, "0C 05 00 00 01 19 83 3B 05 C0 00 00 49 01 5E 00 5F", "flags longer than the bit string"},
        {WHOIS, "19 03", "high limit only"},
        {WHOIS, "0C 00 40 00 00 19 03", "low limit beyond the instance range"},
        {IAM, "C3 02 00 00 22 04 00 91 03 21 63", "object id of 3 octets"},
        {IAM, "C4 02 00 00 03 22 04 00 21 03 21 63", "segmentation as Unsigned"},
        {TIMESYNC, "A3 5C 0B 11 B4 16 2D 1E 46", "date declared 3 octets"},
    };
    for (const auto& [service, h, why] : rows)
        EXPECT_LT(decodeExact(services()[size_t(service)], hex(h)), 0)
            << services()[size_t(service)].name << ": " << why;
    // A priority of 4 octets is unusual but well-formed: length alone is not a reason to reject.
    const Bytes longPriority = hex("0C 00 80 00 01 19 55 3E 44 43 34 00 00 3F 4C 00 00 00 10");
    EXPECT_EQ(int(longPriority.size()), decodeExact(services()[WP], longPriority));
    // Nested openings inside a value: 40 is beyond the nesting limit, 20 within.
    for (int s : {RP_ACK, RP_ACK_FULL}) {
        EXPECT_LT(decodeExact(services()[size_t(s)], nestedRpAck(40)), 0) << services()[size_t(s)].name;
        EXPECT_EQ(int(nestedRpAck(20).size()), decodeExact(services()[size_t(s)], nestedRpAck(20)))
            << services()[size_t(s)].name;
    }
}

TEST(ServiceBadInput, SignedWildcardAndHugeValuesAreValues) {
    // A negative count decodes (reading backwards); wildcard reference times are values.
    BACNET_READ_RANGE_DATA rr{};
    ASSERT_EQ(21, DECODED("0C 05 00 00 01 19 83 7E A4 FF FF FF FF B4 FF FF FF FF 31 80 7F",
                          rr_decode_service_request(p, n, &rr)));
    EXPECT_EQ(
        std::make_tuple(-128, 2155, 255),
        std::make_tuple(int(rr.count), int(rr.range.ref_time.date.year), int(rr.range.ref_time.time.hour)));
    // An explicit index of 0xFFFFFFFF is indistinguishable from no index; it is accepted.
    BACNET_READ_PROPERTY_DATA rp{};
    ASSERT_EQ(12, DECODED("0C 00 00 00 05 19 55 2C FF FF FF FF", rp_decode_service_request(p, n, &rp)));
    EXPECT_EQ(BACNET_ARRAY_ALL, rp.array_index);
    // Huge item counts are just numbers: the items are what is there.
    ASSERT_EQ(17, DECODED("0C 05 00 00 01 19 83 3A 05 C0 4C FF FF FF FF 5E 5F",
                          rr_ack_decode_service_request(p, n, &rr)));
    EXPECT_EQ(std::make_tuple(0xFFFFFFFFu, 0), std::make_tuple(rr.item_count, rr.application_data_len));
}

TEST(RpmAck, ChainOfThreeObjectsInOrder) {
    ExactBuffer in(kRpmAck);
    BACNET_READ_ACCESS_DATA rad;
    ASSERT_EQ(int(in.size()), rpm_ack_decode_service_request(in.data(), in.size(), &rad));
    // The constructed value arrives as opening tag, primitives, closing tag; the empty list as a
    // result without values, which is not an error.
    EXPECT_EQ(
        "0,1: 77=(\"Outer\") 111=(b0000) 87[3]=(null); 8,7: 56=([0]{ d2024-5-30 t10:11:12.13 [0]}) 76=() "
        "28=!2,32; "
        "2,2: 85=(r0)",
        describe(&rad));
    rpm_ack_free_all(&rad);
    EXPECT_EQ(std::make_tuple((BACNET_READ_ACCESS_DATA*)nullptr, (BACNET_PROPERTY_REFERENCE*)nullptr),
              std::make_tuple(rad.next, rad.listOfProperties));
}

TEST(RpmAck, ResultCountsValueBudgetNestingAndBareObjects) {
    // 300 NULL results of one object: one node and one value each.
    std::string many = "0C 00 00 00 01 1E";
    for (int i = 0; i < 300; ++i) many += " 29 55 4E 00 4F";
    ExactBuffer in(many + " 1F");
    BACNET_READ_ACCESS_DATA rad;
    ASSERT_EQ(int(in.size()), rpm_ack_decode_service_request(in.data(), in.size(), &rad));
    int count = 0;
    for (auto* p = rad.listOfProperties; p; p = p->next) count += p->value && !p->value->next;
    EXPECT_EQ(300, count);
    rpm_ack_free_all(&rad);

    // The value budget spans all results: two results of 2100 values each are too many together.
    const std::string nulls2100 = " 29 4C 4E" + std::string(2100, '.') + " 4F";
    EXPECT_EQ(BACNET_STATUS_ERROR,
              DECODED(withRuns("0C 00 00 00 01 1E" + nulls2100 + nulls2100 + " 1F"), rpmAck(p, n)));
    // Nesting beyond the limit inside one result is refused and released.
    EXPECT_EQ(BACNET_STATUS_ERROR, DECODED(withRuns("0C 00 00 00 01 1E 29 55 4E" + std::string(33, '(') +
                                                    std::string(33, ')') + " 4F 1F"),
                                           rpmAck(p, n)));

    // Objects without a result list are allowed by the grammar.
    ExactBuffer bare("0C 00 00 00 01 0C 00 00 00 02");
    ASSERT_EQ(10, rpm_ack_decode_service_request(bare.data(), bare.size(), &rad));
    EXPECT_EQ("0,1:; 0,2:", describe(&rad));  // no result lists
    rpm_ack_free_all(&rad);
    EXPECT_TRUE(rpm_ack_decode_service_request(bare.data(), 0, &rad) == BACNET_STATUS_ERROR &&
                rpm_ack_decode_service_request(bare.data(), 10, nullptr) == BACNET_STATUS_ERROR);
    rpm_ack_free_all(nullptr);
    free_BACNET_READ_ACCESS_DATA_Internals(nullptr);
}
