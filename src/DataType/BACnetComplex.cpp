#include "TQ_BACnet/DataType/BACnetComplex.h"

#include "TQ/Utility/OctetBuffer.h"
#include "tq_stack/codec.h"
#include "tq_stack/context_decode.h"

#include <Poco/Exception.h>

namespace TQ {
namespace BACnet {
namespace DataType {

int BACnetComplex::encodeContext(uint8_t* apdu, uint8_t tag) const {
    if (apdu == nullptr) return 0;
    int length = encode_opening_tag(apdu, tag);
    const int value = encode(apdu + length);
    if (value < 0) return value;
    length += value;
    return length + encode_closing_tag(apdu + length, tag);
}

int BACnetComplex::decodeContext(const uint8_t* apdu, unsigned length, uint8_t tag) {
    // Tag numbers from 15 on take an extra octet in both framing tags.
    const unsigned frame = tag < 15 ? 1 : 2;
    if (apdu == nullptr || length < 2 * frame || !decode_is_opening_tag_number(apdu, length, tag)) return -1;
    const int value = decode(apdu + frame, length - 2 * frame);
    if (value < 0) return -1;
    const unsigned closing = frame + static_cast<unsigned>(value);
    if (!decode_is_closing_tag_number(apdu + closing, length - closing, tag)) return -1;
    return value + static_cast<int>(2 * frame);
}

void BACnetComplex::getBACnetPrimitives(std::vector<DataApplicationValue>&) const {
    throw Poco::NotImplementedException("Missing BACnetComplex::getBACnetPrimitives() override!");
}

void BACnetComplex::getString(std::string& out) const {
    uint8_t scratch[MAX_TEXT_ENCODING];
    const int length = encode(scratch);
    if (length < 0) {
        out.clear();
        return;
    }
    TQ::Utility::OctetBuffer::over(scratch, sizeof scratch, static_cast<size_t>(length))
        .getHexString(out, false);
}

bool BACnetComplex::setString(const std::string& text) {
    try {
        const TQ::Utility::OctetBuffer bytes(text);
        const auto length = static_cast<unsigned>(bytes.size());
        if (length == 0) return false;
        int decoded = decode(bytes.data(), length);
        // Else the value may come framed: the tag number is in the first octet's high nibble, or
        // in the next octet when the nibble says the number is extended.
        if (decoded < 0) {
            const uint8_t nibble = static_cast<uint8_t>(bytes[0] >> 4);
            if (nibble < 15)
                decoded = decodeContext(bytes.data(), length, nibble);
            else if (length > 1)
                decoded = decodeContext(bytes.data(), length, bytes[1]);
        }
        return decoded > 0;
    } catch (const Poco::SyntaxException&) {
        return false;
    }
}

namespace {

// Opening and closing tags stand in a decoded chain as context-specific pseudo primitives.
DataApplicationValue pseudoTag(unsigned pseudo, uint8_t tag) {
    DataApplicationValue value;
    value.tag = static_cast<BACNET_APPLICATION_TAG>(pseudo);
    value.context_specific = true;
    value.context_tag = tag;
    return value;
}

}  // namespace

DataApplicationValue BACnetComplex::getOpenTag(uint8_t tag) const {
    return pseudoTag(BACNET_PSEUDO_TAG_OPENING, tag);
}

DataApplicationValue BACnetComplex::getCloseTag(uint8_t tag) const {
    return pseudoTag(BACNET_PSEUDO_TAG_CLOSING, tag);
}

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
