#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "tq_stack/enums.h"

#include <Poco/Any.h>
#include <Poco/Exception.h>
#include <Poco/Timestamp.h>

#include <cstdint>
#include <string>
#include <type_traits>
#include <vector>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {

class DataErrorRef;
class DataWriteProperty;

namespace WS {
class MarkupFactory;
}
namespace DataType {
class OctetString;
class BitString;
class Date;
class Time;
}  // namespace DataType

/// One BACnet property value of any shape (a single primitive, an array or list of primitives,
/// constructed values) together with the descriptor that says how to read it.
///
/// The descriptor's structure tells the shape: a single value holds one object, anything else a
/// vector. A descriptor tag other than NULL means primitives (`DataApplicationValue`); tag NULL
/// with a data type other than 0 means a constructed value; data type 0 means no value.
///
/// Constructed values are held in their classes (date-time, references, log records,
/// recipients, the last-uploaded record); every other constructed type as its encoding in a
/// `DataType::ANY`. Their text form is their encoding in hexadecimal.
class ValueContainer {
public:
    /// The property descriptor as the container carries it.
    class DataPropertyInObject : public DataPropertyInObject0 {
    public:
        using DataPropertyInObject0::DataPropertyInObject0;
        DataPropertyInObject() = default;
        DataPropertyInObject(const DataPropertyInObject0& other) : DataPropertyInObject0(other) {}
    };

    /// One APDU: the size of scratch encodings and the limit of an encoded vector.
    static constexpr int MAX_ENCODED = 1476;

    ValueContainer();
    /// A single primitive (or the chain it starts), described by its own tag.
    explicit ValueContainer(const DataApplicationValue& value);
    ValueContainer(const ValueContainer&) = default;
    ValueContainer(ValueContainer&&) = default;
    ValueContainer& operator=(const ValueContainer&) = default;
    ValueContainer& operator=(ValueContainer&&) = default;
    ~ValueContainer() = default;

    /// Default descriptor and a single null value.
    void init();
    /// No value at all, as an empty list property answers: nothing is encoded, the text is "NULL".
    void setEmpty();

    const DataPropertyInObject& getDescriptor() const { return _descriptor; }
    BACnetDataType getDataType() const { return _descriptor.datatype; }
    BACNET_APPLICATION_TAG getTag() const { return _descriptor.tag; }
    BACnetDataTypeStructure getStructure() const { return _descriptor.structure; }
    bool isPrimitive() const {
        return getTag() != BACNET_APPLICATION_TAG_NULL || getDataType() == BACNET_DT_NULL;
    }
    const Poco::Any& getAny() const { return _value; }

    // --- decoding: bytes consumed, or negative with the error written to `error` ---
    /// Looks the descriptor up for the property; an unknown pair returns -1 and leaves `error`.
    int decode(const uint8_t* apdu, int length, unsigned maxValues, BACNET_OBJECT_TYPE objectType,
               BACNET_PROPERTY_ID property, int arrayIndex, DataErrorRef& error);
    int decode(const uint8_t* apdu, int length, unsigned maxValues, const DataPropertyInObject& descriptor,
               int arrayIndex, DataErrorRef& error);
    /// With the descriptor already in the container. `maxValues` 0 means no limit, `arrayIndex`
    /// -1 means none.
    int decode(const uint8_t* apdu, int length, unsigned maxValues, int arrayIndex, DataErrorRef& error);

    // --- encoding ---
    /// At most MAX_ENCODED bytes are written for a vector.
    int encode(uint8_t* apdu) const;
    /// Replaces the buffer's content by the encoding.
    int encode2(TQ::Utility::OctetBuffer& buffer) const;
    /// Always Poco::NotImplementedException.
    int encodeContext(uint8_t* apdu, uint8_t tagNumber) const;

    // --- typed getters of a single primitive ---
    bool getBool() const;
    unsigned getUInt() const;
    unsigned getEnum() const;
    int getInt() const;
    double getDouble() const;
    float getReal(bool convert) const;
    void getOctetString(DataType::OctetString& out) const;
    void getCharString(std::string& out) const;
    void getBitString(DataType::BitString& out) const;
    void getDate(DataType::Date& out) const;
    void getTime(DataType::Time& out) const;
    DataType::ObjectIdentifier getObjectIdentifier() const;

    // --- typed setters: a single primitive, the descriptor following its tag ---
    void setBool(bool value);
    void setUInt(unsigned value);
    void setInt(int value);
    void setReal(float value);
    void setDouble(double value);
    void setOctetString(const DataType::OctetString& value);
    void setCharString(const std::string& value);
    void setBitString(const DataType::BitString& value);
    void setEnum(unsigned value);
    void setDate(const DataType::Date& value);
    void setTime(const DataType::Time& value);
    void setObjectIdentifier(DataType::ObjectIdentifier value);

    /// Stores a primitive or a chain of primitives linked through `next`. Without a descriptor
    /// the value's own tag describes it.
    void setApplicationValue(const DataApplicationValue& first, const DataPropertyInObject* descriptor);
    /// Relinks a vector into a chain (element i's next is element i+1; the last is left alone).
    void setApplicationValueLinks(std::vector<DataApplicationValue>& values) const;
    /// Builds the constructed values of `descriptor` from the chain starting at `first` (one
    /// object for a single value, else objects one after another until the chain ends). False,
    /// with nothing stored, for a data type without a class that reads primitives and for a run
    /// its class cannot read (the caller then keeps the primitives).
    bool trySetConstructedValue(const DataApplicationValue& first, const DataPropertyInObject& descriptor);
    /// The held value as primitives in encoding order: a primitive value as it is, a constructed
    /// one broken down by its class (context tags kept), objects of a vector one after another.
    std::vector<DataApplicationValue>& getBACnetPrimitives(std::vector<DataApplicationValue>& out) const;

    /// Holds `object` as the single constructed value, described by its own data type.
    template <class T>
    void setValue(const T& object) {
        _descriptor.init();
        _descriptor.datatype = object.getBACnetDataType();
        _value = object;
    }
    /// The single held object as T; Poco::BadCastException "Failed to convert between Any types"
    /// when something else is held.
    template <class T>
    T& getValue(T& out) const {
        out = held<T>();
        return out;
    }
    /// All held objects as a vector (a single value gives a vector of one). Primitives of a
    /// constructed value are its break-down (`getBACnetPrimitives`).
    template <class T>
    std::vector<T>& getValues(std::vector<T>& out) const {
        if constexpr (std::is_same<T, DataApplicationValue>::value) {
            if (!isPrimitive()) {
                out.clear();
                return getBACnetPrimitives(out);
            }
        }
        if (getStructure() == BACNET_DTS_SINGLE_VALUE) {
            out.assign(1, held<T>());
        } else {
            out = held<std::vector<T>>();
        }
        return out;
    }

    /// The held primitives where they are, without a copy: `count` values (one for a single
    /// value); nullptr, with count 0, when a constructed value is held.
    const DataApplicationValue* primitives(std::size_t& count) const;

    // --- text ---
    /// Never throws: false when the text does not read.
    bool setText(BACnetDataType dataType, BACNET_APPLICATION_TAG tag, const std::string& text,
                 bool emptyIsNull);
    std::string& getText(std::string& out, bool useNames) const;
    bool setStrings(BACnetDataType dataType, BACNET_APPLICATION_TAG tag,
                    const std::vector<std::string>& texts, bool emptyIsNull);
    bool getStrings(std::vector<std::string>& out, DataWriteProperty& request) const;
    /// The time of the last record of a log (0 for anything else, and for an empty log).
    Poco::Timestamp getLastTimeStamp() const;
    /// One line for a person: the values' texts, or, for a constructed value, its objects' texts
    /// joined by ", ". `asPrimitives` shows a constructed value's primitives instead, joined by
    /// `separator`, each context-tagged one preceded by "[tag] ".
    std::string& getString(std::string& out, const std::string& separator, bool asPrimitives) const;
    template <class T>
    std::string& getTypedString(std::string& out, const std::string& separator) const;

    // --- rendering for the web services ---
    /// A single primitive or a constructed value (several objects as a List of elements named
    /// 1, 2, ...). A vector of primitives raises Poco::BadCastException: the catalogue walk
    /// renders those.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker,
                BACnetDataType dataType) const;
    template <class T>
    void markupT(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker) const;

    // --- merging: how a log read in several steps becomes one value ---
    /// Writes the values of `other` over this one's from index `position` on (overwriting what
    /// is there, appending past the end). False, with both unchanged, when the two differ in data
    /// type, tag or held class, or when `position` lies past this one's end; `reason` says which.
    bool merge(const ValueContainer& other, unsigned position, std::string& reason);
    bool merge(const ValueContainer& other, unsigned position);
    template <class T>
    bool mergeT(const ValueContainer& other, unsigned position, std::string& reason);

private:
    template <class T>
    const T& held() const {
        const T* value = Poco::AnyCast<T>(&_value);
        if (value == nullptr) throw Poco::BadCastException("Failed to convert between Any types");
        return *value;
    }
    const DataApplicationValue& single() const { return held<DataApplicationValue>(); }

    /// The held object of type T, created when something else is held. Reusing it keeps
    /// repeated decodes into one container free of allocations.
    template <class T>
    T& reuse() {
        T* value = Poco::AnyCast<T>(&_value);
        if (value == nullptr) {
            _value = T();
            value = Poco::AnyCast<T>(&_value);
        }
        return *value;
    }

    int decodePrimitives(const uint8_t* apdu, int length, unsigned maxValues, DataErrorRef& error);
    /// Leaves a consistent empty value after a failed decode; always -1.
    int failDecode();
    int decodeConstructed(const uint8_t* apdu, int length, unsigned maxValues, DataErrorRef& error);
    template <class T>
    int decodeObjects(const uint8_t* apdu, int length, unsigned maxValues, DataErrorRef& error);
    template <class T>
    int encodeT(uint8_t* apdu) const;
    template <class T>
    int encode2T(TQ::Utility::OctetBuffer& buffer) const;
    template <class T>
    void lastTimeStampOf(Poco::Timestamp& last) const;
    /// The one constructed text `setStrings` takes; false (and the container emptied) when it
    /// does not read or the type has no text form.
    bool setConstructedString(const std::string& text);
    bool getConstructedString(std::string& out) const;
    /// The texts as primitives of `tag`: one text in a single-value container, else a vector.
    void setPrimitiveTexts(BACNET_APPLICATION_TAG tag, const std::vector<std::string>& texts, bool emptyIsNull);
    template <class T>
    bool buildObjects(const DataApplicationValue& first);
    /// Objects stored with the structure their count gives: one is a single value, more (or
    /// none) a vector, an array unless the descriptor already says list.
    template <class T>
    void storeObjects(std::vector<T>& objects) {
        if (objects.size() == 1) {
            _descriptor.structure = BACNET_DTS_SINGLE_VALUE;
            _value = objects.front();
            return;
        }
        if (_descriptor.structure == BACNET_DTS_SINGLE_VALUE) _descriptor.structure = BACNET_DTS_ARRAY;
        _value = std::move(objects);
    }
    /// Stores a value, or the chain it starts, as the held single value or vector.
    void storeChain(const DataApplicationValue& first);

    DataPropertyInObject _descriptor;
    Poco::Any _value;
};

}  // namespace BACnet
}  // namespace TQ
