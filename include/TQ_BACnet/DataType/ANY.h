#pragma once

#include "TQ/Utility/BitBuffer.h"
#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BACnetComplex.h"

#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {
namespace DataType {

/// A value of ABSTRACT-SYNTAX.&Type: the still-encoded application-tagged bytes of a property
/// value together with the descriptor that says how to read them. This is how a value
/// container holds a constructed type that has no class of its own.
class ANY : public BACnetComplex {
public:
    /// The property and array index the value was read from, when known.
    struct PropertyRef {
        BACNET_PROPERTY_ID property = static_cast<BACNET_PROPERTY_ID>(0xFFFFFE);
        int arrayIndex = -1;
    };

    ANY() = default;
    ANY(const DataPropertyInObject0& descriptor, const PropertyRef& ref, const uint8_t* bytes,
        unsigned length);
    ANY(const DataPropertyInObject0& descriptor, const PropertyRef& ref,
        const TQ::Utility::OctetBuffer& bytes);
    ANY(const DataPropertyInObject0& descriptor, const uint8_t* bytes, unsigned length);
    ANY(const DataPropertyInObject0& descriptor, const TQ::Utility::OctetBuffer& bytes);
    /// The form the value container's constructed-type factory uses: an ANY cannot be told
    /// from decoded primitives, so it is empty and the cursor does not move.
    ANY(const DataPropertyInObject0& descriptor, const DataApplicationValue& first,
        const DataApplicationValue** next);
    /// From the JSON body of a BACnet/WS write, encoded for `descriptor` (WS::EncoderJSON, whose
    /// exceptions pass through).
    ANY(const DataPropertyInObject0& descriptor, const std::string& json);
    ANY(const DataPropertyInObject0& descriptor, const PropertyRef& ref, const std::string& json);

    ANY(const ANY&) = default;
    ANY& operator=(const ANY&) = default;
    ~ANY() override = default;

    void setTypeAndValue(const DataPropertyInObject0& descriptor, const uint8_t* bytes, unsigned length);
    /// The held bytes (null when empty); their count through `length` when given.
    const uint8_t* getValue(unsigned* length) const;
    const DataPropertyInObject0& getDescriptor() const { return _descriptor; }
    const PropertyRef& getPropertyRef() const { return _ref; }

    /// Writes the held bytes as they are; -1 when there are none or more than one APDU.
    int encode(uint8_t* apdu) const override;
    using BACnetComplex::decodeContext;
    /// Without a length the extent of an unknown value cannot be bounded: always -1.
    int decode(const uint8_t* apdu) override;
    /// Takes, for the held descriptor, the tagged values of `apdu[0..length)` whose opening and
    /// closing tags balance, up to the first tag that closes an enclosing construct (or the
    /// end). The bytes consumed, or -1 for a truncated or unbalanced encoding or no value.
    int decode(const uint8_t* apdu, unsigned length) override;
    /// Nothing to add: an ANY does not know its members without the catalogue.
    void getBACnetPrimitives(std::vector<DataApplicationValue>& out) const override;
    /// The held bytes in hexadecimal: the only text an undecoded value has.
    void getString(std::string& out) const override;
    BACnetDataType getBACnetDataType() const override { return _descriptor.datatype; }

    /// Renders through the catalogue's definition of the descriptor's data type.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const override;
    /// Decodes the bytes guided by the catalogue and walks the type's definition over them: a
    /// single value as one markup, an array or list element by element under `name`. What does
    /// not match is marked "truncated" (the factory's lastErrorCode tells why). 1 when the value
    /// rendered whole, 0 when not (nothing rendered for bytes that do not decode).
    int markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker, bool root,
               int level) const;
    /// Shows the value only in part: a single value as one complete markup of its type marked
    /// truncated; an array or list with its first `maxElements` elements, then a truncated mark.
    /// `comment` and `errorText`, when not empty, go along as metadata.
    void markupTruncated(WS::MarkupFactory& factory, const std::string& name, bool root, int maxElements,
                         const std::string& comment, const std::string& errorText) const;

    /// Decodes the bytes guided by the catalogue's members of the descriptor's data type; the
    /// decoder's result, or -202 when it succeeds without yielding a value.
    int getValueLength() const;

    bool operator==(const ANY& other) const;

    /// The value read as one primitive. With `strict` the descriptor must name a single value of
    /// the getter's application tag (Poco::BadCastException "ANY strict conversion value is not
    /// ..." otherwise); the value itself is read through WS::ObjectJSON in the same mode.
    unsigned int getUnsignedInt(bool strict) const;
    float getReal(bool strict) const;
    double getDouble(bool strict) const;
    int getSignedInt(bool strict) const;
    unsigned int getEnumerated(bool strict) const;
    bool getBoolean(bool strict) const;
    void getBitString(TQ::Utility::BitBuffer& out, bool strict) const;

    /// A text for people: the values' texts joined by `separator` when every value is an
    /// application-tagged primitive, otherwise the bytes in hexadecimal.
    std::string getText(const std::string& separator) const;

private:
    TQ::Utility::OctetBuffer _value;
    DataPropertyInObject0 _descriptor;
    PropertyRef _ref;
};

}  // namespace DataType
}  // namespace BACnet
}  // namespace TQ
