#pragma once
// Helpers of the codec tests: encoders run their sizing and writing passes in front of guard
// bytes, so writing too far fails in every build; decoders get exact-size blocks.

#include "TQTestSupport.h"

#include "tq_stack/context_decode.h"
#include "tq_stack/rp.h"
#include "tq_stack/rpm.h"
#include "tq_stack/strings.h"

#include <sstream>

namespace TQTest {

// Runs the encoder's sizing pass (NULL buffer) and its writing pass; empty when either fails, when
// they disagree, or when the writing pass touched the guard bytes behind the announced length.
template <typename F>
Bytes encodedBy(F encode) {
    const int size = encode(nullptr);
    if (size < 0) return {};
    Bytes out(size_t(size) + 8, 0xEE);
    const int written = encode(out.data());
    for (size_t i = size_t(size); i < out.size(); ++i)
        if (out[i] != 0xEE) ADD_FAILURE() << "encoder wrote past the " << size << " bytes it announced";
    if (written != size) return {};
    out.resize(size_t(size));
    return out;
}

// The service request of a whole confirmed APDU an encoder writes: without its four header octets.
template <typename F>
Bytes requestOf(F encode) {
    const Bytes apdu = encodedBy(encode);
    return apdu.size() < 4 ? Bytes() : Bytes(apdu.begin() + 4, apdu.end());
}

// The bytes an encoder call writes into `p`, as hex text.
#define ENCODED_HEX(call) TQTest::hexText(TQTest::encodedBy([&](uint8_t* p) { return call; }))
// What a decoder call returns for an exactly-sized copy of the hex text, given as `p` and `n`.
#define DECODED(hexIn, call)                             \
    ([&] {                                               \
        const TQTest::ExactBuffer buf_(hexIn);          \
        [[maybe_unused]] const uint8_t* p = buf_.data(); \
        [[maybe_unused]] const uint32_t n = buf_.size(); \
        return call;                                     \
    }())

// Encodes `in` and expects the example's bytes; decodes those bytes and expects the decoded record
// to encode to them again, so every field the encoder writes came through the decoder intact.
template <typename T, typename Encode, typename Decode>
void bothWays(const std::string& example, const T& in, Encode encode, Decode decode) {
    SCOPED_TRACE(example);
    EXPECT_EQ(example, hexText(encodedBy([&](uint8_t* p) { return encode(p, in); })));
    ExactBuffer buf(example);
    T out{};
    ASSERT_EQ(int(buf.size()), decode(buf.data(), buf.size(), out));
    EXPECT_EQ(example, hexText(encodedBy([&](uint8_t* p) { return encode(p, out); })));
}
inline BACNET_READ_PROPERTY_DATA rpData(BACNET_OBJECT_TYPE type, uint32_t instance,
                                        BACNET_PROPERTY_ID property) {
    BACNET_READ_PROPERTY_DATA d{};
    d.object_type = type;
    d.object_instance = instance;
    d.object_property = property;
    d.array_index = BACNET_ARRAY_ALL;
    return d;
}

inline BACNET_PROPERTY_REFERENCE propertyRef(BACNET_PROPERTY_ID id, BACNET_PROPERTY_REFERENCE* next,
                                             uint32_t index = BACNET_ARRAY_ALL) {
    BACNET_PROPERTY_REFERENCE r{};
    r.propertyIdentifier = id;
    r.propertyArrayIndex = index;
    r.next = next;
    return r;
}

// Decoded values as compact text, so that a whole decoded list is checked in one comparison:
// "[n]" before context-tagged values, "[n]{" and "[n]}" around constructed ones, then a kind letter
// and the content (u unsigned, i signed, r REAL, f Double, e enumerated, x octets, b bits,
// d date, t time, o object id).
inline std::string describe(const BACNET_APPLICATION_DATA_VALUE* v) {
    std::ostringstream s;
    for (const char* sep = ""; v; v = v->next, sep = " ") {
        const auto& t = v->type;
        s << sep;
        if (v->context_specific || v->tag == BACNET_PSEUDO_TAG_OPENING || v->tag == BACNET_PSEUDO_TAG_CLOSING)
            s << "[" << int(v->context_tag) << "]";
        // clang-format off
        switch (v->tag) {
            case BACNET_PSEUDO_TAG_OPENING: s << "{"; break;
            case BACNET_PSEUDO_TAG_CLOSING: s << "}"; break;
            case BACNET_APPLICATION_TAG_NULL: s << "null"; break;
            case BACNET_APPLICATION_TAG_BOOLEAN: s << (t.Boolean ? "true" : "false"); break;
            case BACNET_APPLICATION_TAG_UNSIGNED_INT: s << "u" << t.Unsigned_Int; break;
            case BACNET_APPLICATION_TAG_SIGNED_INT: s << "i" << t.Signed_Int; break;
            case BACNET_APPLICATION_TAG_REAL: s << "r" << t.Real; break;
            case BACNET_APPLICATION_TAG_DOUBLE: s << "f" << t.Double; break;
            case BACNET_APPLICATION_TAG_ENUMERATED: s << "e" << t.Enumerated; break;
            case BACNET_APPLICATION_TAG_OCTET_STRING:
                s << "x" << hexText(Bytes(t.Octet_String.value, t.Octet_String.value + t.Octet_String.length)); break;
            case BACNET_APPLICATION_TAG_CHARACTER_STRING:
                s << '"' << std::string(t.Character_String.value, t.Character_String.length) << '"'; break;
            case BACNET_APPLICATION_TAG_BIT_STRING:
                s << "b";
                for (unsigned i = 0; i < t.Bit_String.bits_used; ++i) s << bitstring_bit(&t.Bit_String, uint8_t(i));
                break;
            case BACNET_APPLICATION_TAG_DATE: s << "d" << t.Date.year << "-" << +t.Date.month << "-" << +t.Date.day; break;
            case BACNET_APPLICATION_TAG_TIME:
                s << "t" << +t.Time.hour << ":" << +t.Time.min << ":" << +t.Time.sec << "." << +t.Time.hundredths; break;
            case BACNET_APPLICATION_TAG_OBJECT_ID: s << "o" << t.Object_Id.type << "," << t.Object_Id.instance; break;
            default: s << "?" << int(v->tag);
        }
        // clang-format on
    }
    return s.str();
}

// A decoded chain of objects: "type,instance: property[index]=(values) property=!class,code; ...".
inline std::string describe(const BACNET_READ_ACCESS_DATA* rad) {
    std::ostringstream s;
    for (const char* sep = ""; rad; rad = rad->next, sep = "; ") {
        s << sep << rad->object_type << "," << rad->object_instance << ":";
        for (auto* p = rad->listOfProperties; p; p = p->next) {
            s << " " << p->propertyIdentifier;
            if (p->propertyArrayIndex != BACNET_ARRAY_ALL) s << "[" << p->propertyArrayIndex << "]";
            if (p->has_error)
                s << "=!" << p->error_class << "," << p->error_code;
            else
                s << "=(" << describe(p->value) << ")";
        }
    }
    return s.str();
}

#define RECORD_ENCODER(f) [](uint8_t* p, const auto& d) { return f(p, &d); }
#define RECORD_DECODER(f) [](const uint8_t* p, uint32_t n, auto& d) { return f(p, n, &d); }

}  // namespace TQTest
