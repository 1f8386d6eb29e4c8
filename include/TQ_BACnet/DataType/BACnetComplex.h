#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/DataApplicationValue.h"

#include <cstdint>
#include <string>
#include <vector>

namespace TQ {
namespace BACnet {
namespace WS {
class MarkupFactory;
}
namespace DataType {

/// Base of every constructed data type: the interface through which a value container
/// encodes, decodes, prints, parses and renders a constructed value, with defaults for the
/// context-tagged framing, the hexadecimal text form and rendering.
///
/// Encoders return the bytes written and decoders the bytes consumed, negative on failure.
///
/// Every decoder has a bounded form that never reads past `apdu + length`; the unbounded forms
/// are for callers that hold a whole APDU and read within one APDU's length of `apdu`. A class
/// overrides the bounded forms and brings the unbounded ones into scope with
/// `using BACnetComplex::decode; using BACnetComplex::decodeContext;`.
class BACnetComplex {
public:
    /// One APDU: the most an unbounded decoder reads.
    static constexpr unsigned MAX_DECODE_LENGTH = 1476;
    /// Scratch space of the hexadecimal text form: one APDU and the framing around it.
    static constexpr int MAX_TEXT_ENCODING = 1492;

    virtual ~BACnetComplex() = default;

    virtual int encode(uint8_t* apdu) const = 0;
    /// `encode` between opening and closing tag `tag`; 0 for a null buffer.
    virtual int encodeContext(uint8_t* apdu, uint8_t tag) const;
    virtual int decode(const uint8_t* apdu) { return decode(apdu, MAX_DECODE_LENGTH); }
    virtual int decode(const uint8_t* apdu, unsigned length) = 0;
    /// The value between opening and closing tag `tag` (one octet each below tag 15, two from
    /// 15 on); the value's length plus the framing, or -1 when either tag is missing or the
    /// value does not decode.
    virtual int decodeContext(const uint8_t* apdu, uint8_t tag) {
        return decodeContext(apdu, MAX_DECODE_LENGTH, tag);
    }
    virtual int decodeContext(const uint8_t* apdu, unsigned length, uint8_t tag);
    /// The primitives of the value in encoding order; Poco::NotImplementedException unless the
    /// class can break itself down.
    virtual void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const;
    /// The encoding as hexadecimal text; empty when the value does not encode.
    virtual void getString(std::string& out) const;
    /// Reads the hexadecimal text form, bare or context-tagged; false when it does not read.
    virtual bool setString(const std::string& text);
    /// Writes a placeholder "Any" markup; classes that can render themselves override this.
    virtual void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const;
    virtual BACnetDataType getBACnetDataType() const = 0;

    /// The pseudo primitives that stand for an opening or closing context tag in a decoded chain.
    DataApplicationValue getOpenTag(uint8_t tag) const;
    DataApplicationValue getCloseTag(uint8_t tag) const;

protected:
    /// Renders the value's primitives by walking its type's definition in the catalogue, so that
    /// member names, optional members and enumeration names come from one place. False (and
    /// the factory's last error set) when the primitives do not match the definition.
    bool markupFromCatalogue(WS::MarkupFactory& factory, const std::string& name) const;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
