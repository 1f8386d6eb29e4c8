#pragma once

#include "TQ_BACnet/BACnetDataType.h"

#include "tq_stack/enums.h"

#include <Poco/HashMap.h>
#include <Poco/Mutex.h>
#include <Poco/Types.h>

#include <cstdint>
#include <string>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace DataType {
class ANY;
}
namespace WS {
class MarkupFactory;
}

/// What one property of one object type holds: its data type, the application tag of its
/// primitive form, its structure (single value, array or list), whether it may be empty and
/// how the gateway manages it. `getValueTypeAndStructure` answers this from the catalogue and
/// keeps every answer for the life of the process.
class DataPropertyInObject0 {
public:
    DataPropertyInObject0() = default;
    DataPropertyInObject0(BACnetDataType datatype, BACNET_APPLICATION_TAG tag,
                          BACnetDataTypeStructure structure, bool emptyAllowed, int managedInternally)
        : datatype(datatype),
          tag(tag),
          structure(structure),
          emptyAllowed(emptyAllowed),
          managedInternally(managedInternally) {}

    /// Back to the initial values.
    void init() { *this = DataPropertyInObject0(); }

    /// Data type, tag and structure decide equality; the two flags do not.
    bool operator==(const DataPropertyInObject0& other) const {
        return datatype == other.datatype && tag == other.tag && structure == other.structure;
    }
    bool operator!=(const DataPropertyInObject0& other) const { return !(*this == other); }

    /// The five fields as context tags [0]..[4] (enumerated, enumerated, enumerated, boolean,
    /// signed); the byte count, 0 for a null buffer.
    int encode(uint8_t* apdu) const;
    /// `encode` enclosed in opening and closing tag `tagNumber`.
    int encodeContext(uint8_t* apdu, uint8_t tagNumber) const;
    /// The same, appended to `buffer` (which grows). Raises Poco::InvalidAccessException for a
    /// buffer over foreign storage that is too small.
    int encode(TQ::Utility::OctetBuffer& buffer) const;
    int encodeContext(TQ::Utility::OctetBuffer& buffer, uint8_t tagNumber) const;

    /// The encoded descriptor as a value of its own constructed type, so it travels and renders
    /// like any other value.
    void getAsANY(DataType::ANY& out) const;
    /// Renders the descriptor through its catalogue type, as `getAsANY` holds it.
    void markup(WS::MarkupFactory& factory, const std::string& name, bool arrayMarker, bool root,
                int level) const;

    /// The application tag of a data type's primitive form: a tag stands for itself, a few
    /// catalogue types are fixed, any other is read from the constructed-type catalogue.
    /// Raises Poco::DataException for a type the catalogue does not know.
    static BACNET_APPLICATION_TAG getPrimitiveType(BACnetDataType datatype);

    /// The descriptor of `propertyId` of `objectType`. False when the catalogue does not know
    /// the pair; `out` is then untouched, unless `useFallback` is set: for any property but
    /// Present_Value the descriptor of that property of an Analog Output is taken instead, or
    /// the data type BACNET_DT_UNKNOWN when that is unknown too (the result stays false).
    static bool getValueTypeAndStructure(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID propertyId,
                                         DataPropertyInObject0& out, bool useFallback);

    BACnetDataType datatype = BACNET_DT_NULL;
    BACNET_APPLICATION_TAG tag = BACNET_APPLICATION_TAG_NULL;
    BACnetDataTypeStructure structure = BACNET_DTS_SINGLE_VALUE;
    bool emptyAllowed = true;
    int managedInternally = 4;

private:
    static bool lookUp(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID propertyId,
                       DataPropertyInObject0& out);

    static Poco::HashMap<Poco::UInt64, DataPropertyInObject0> _propertiesInObjects;
    static Poco::FastMutex _mutexPropertiesInObjects;
};

}  // namespace BACnet
}  // namespace TQ
