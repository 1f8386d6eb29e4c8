// Every service decoder against what a hostile or broken peer can send. Inputs are copied into
// exactly-sized heap buffers so that an over-read is caught by the sanitizer build.
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

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

using Decoder = std::function<int(const uint8_t*, uint32_t)>;

struct Service {
    const char* name;
    Decoder decode;
    std::string valid;  // a well-formed service data
};

// A decoder into a fresh record of type T; `d` names the record inside `call`.
#define DEC(T, call)                   \
    [](const uint8_t* p, uint32_t n) { \
        T d{};                         \
        return call;                   \
    }

// Decoders that allocate release what they made, so the leak checker sees every path.
int rpmAck(const uint8_t* p, uint32_t n) {
    BACNET_READ_ACCESS_DATA d;
    const int r = rpm_ack_decode_service_request(p, n, &d);
    if (r < 0) {
        // A failed decode leaves nothing linked.
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

const std::vector<Service>& services() {
    static const std::vector<Service> table = {
        {"rp", DEC(BACNET_READ_PROPERTY_DATA, rp_decode_service_request(p, n, &d)),
         "0C 00 00 00 05 19 55 29 03"},
        {"rp_ack", DEC(BACNET_READ_PROPERTY_DATA, rp_ack_decode_service_request(p, n, &d)),
         "0C 00 00 00 05 19 55 3E 44 42 90 99 9A 3F"},
        {"wp", wpDecode, "0C 00 80 00 01 19 55 3E 44 43 34 00 00 3F 49 10"},
        // Three objects: several value kinds, a constructed value, an empty list, a property error.
        {"rpm_ack", rpmAck,
         "0C 00 00 00 01 1E 29 4D 4E 75 06 00 4F 75 74 65 72 4F 29 6F 4E 82 04 00 4F 29 57 39 03 4E 00 4F 1F "
         "0C 02 00 00 07 1E 29 38 4E 0E A4 7C 05 1E 03 B4 0A 0B 0C 0D 0F 4F 29 4C 4E 4F 29 1C 5E 91 02 91 20 "
         "5F "
         "1F 0C 00 80 00 02 1E 29 55 4E 44 00 00 00 00 4F 1F"},
        {"rp_ack_full", rpAckFull,
         "0C 00 00 00 05 19 55 3E 0E A4 7C 01 02 03 1C 00 00 00 01 0F 2D 03 41 42 43 3F"},
        {"rr", DEC(BACNET_READ_RANGE_DATA, rr_decode_service_request(p, n, &d)),
         "0C 05 00 00 01 19 83 7E A4 62 03 17 01 B4 13 34 22 00 31 FC 7F"},
        {"rr_ack", DEC(BACNET_READ_RANGE_DATA, rr_ack_decode_service_request(p, n, &d)),
         "0C 05 00 00 01 19 83 3A 05 C0 49 01 5E 0E A4 62 03 17 01 B4 13 34 22 00 0F 1E 2C 41 90 00 00 1F 5F "
         "69 4F"},
        {"whois", DEC(Limits, whois_decode_service_request(p, n, &d.low, &d.high)), "09 03 1A 01 00"},
        {"iam",
         DEC(IamOut, iam_decode_service_request(p, n, &d.device, &d.maxApdu, &d.segmentation, &d.vendor)),
         "C4 02 00 00 03 22 04 00 91 03 21 63"},
        {"timesync", DEC(BACNET_DATE_TIME, timesync_decode_service_request(p, n, &d.date, &d.time)),
         "A4 5C 0B 11 02 B4 16 2D 1E 46"},
    };
    return table;
}

// The decoder sees exactly these bytes and nothing behind them.
int decodeExact(const Service& s, const std::vector<uint8_t>& in) {
    std::unique_ptr<uint8_t[]> copy(new uint8_t[in.size() ? in.size() : 1]);
    std::copy(in.begin(), in.end(), copy.get());
    return s.decode(copy.get(), uint32_t(in.size()));
}

}  // namespace

TEST(ServiceBadInput, ValidDataDecodesWholly) {
    for (const auto& s : services()) {
        const auto in = bytes(s.valid);
        EXPECT_EQ(int(in.size()), decodeExact(s, in)) << s.name;
        EXPECT_LT(s.decode(nullptr, uint32_t(in.size())), 0) << s.name << " NULL buffer";
    }
}

TEST(ServiceBadInput, TruncationAtEveryLength) {
    // A prefix is either rejected or (when it ends where an optional element would start) a
    // complete shorter request; it never reports bytes it did not have.
    for (const auto& s : services()) {
        const auto in = bytes(s.valid);
        for (size_t n = 0; n < in.size(); ++n) {
            const std::vector<uint8_t> prefix(in.begin(), in.begin() + long(n));
            const int r = decodeExact(s, prefix);
            EXPECT_TRUE(r < 0 || r == int(n)) << s.name << " prefix " << n << " gave " << r;
        }
    }
}

TEST(ServiceBadInput, ExtendedMarkersAsLastByte) {
    for (const auto& s : services()) {
        for (uint8_t marker : {0xF9, 0xFD, 0xFE, 0xFF, 0x0D, 0x3E, 0x1F}) {
            auto in = bytes(s.valid);
            in.push_back(marker);
            EXPECT_LT(decodeExact(s, in), 0) << s.name << " + " << int(marker);
            // A marker alone is not a service request either.
            EXPECT_LT(decodeExact(s, {marker}), 0) << s.name << " only " << int(marker);
        }
    }
}

TEST(ServiceBadInput, EveryByteMutatedStaysInBounds) {
    const uint8_t replacements[] = {0x00, 0x05, 0x06, 0x07, 0x0D, 0x0E, 0x0F, 0x3E,
                                    0x3F, 0x4E, 0x7F, 0x80, 0xF9, 0xFD, 0xFE, 0xFF};
    for (const auto& s : services()) {
        const auto in = bytes(s.valid);
        for (size_t i = 0; i < in.size(); ++i) {
            for (uint8_t b : replacements) {
                auto mutated = in;
                mutated[i] = b;
                const int r = decodeExact(s, mutated);
                EXPECT_LE(r, int(mutated.size())) << s.name << " byte " << i << " = " << int(b);
            }
        }
    }
}

TEST(ServiceBadInput, HugeLengthsOneShortFieldsAndUnbalancedTags) {
    struct Case {
        size_t service;
        const char* hex;
        const char* why;
    };
    // Indexes into services(): 0 rp, 1 rp_ack, 2 wp, 3 rpm_ack, 4 rp_ack_full, 5 rr, 6 rr_ack,
    // 7 whois, 8 iam, 9 timesync.
    const Case cases[] = {
        {0, "0D FF FF FF FF FF 00 00 00 05", "object id with a length near 2^32"},
        {0, "0D FF 7F FF FF FF 00 00 00 05", "object id with a length of INT_MAX"},
        {0, "0D FE FF FF 00 00 00 05", "16-bit length beyond the data"},
        {0, "0C 00 00 05", "object id one byte short"},
        {0, "0B 00 00 05 19 55", "object id declared 3 bytes"},
        {0, "0C 00 00 00 05 1D FF FF FF FF FF", "property with a huge length"},
        {0, "0C 00 00 00 05 1D 05 01 00 00 00 00", "property of 5 octets"},
        {0, "0C 00 00 00 05 19 55 2D 05 01 00 00 00 00", "array index beyond 32 bits"},
        {0, "0C 00 00 00 05 19 55 29", "array index tag without content"},
        {0, "19 55 0C 00 00 00 05", "elements out of order"},
        {0, "C4 00 00 00 05 19 55", "application tag where context tag 0 belongs"},
        {1, "0C 00 00 00 05 19 55 3E 44 42 90 99 9A", "value without closing tag"},
        {1, "0C 00 00 00 05 19 55 3E 44 42 90 99 9A 4F", "closing tag of another number"},
        {1, "0C 00 00 00 05 19 55 3E 0E 44 42 90 99 9A 3F", "inner opening tag never closed"},
        {1, "0C 00 00 00 05 19 55 3E 1F 3F", "inner closing tag never opened"},
        {1, "0C 00 00 00 05 19 55 3E 45 FF FF FF FF FF 3F", "value with a length near 2^32"},
        {1, "0C 00 00 00 05 19 55 3E 44 42 90 99 3F", "REAL one byte short, closing tag swallowed"},
        {1, "0C 00 00 00 05 19 55 3E 3F 3F", "a second closing tag"},
        {2, "0C 00 80 00 01 19 55 3E 44 43 34 00 00 3F 49", "priority tag without content"},
        {2, "0C 00 80 00 01 19 55 3E 44 43 34 00 00 3F 4D FF FF FF FF FF", "priority with a huge length"},
        {2, "0C 00 80 00 01 19 55 3E 44 43 34 00 00 3F 4C 00 00 00 10", "priority of 4 octets is fine"},
        {2, "0C 00 80 00 01 19 55 49 10 3E 44 43 34 00 00 3F", "priority before the value"},
        {3, "0C 00 00 00 10 1E 29 55 4E 44 42 90 99 9A 4F", "list of results not closed"},
        {3, "0C 00 00 00 10 1E 29 55 1F", "result without value or error"},
        {3, "0C 00 00 00 10 1E 29 55 5E 91 02 5F 1F", "error with the class only"},
        {3, "0C 00 00 00 10 1E 29 55 5E 91 02 91 20 91 00 5F 1F", "error with a third element"},
        {3, "0C 00 00 00 10 1E 29 55 4E 44 42 90 99 9A 5F 1F", "value closed by the error tag"},
        {3, "0C 00 00 00 10 1E 29 55 4E 44 42 90 99 9A 4F 1F 0C 00 00", "second object cut short"},
        {3, "0C 00 00 00 10 1E 29 55 6E 4F 1F", "result tag 6"},
        {4, "0C 00 00 00 05 19 55 3E 0E 0E 0F 3F", "unbalanced nesting inside the value"},
        {4, "0C 00 00 00 05 19 55 3E 0E 1F 3F", "mismatched nesting inside the value"},
        {4, "0C 00 00 00 05 19 55 3E 0D FF FF FF FF FF 3F", "context primitive with a length near 2^32"},
        {5, "0C 05 00 00 01 19 83 3E 21 01 31 01", "range not closed"},
        {5, "0C 05 00 00 01 19 83 3E 21 01 3F", "range without count"},
        {5, "0C 05 00 00 01 19 83 3E 21 01 34 80 00 00 00 3F", "count with the high bit set (INT32_MIN)"},
        {5, "0C 05 00 00 01 19 83 7E A4 62 03 17 B4 13 34 22 00 31 04 7F", "date one byte short"},
        {5, "0C 05 00 00 01 19 83 3E 21 01 31 01 7F", "range closed with another tag"},
        {5, "0C 05 00 00 01 19 83 3E 21 01 31 01 3F 00", "bytes after the range"},
        {6, "0C 05 00 00 01 19 83 3A 05 C0 5E 5F", "item count missing"},
        {6, "0C 05 00 00 01 19 83 3A 05 C0 49 01 5E 00", "item data not closed"},
        {6, "0C 05 00 00 01 19 83 3A 05 C0 49 01 5E 00 5F 6D FF FF FF FF FF",
         "first sequence with a huge length"},
        {6, "0C 05 00 00 01 19 83 3B 05 C0 00 00 49 01 5E 00 5F",
         "flags one octet longer than the bit string"},
        {7, "09 03", "low limit without high limit"},
        {7, "19 03", "high limit only"},
        {7, "09 03 19", "high limit without content"},
        {7, "0D FF FF FF FF FF 19 03", "low limit with a huge length"},
        {7, "0C 00 40 00 00 19 03", "low limit beyond the instance range"},
        {8, "C4 02 00 00 03 22 04 00 91 03", "vendor missing"},
        {8, "C3 02 00 00 22 04 00 91 03 21 63", "object id of 3 octets"},
        {8, "C4 02 00 00 03 22 04 00 21 03 21 63", "segmentation as Unsigned"},
        {8, "C4 02 00 00 03 25 FF FF FF FF FF 91 03 21 63", "max APDU with a huge length"},
        {9, "A4 5C 0B 11 02 B4 16 2D 1E", "time one byte short"},
        {9, "A3 5C 0B 11 B4 16 2D 1E 46", "date declared 3 octets"},
        {9, "A4 5C 0B 11 02", "time missing"},
    };
    for (const auto& c : cases) {
        const Service& s = services()[c.service];
        const auto in = bytes(c.hex);
        const int r = decodeExact(s, in);
        // The one well-formed case in the list documents that length alone is not rejected.
        if (std::string(c.why).find("is fine") != std::string::npos) {
            EXPECT_EQ(int(in.size()), r) << s.name << ": " << c.why;
        } else {
            EXPECT_LT(r, 0) << s.name << ": " << c.why;
        }
    }
}

TEST(ServiceBadInput, SignedAndWildcardValuesAreValues) {
    // A negative count decodes (reading backwards); wildcard reference times are values.
    const auto backwards = bytes("0C 05 00 00 01 19 83 7E A4 FF FF FF FF B4 FF FF FF FF 31 80 7F");
    BACNET_READ_RANGE_DATA rr{};
    ASSERT_EQ(int(backwards.size()),
              rr_decode_service_request(backwards.data(), uint32_t(backwards.size()), &rr));
    EXPECT_EQ(-128, rr.count);
    EXPECT_EQ(2155, rr.range.ref_time.date.year);
    EXPECT_EQ(255, rr.range.ref_time.time.hour);
    // An explicit index of 0xFFFFFFFF is indistinguishable from no index; it is accepted.
    const auto allOnes = bytes("0C 00 00 00 05 19 55 2C FF FF FF FF");
    BACNET_READ_PROPERTY_DATA rp{};
    ASSERT_EQ(int(allOnes.size()), rp_decode_service_request(allOnes.data(), uint32_t(allOnes.size()), &rp));
    EXPECT_EQ(BACNET_ARRAY_ALL, rp.array_index);
    // Huge item counts are just numbers: the items are what is there.
    const auto bigCount = bytes("0C 05 00 00 01 19 83 3A 05 C0 4C FF FF FF FF 5E 5F");
    BACNET_READ_RANGE_DATA ack{};
    ASSERT_EQ(int(bigCount.size()),
              rr_ack_decode_service_request(bigCount.data(), uint32_t(bigCount.size()), &ack));
    EXPECT_EQ(0xFFFFFFFFu, ack.item_count);
    EXPECT_EQ(0, ack.application_data_len);
}

TEST(ServiceBadInput, DeepNestingIsBounded) {
    // Nested openings inside a ReadProperty-ACK value: 40 is beyond the nesting limit, 20 within.
    auto nested = [](int depth) {
        std::string hexText = "0C 00 00 00 05 19 55 3E";
        for (int i = 0; i < depth; ++i) hexText += " 0E";
        for (int i = 0; i < depth; ++i) hexText += " 0F";
        return bytes(hexText + " 3F");
    };
    const auto deep = nested(40), fine = nested(20);
    for (size_t idx : {size_t(1), size_t(4)}) {
        EXPECT_LT(decodeExact(services()[idx], deep), 0) << services()[idx].name;
        EXPECT_EQ(int(fine.size()), decodeExact(services()[idx], fine)) << services()[idx].name;
    }
}
