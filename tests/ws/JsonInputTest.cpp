// JSON bodies to BACnet bytes, single values read out of JSON, and web-service errors.
#include "TQ/BACnet/Client/DataPropertyKey.h"
#include "TQ/Utility/OctetBuffer.h"
#include "TQTestCatalogue.h"
#include "TQTestSupport.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/WS/DataWsError.h"
#include "TQ_BACnet/WS/EncoderJSON.h"
#include "TQ_BACnet/WS/ObjectJSON.h"

#include <Poco/Exception.h>
#include <Poco/JSON/JSONException.h>

#include <functional>

#include <gtest/gtest.h>

using TQ::BACnet::BACnetDataType;
using TQ::BACnet::DataPropertyInObject0;
using TQ::BACnet::WS::DataWsError;
using TQ::BACnet::WS::EncoderJSON;
using TQ::BACnet::WS::ObjectJSON;
using TQTest::Bytes;
using TQTest::hex;

namespace {

constexpr uint8_t kGuard = 0xAA;

DataPropertyInObject0 descriptor(unsigned type, unsigned tag, unsigned structure = 0,
                                 bool emptyAllowed = true) {
    return DataPropertyInObject0(static_cast<BACnetDataType>(type), static_cast<BACNET_APPLICATION_TAG>(tag),
                                 static_cast<TQ::BACnet::BACnetDataTypeStructure>(structure), emptyAllowed,
                                 0);
}

// Encodes at offset 2 of a guarded buffer: what was written, or the error with the guard bytes
// checked to be untouched.
struct Outcome {
    Bytes bytes;
    DataWsError error;
};

Outcome encode(const DataPropertyInObject0& d, const std::string& json) {
    TQTest::Catalogue::open();
    TQ::Utility::OctetBuffer buffer(Bytes(MAX_APDU + 4, kGuard).data(), MAX_APDU + 4);
    Outcome outcome;
    const int length = EncoderJSON().encode(d, json, buffer, 2, outcome.error);
    if (length < 0) {
        for (std::size_t i = 0; i < buffer.size(); ++i)
            EXPECT_EQ(buffer[i], kGuard) << "byte " << i << " of " << json;
        return outcome;
    }
    EXPECT_FALSE(outcome.error.hasWsError());
    EXPECT_EQ(buffer[1], kGuard);
    EXPECT_EQ(buffer[2 + static_cast<std::size_t>(length)], kGuard) << json;
    outcome.bytes.assign(buffer.data() + 2, buffer.data() + 2 + length);
    return outcome;
}

const DataPropertyInObject0 REAL = descriptor(4, 4);
const DataPropertyInObject0 UNSIGNED = descriptor(2, 2);
const DataPropertyInObject0 TEXT = descriptor(7, 7);
const DataPropertyInObject0 EVENT_STATE = descriptor(5038, 9);
const DataPropertyInObject0 STATUS_FLAGS = descriptor(5090, 8);
const DataPropertyInObject0 PRIORITY_ARRAY = descriptor(1064, 0, 1);
const DataPropertyInObject0 OBJECT_LIST = descriptor(12, 12, 1);
const DataPropertyInObject0 REFERENCE = descriptor(1028, 0);
const DataPropertyInObject0 DATE_TIME = descriptor(1026, 0);
const DataPropertyInObject0 PRIORITY_VALUE = descriptor(1264, 0);
const DataPropertyInObject0 LANDING_CALL = descriptor(1241, 0);
const DataPropertyInObject0 READ_ACCESS_SPEC = descriptor(1084, 0);
const DataPropertyInObject0 ANY_VALUE = descriptor(1000, 0);

struct Example {
    const char* what;
    DataPropertyInObject0 d;
    std::string json;
    const char* hex;
};

}  // namespace

TEST(EncoderJSON, BodiesEncodeToTheBytesOfTheirType) {
    // clang-format off
    const Example examples[] = {
        {"compact REAL", REAL, R"({"$value":21.5})", "44 41AC0000"},
        {"expanded REAL", REAL, R"({"$base":"Real","$value":21.5})", "44 41AC0000"},
        {"REAL as text", REAL, R"({"$value":"21.5"})", "44 41AC0000"},
        {"NULL in any case", REAL, R"({"$value":"nUlL"})", "00"},
        {"JSON null", REAL, R"({"$value":null})", "00"},
        {"largest Unsigned", UNSIGNED, R"({"$value":4294967295})", "24 FFFFFFFF"},
        {"enumeration by number", EVENT_STATE, R"({"$value":"2"})", "91 02"},
        {"enumeration by name", EVENT_STATE, R"({"$value":"offnormal"})", "91 02"},
        {"bits by name", STATUS_FLAGS, R"({"$value":"in-alarm;out-of-service"})", "82 04 90"},
        {"bits by number", STATUS_FLAGS, R"({"$value":"0; 3"})", "82 04 90"},
        {"bits as booleans", STATUS_FLAGS, R"({"$value":"true,false,false,true"})", "82 04 90"},
        {"no bit set", STATUS_FLAGS, R"({"$value":""})", "82 04 00"},
        {"string with escapes", TEXT, R"({"$value":"a\"b\u00e9"})", "75 06 00 612262C3A9"},
        {"priority array: choice per slot, gaps end it", PRIORITY_ARRAY,
         R"({"1":{"real":21.5},"2":{"null":""},"3":{"unsigned":7},"5":{"real":1}})", "44 41AC0000 00 21 07"},
        {"array of identifiers", OBJECT_LIST, R"({"1":"device,1234","2":"analog-input,1"})", "C4 020004D2 C4 00000001"},
        {"sequence-of by member names", READ_ACCESS_SPEC, R"({"object-identifier":"analog-input,1","list-of-property-references":)"
         R"({"1":{"property-identifier":"present-value"},"2":{"property-identifier":111}}})", "0C 00000001 1E 09 55 09 6F 1F"},
        {"sequence-of as JSON array", READ_ACCESS_SPEC, R"({"object-identifier":"analog-input,1","list-of-property-references":)"
         R"([{"property-identifier":"present-value"},{"property-identifier":"status-flags"}]})", "0C 00000001 1E 09 55 09 6F 1F"},
        {"sequence, optional members absent", REFERENCE, R"({"object-identifier":"analog-input,1","property-identifier":"present-value"})",
         "0C 00000001 19 55"},
        {"sequence, every member", REFERENCE, R"({"object-identifier":"analog-input,1","property-identifier":85,"property-array-index":3,)"
         R"("device-identifier":"device,9"})", "0C 00000001 19 55 29 03 3C 02000009"},
        {"expanded sequence", DATE_TIME, R"({"$base":"Sequence","date":{"$base":"Date","$value":"2024-03-05"},)"
         R"("time":{"$base":"Time","$value":"12.30.15.50"}})", "A4 7C0305FF B4 0C1E0F32"},
        {"context-tagged constructed alternative", PRIORITY_VALUE, R"({"datetime":{"date":"2024-03-05","time":"12.30.15.50"}})",
         "1E A4 7C0305FF B4 0C1E0F32 1F"},
        {"ABSTRACT-SYNTAX alternative in its tags", PRIORITY_VALUE, R"({"constructed-value":{"$base":"Real","$value":1}})", "0E 44 3F800000 0F"},
        {"ABSTRACT-SYNTAX by catalogue name", ANY_VALUE, R"({"$base":"Unsigned","$value":5})", "21 05"},
        {"inline choice group", LANDING_CALL, R"({"floor-number":3,"command":{"destination":4}})", "09 03 29 04"},
    };
    // clang-format on
    for (const Example& e : examples) {
        const Outcome o = encode(e.d, e.json);
        EXPECT_EQ(o.bytes, hex(e.hex)) << e.what << ": " << o.error.getWsErrorText();
    }
}

TEST(EncoderJSON, BadBodiesGiveWebServiceErrorsAndLeaveTheBufferAlone) {
    // descriptor, body, web-service error code, a piece of its text
    struct Bad { DataPropertyInObject0 d; std::string json; int code; const char* text; };
    const std::string deep = std::string(40, '[') + std::string(40, ']');
    const std::string x700 = std::string(700, 'x');
    // clang-format off
    const Bad cases[] = {
        {REAL, "{", 29, ""},
        {REAL, "[21.5]", 29, "not an object"},
        {REAL, R"({"$value":)" + deep + "}", 29, ""},
        {REAL, R"({"$value":")" + std::string(EncoderJSON::kMaxDocumentSize, ' ') + "\"}", 29, "larger than"},
        {UNSIGNED, R"({"$value":4294967296})", 13, ""},
        {UNSIGNED, R"({"$value":-1})", 13, ""},
        {UNSIGNED, R"({"$value":"12a"})", 12, ""},
        {REAL, R"({"$value":1e39})", 13, "beyond the range of a REAL"},
        {REAL, R"({"$value":"warm"})", 12, ""},
        {REAL, R"({"$value":{"a":1}})", 12, "sub-item \"$value\" not found"},
        {REAL, R"({"$value":[1]})", 12, "JSON array"},
        {REAL, R"({"value":21.5})", 12, "sub-item \"$value\" not found"},
        {TEXT, R"({"$value":")" + std::string(MAX_CHARACTER_STRING_BYTES + 1, 'x') + "\"}", 13, ""},
        {EVENT_STATE, R"({"$value":"Offnormal"})", 12, "Can not encode enumerate value 'Offnormal'. Either invalid text, use of upper/lower case"},
        {EVENT_STATE, R"({"$value":"99999999999"})", 13, ""},
        {STATUS_FLAGS, R"({"$value":"in-alarm;burning"})", 12, "Can not encode bit-sting value 'in-alarm;burning'. Either invalid value"},
        {STATUS_FLAGS, R"({"$value":"4"})", 13, ""},
        {REFERENCE, R"({"property-identifier":"present-value"})", 12,
         "TQ::BACnet::WS::EncoderJSON::getSubObject() sub-item \"object-identifier\" not found"},
        {PRIORITY_VALUE, R"({"colour":1})", 12, "TQ::BACnet::WS:: EncoderJSON::encodeChoiceInternal() no CHOICE match"},
        {ANY_VALUE, R"({"$base":"Colour","$value":1})", 12, "EncoderJSON::encodeAnyInternal(), datatype for \"Colour\" dosen't exist"},
        {descriptor(2999, 0), R"({"$value":1})", 24, "Can't encode as BACnet datatype 2999 is not implemented in MERLO-Stack database"},
        // Each string fits, all of them do not.
        {descriptor(7, 7, 2), R"({"1":")" + x700 + R"(","2":")" + x700 + R"(","3":")" + x700 + R"("})", 13, "does not fit into one APDU"},
    };
    // clang-format on
    for (const Bad& c : cases) {
        const Outcome o = encode(c.d, c.json);
        EXPECT_TRUE(o.bytes.empty()) << c.json.substr(0, 60);
        EXPECT_EQ(o.error.getWsErrorCode(), c.code)
            << c.json.substr(0, 60) << ": " << o.error.getWsErrorText();
        EXPECT_NE(o.error.getWsErrorText().find(c.text), std::string::npos) << o.error.getWsErrorText();
    }
}

TEST(EncoderJSON, ThrowingEntryAndTheFirstErrorKept) {
    TQTest::Catalogue::open();
    TQ::Utility::OctetBuffer buffer(8);
    EXPECT_THROW(EncoderJSON().encode(REAL, R"({"$value":"x"})", buffer, 0), Poco::BadCastException);
    DataWsError error;
    error.setWsError(50, "earlier");
    EXPECT_EQ(EncoderJSON().encode(REAL, "{", buffer, 0, error), -1);
    EXPECT_EQ(error.getWsErrorCode(), 50);
    // The encoder grows a buffer that owns its storage.
    EncoderJSON encoder;
    EXPECT_EQ(encoder.encode(REAL, R"({"$base":"Real","$value":1})", buffer, 6), 5);
    EXPECT_TRUE(encoder.isExpanded());
    EXPECT_EQ(Bytes(buffer.data() + 6, buffer.data() + 11), hex("44 3F800000"));
}

TEST(DataWsError, CodesTextsAndPropertyPaths) {
    TQTest::Catalogue::open();
    DataWsError error;
    EXPECT_EQ(error.getWsErrorCode(), -1);
    EXPECT_EQ(error.getWsErrorText(), "");
    DataWsError other(52, TQ::BACnet::DataError(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY));
    other.setWsError(52, "range");
    error.setWsError(other);
    EXPECT_EQ(error.getErrorClass(), ERROR_CLASS_PROPERTY);
    EXPECT_EQ(error.getErrorCode(), ERROR_CODE_UNKNOWN_PROPERTY);
    EXPECT_EQ(error.getWsErrorText(), "range");

    const auto key = TQ::BACnet::Client::DataPropertyKey::fromObject(1234, 2, 3, 85);
    error.setWsPropertyError(41, "Cannot read", key, "");
    EXPECT_EQ(error.getWsErrorText(),
              "Cannot read property (using RP service) by path:\n\"/1234/analog-value,3/present-value\"");
    error.setWsPropertyError(41, "Cannot read",
                             TQ::BACnet::Client::DataPropertyKey::fromObject(1, 2, 3, 87, 16), "timeout");
    EXPECT_EQ(
        error.getWsErrorText(),
        "Cannot read property (using RP service) by path:\n\"/1/analog-value,3/priority-array/16\"\ntimeout");
    EXPECT_EQ(error.getWsErrorCode(), 41);
}

TEST(ObjectJSON, StrictAndLenientGetters) {
    TQTest::Catalogue::open();
    const auto make = [](const DataPropertyInObject0& d, const std::string& value) {
        ObjectJSON o(d, false);
        o.set("present-value", value);
        return o;
    };
    const ObjectJSON unsignedValue = make(UNSIGNED, "17");
    EXPECT_EQ(unsignedValue.getUnsignedInt(true), 17u);
    EXPECT_FLOAT_EQ(unsignedValue.getReal(false), 17.0f);
    EXPECT_EQ(TQTest::messageOf<Poco::InvalidAccessException>([&] { unsignedValue.getReal(true); }),
              "Requesting strict real that is not a nullable real");
    EXPECT_EQ(TQTest::messageOf<Poco::BadCastException>([&] { unsignedValue.getDouble(true); }),
              "BACnet::WS::ObjectJSON::getValueString(<Double>) strict casting from \"Unsigned\" (2) not "
              "permitted");
    EXPECT_FLOAT_EQ(make(descriptor(4, 4, 0, false), "1,021.5").getReal(true), 1021.5f);
    // A catalogue type passes strict mode through its application tag.
    EXPECT_EQ(make(EVENT_STATE, "3").getEnumerated(true), 3u);
    EXPECT_EQ(make(descriptor(10, 10), "2024-03-05").getDate(true).month, 3);
    EXPECT_EQ(make(descriptor(12, 12), "device,7").getObjectIdentifier(true).getInstance(), 7u);

    const std::pair<const char*, const char*> refusals[] = {
        {"", "value converted to string is empty"}, {"NuLL", "value is null"}, {"yes", "value is not strict boolean"}};
    for (const auto& r : refusals)
        EXPECT_EQ(TQTest::messageOf<Poco::BadCastException>([&] { make(descriptor(1, 1), r.first).getBoolean(true); }),
                  std::string("BACnet::WS::ObjectJSON::getValueString(<BOOLEAN>) ") + r.second);
    EXPECT_TRUE(make(descriptor(1, 1), "yes").getBoolean(false));
    EXPECT_TRUE(make(descriptor(1, 1), "TRUE").getBoolean(true));
}

TEST(ObjectJSON, ShapeOfTheObject) {
    TQTest::Catalogue::open();
    ObjectJSON o(REAL, false);
    EXPECT_EQ(TQTest::messageOf<Poco::NullValueException>([&] { o.getReal(false); }),
              "BACnet::WS::ObjectJSON::getValueString(<REAL>) the JSON object is empty");
    EXPECT_FALSE(o.isBitStringBitSet("fault"));
    Poco::JSON::Object::Ptr element = new Poco::JSON::Object;
    element->set("$value", 21.5);
    o.set("1", element);
    EXPECT_THROW(o.getReal(false), Poco::BadCastException);  // an object, not a string
    o.set("2", "22");
    EXPECT_EQ(TQTest::messageOf<Poco::BadCastException>([&] { o.getCharacterString(false); }),
              "BACnet::WS::ObjectJSON::getValueString(<CharacterString>) the JSON object holds more than one "
              "value");
    Poco::Dynamic::Var item;
    EXPECT_FALSE(o.getArrayItem(0, item));
    EXPECT_FALSE(o.getArrayItem(3, item));
    ASSERT_TRUE(o.getArrayItem(2, item));
    EXPECT_EQ(item.toString(), "22");
    TQ::BACnet::DataApplicationValue value;
    ASSERT_TRUE(o.getArrayItem(1, value, true));
    EXPECT_FLOAT_EQ(value.getReal(false), 21.5f);

    ObjectJSON flags(STATUS_FLAGS, false);
    flags.set("$value", "in-alarm;out-of-service");
    EXPECT_TRUE(flags.isBitStringBitSet("out-of-service"));
    EXPECT_FALSE(flags.isBitStringBitSet("fault"));
    flags.set("$value", "in-alarm; out-of-service");
    EXPECT_FALSE(flags.isBitStringBitSet("out-of-service"));
}

TEST(AnyJson, BuiltFromJsonAndReadAsPrimitives) {
    TQTest::Catalogue::open();
    using TQ::BACnet::DataType::ANY;
    const ANY real(descriptor(4, 4, 0, false), R"({"$value":21.5})");
    unsigned length = 0;
    const uint8_t* bytes = real.getValue(&length);
    EXPECT_EQ(Bytes(bytes, bytes + length), hex("44 41AC0000"));
    EXPECT_FLOAT_EQ(real.getReal(true), 21.5f);
    EXPECT_EQ(real.getText(";"), "21.5");

    const ANY count(UNSIGNED, R"({"$value":17})");
    EXPECT_FLOAT_EQ(count.getReal(false), 17.0f);
    EXPECT_EQ(count.getUnsignedInt(true), 17u);
    struct Strict { std::function<void()> read; const char* message; };
    TQ::Utility::BitBuffer bits;
    // clang-format off
    const Strict refusals[] = {
        {[&] { count.getReal(true); }, "ANY strict conversion value is not real"},
        {[&] { count.getDouble(true); }, "ANY strict conversion value is not double"},
        {[&] { count.getSignedInt(true); }, "ANY strict conversion value is not signed-integer"},
        {[&] { count.getEnumerated(true); }, "ANY strict conversion value is not enumerate"},
        {[&] { count.getBoolean(true); }, "ANY strict conversion value is not boolean"},
        {[&] { count.getBitString(bits, true); }, "ANY strict conversion value is not bit-string"},
        {[&] { ANY(OBJECT_LIST, R"({"1":"device,1"})").getUnsignedInt(true); }, "ANY strict conversion value is not unisigned-integer"},
    };
    // clang-format on
    for (const Strict& s : refusals) EXPECT_EQ(TQTest::messageOf<Poco::BadCastException>(s.read), s.message);

    ANY(STATUS_FLAGS, R"({"$value":"fault"})").getBitString(bits, true);
    EXPECT_EQ(bits.getBitsString(), "0100");
    EXPECT_EQ(ANY(OBJECT_LIST, R"({"1":"device,1","2":"device,2"})").getText(" | "), "device,1 | device,2");
    EXPECT_EQ(
        ANY(REFERENCE, R"({"object-identifier":"analog-input,1","property-identifier":85})").getText(";"),
        "0C000000011955");
    EXPECT_THROW(ANY(REAL, R"({"$value":)"), Poco::JSON::JSONException);
}
