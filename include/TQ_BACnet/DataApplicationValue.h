#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "tq_stack/enums.h"
#include "tq_stack/values.h"

#include <Poco/Dynamic/Var.h>

#include <cstdint>
#include <string>

namespace TQ {
namespace BACnet {

class DataErrorRef;

namespace WS {
class MarkupFactory;
}

namespace DataType {
class OctetString;
class BitString;
class Date;
class Time;
}  // namespace DataType

/// One primitive BACnet value (application tags 0..12) plus the context-tag information the
/// codec attaches to decoded values. It is the codec's value structure, so it can be passed to
/// every codec function as one.
///
/// The null flag is separate from the tag: a value can be "a null of type REAL" (tag REAL, null
/// set), which is how a property known to be REAL reports "no value".
///
/// The structure carries about 1.5 KB of string storage. Copies take only the bytes in use, so
/// moving values around costs what they hold, not what they could hold.
class DataApplicationValue : public BACnet_Application_Data_Value {
public:
    /// Inline and without touching the value union: vectors of decoded values create one per value.
    DataApplicationValue() {
        context_specific = false;
        context_tag = 0;
        tag = BACNET_APPLICATION_TAG_NULL;
        next = nullptr;
    }
    DataApplicationValue(const BACnet_Application_Data_Value& value);
    /// Without default: a null of `tag`. With default: the tag's zero value (see the setters);
    /// Poco::InvalidArgumentException for a tag above 12.
    DataApplicationValue(BACNET_APPLICATION_TAG tag, bool withDefault);
    DataApplicationValue(const DataApplicationValue& other);
    DataApplicationValue(DataApplicationValue&& other) noexcept;
    DataApplicationValue& operator=(const DataApplicationValue& other);
    DataApplicationValue& operator=(DataApplicationValue&& other) noexcept;
    // Inline: clearing a vector of decoded values then costs nothing per value.
    virtual ~DataApplicationValue() = default;

    /// Back to the initial state: null, tag NULL, not context specific, unlinked.
    void init();

    BACNET_APPLICATION_TAG getTag() const { return static_cast<BACNET_APPLICATION_TAG>(tag); }
    BACnetDataType getBACnetDataType() const { return static_cast<BACnetDataType>(tag); }
    bool isNull() const { return _isNull; }
    void setNull(bool isNull) { _isNull = isNull; }
    uint32_t getReserved() const { return _reserved; }
    void setReserved(uint32_t word) { _reserved = word; }

    // --- protocol encoding ---
    /// Bytes consumed, or the codec's failure (negative). Never reads past apdu + len.
    int decode(const uint8_t* apdu, unsigned len);
    /// Bytes written; 0 for a null buffer, -1 for a tag above 12.
    int encode(uint8_t* apdu) const;

    // --- setters: each sets the tag and clears the null flag ---
    void setBool(bool value);
    void setUInt(unsigned value);
    void setInt(int value);
    void setReal(float value);
    void setDouble(double value);
    void setEnum(unsigned value);
    void setOctetString(const DataType::OctetString& value);
    bool setCharString(const std::string& value);
    /// At most 120 bits are kept.
    void setBitString(const DataType::BitString& value);
    void setDate(const DataType::Date& value);
    void setTime(const DataType::Time& value);
    void setObjectIdentifier(DataType::ObjectIdentifier value);

    // --- getters ---
    void getOctetString(DataType::OctetString& out) const;
    void getCharString(std::string& out) const;
    void getBitString(DataType::BitString& out) const;
    /// Poco::BadCastException "DataPortValue::toDouble()" when there is no number to give.
    double toDouble() const;
    double getDouble(bool convert) const;
    float getReal(bool convert) const;
    bool isNumeric() const;
    std::string getContextTagAsString() const;

    // --- text and variants ---
    /// Parses `text` as a value of `tag`; Poco::BadCastException when it does not read.
    void setText(BACNET_APPLICATION_TAG tag, const std::string& text, bool emptyIsNull);
    /// `factory` is used only to escape character strings for its output format; it may be null.
    std::string getText(bool useNames, BACnetDataType dataType, bool* ok, WS::MarkupFactory* factory,
                        bool bitsAsBooleans) const;
    /// Renders the value as one complete markup of its own tag (Null for a null value); a text
    /// that cannot be formed shows as "???". The context tag, when there is one, goes along as
    /// metadata.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker, BACnetDataType dataType,
                bool root, int level, bool bitsAsBooleans) const;
    /// Converts the value in place to `newTag`; Poco::BadCastException "DataApplicationValue::ApplyTag()"
    /// for impossible pairs.
    void applyTag(BACNET_APPLICATION_TAG newTag);
    void toVar(Poco::Dynamic::Var& out) const;
    void fromVar(BACNET_APPLICATION_TAG tag, const Poco::Dynamic::Var& in, bool recogniseNull);
    bool tryFromVar(BACNET_APPLICATION_TAG tag, const Poco::Dynamic::Var& in, bool recogniseNull);
    /// The write-property checks of the codec; `flag` allows empty strings and nulls.
    bool validateValueType(BACNET_APPLICATION_TAG expected, DataErrorRef& error, bool flag) const;

    bool operator==(const DataApplicationValue& other) const;
    bool operator!=(const DataApplicationValue& other) const { return !(*this == other); }

private:
    void copyFrom(const BACnet_Application_Data_Value& other);
    void setApplicationTag(BACNET_APPLICATION_TAG newTag) {
        tag = static_cast<uint8_t>(newTag);
        _isNull = false;
    }

    bool _isNull = true;
    uint32_t _reserved = 65535;
};

}  // namespace BACnet
}  // namespace TQ
