#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/BitString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/ObjectIdentifier.h"
#include "TQ_BACnet/DataType/OctetString.h"
#include "TQ_BACnet/DataType/Time.h"

#include <Poco/Dynamic/Var.h>
#include <Poco/JSON/Object.h>

#include <string>

namespace TQ {
namespace BACnet {
namespace DataType {
class ANY;
}
namespace WS {

/// One BACnet value in JSON (its only member, a string) together with the descriptor of the
/// property it belongs to, read through typed getters. In strict mode a getter refuses to read
/// the value as another type than the property's.
class ObjectJSON : public Poco::JSON::Object {
public:
    explicit ObjectJSON(int options = 0);
    ObjectJSON(const DataPropertyInObject0& descriptor, bool flag);
    ObjectJSON(const Poco::JSON::Object& object, const DataPropertyInObject0& descriptor, bool flag);
    /// The ANY's descriptor and its value rendered as JSON (`setValue`).
    ObjectJSON(const DataType::ANY& any, int options);
    ObjectJSON(const ObjectJSON&) = default;
    ObjectJSON& operator=(const ObjectJSON&) = default;
    virtual ~ObjectJSON() = default;

    /// The value's text after the checks of its single member, strict typing, emptiness and
    /// null; every refusal is a Poco exception whose message names the requested tag.
    void getValueString(BACnetDataType requested, bool strict, bool nullAllowed, bool emptyAllowed,
                        std::string& out) const;

    bool getBoolean(bool strict) const;
    unsigned int getUnsignedInt(bool strict) const;
    int getSignedInt(bool strict) const;
    /// Strict mode also requires the descriptor to be a REAL that may not be empty.
    float getReal(bool strict) const;
    double getDouble(bool strict) const;
    DataType::OctetString getOctetString(bool strict) const;
    std::string getCharacterString(bool strict) const;
    DataType::BitString getBitString(bool strict) const;
    unsigned int getEnumerated(bool strict) const;
    DataType::Date getDate(bool strict) const;
    DataType::Time getTime(bool strict) const;
    DataType::ObjectIdentifier getObjectIdentifier(bool strict) const;

    /// The member named `index` in decimal; false for index 0 and beyond the member count.
    bool getArrayItem(unsigned int index, Poco::Dynamic::Var& out) const;
    /// The same, converted to the descriptor's application tag.
    bool getArrayItem(unsigned int index, DataApplicationValue& out, bool recogniseNull) const;

    /// Whether the ";"-separated names of the value hold `bitName` exactly (no trimming).
    bool isBitStringBitSet(const std::string& bitName) const;

    /// Replaces the content by the ANY's value as the JSON writer renders it.
    void setValue(const DataType::ANY& any);

    const DataPropertyInObject0& getDescriptor() const { return _descriptor; }
    bool getFlag() const { return _flag; }

private:
    std::string text(BACnetDataType requested, bool strict) const;

    DataPropertyInObject0 _descriptor;
    bool _flag = false;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
