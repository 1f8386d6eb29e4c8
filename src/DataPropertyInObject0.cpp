#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/ANY.h"

#include "Entity/EntitySupport.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"

#include "tq_stack/codec.h"

#include <Poco/Data/Statement.h>
#include <Poco/Exception.h>

#include <iterator>
#include <string>

namespace TQ {
namespace BACnet {

namespace {

// Room for the five context-tagged fields: three enumerated of up to 4 octets, a boolean, a
// signed of up to 4 octets (each with a one-octet tag), plus opening and closing tags.
constexpr std::size_t kEncodedMax = 5 * 6 + 2;

constexpr uint32_t kMaxPropertyId = 16777214;

// Object type and property side by side: property identifiers go beyond the 22 bits an
// object-identifier-style packing leaves them, and two pairs must never share a key.
inline Poco::UInt64 cacheKey(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID propertyId) {
    return (static_cast<Poco::UInt64>(objectType) << 32) | static_cast<uint32_t>(propertyId);
}

// A thread reads the same property again and again (a value decoded per poll): its last answer
// is kept beside it, so a repeat costs neither the lock nor the hash. Cached answers never
// change, so the copy can never go stale. The dynamic TLS model, because hosts may open the
// library with dlopen: the static model would need room in a small reserve that every
// late-loaded library shares and others may already have taken.
struct LastAnswer {
    Poco::UInt64 key = ~Poco::UInt64(0);
    TQ::BACnet::DataPropertyInObject0 descriptor;
};
thread_local LastAnswer lastAnswer;

// Catalogue types whose primitive form is fixed, so rendering them needs no catalogue access.
struct FixedPrimitive {
    BACnetDataType datatype;
    BACNET_APPLICATION_TAG tag;
};
constexpr FixedPrimitive kFixedPrimitives[] = {
    {BACNET_DT_UNSIGNED_1006, BACNET_APPLICATION_TAG_UNSIGNED_INT},
    {BACNET_DT_UNSIGNED_1085, BACNET_APPLICATION_TAG_UNSIGNED_INT},
    {BACNET_DT_UNSIGNED_1086, BACNET_APPLICATION_TAG_UNSIGNED_INT},
    {BACNET_DT_UNSIGNED_1087, BACNET_APPLICATION_TAG_UNSIGNED_INT},
    {BACNET_DT_UNSIGNED_1088, BACNET_APPLICATION_TAG_UNSIGNED_INT},
    {BACNET_DT_UNSIGNED_1176, BACNET_APPLICATION_TAG_UNSIGNED_INT},
    {BACNET_DT_SIGNED_1113, BACNET_APPLICATION_TAG_SIGNED_INT},
    {BACNET_DT_SIGNED_1178, BACNET_APPLICATION_TAG_SIGNED_INT},
    {BACNET_DT_DATE_1179, BACNET_APPLICATION_TAG_DATE},
    {BACNET_DT_TIME_1180, BACNET_APPLICATION_TAG_TIME},
};

constexpr const char* kDescriptorQuery =
    "SELECT id_bn_datatype,tag,tag_structure,empty_allowed,managed_internally FROM bn_properties_in_object "
    "WHERE id_bn_object_type=? AND id_bn_property_type=?";

int appendEncoded(TQ::Utility::OctetBuffer& buffer, const uint8_t* bytes, int length) {
    if (length <= 0) return length;
    buffer.append(bytes, static_cast<std::size_t>(length));
    return length;
}

}  // namespace

TQ_ENTITY_STATIC_INIT Poco::HashMap<Poco::UInt64, DataPropertyInObject0>
    DataPropertyInObject0::_propertiesInObjects(64);
TQ_ENTITY_STATIC_INIT Poco::FastMutex DataPropertyInObject0::_mutexPropertiesInObjects;

int DataPropertyInObject0::encode(uint8_t* apdu) const {
    if (!apdu) return 0;
    int length = encode_context_enumerated(apdu, 0, datatype);
    length += encode_context_enumerated(apdu + length, 1, tag);
    length += encode_context_enumerated(apdu + length, 2, structure);
    length += encode_context_boolean(apdu + length, 3, emptyAllowed);
    length += encode_context_signed(apdu + length, 4, managedInternally);
    return length;
}

int DataPropertyInObject0::encodeContext(uint8_t* apdu, uint8_t tagNumber) const {
    if (!apdu) return 0;
    int length = encode_opening_tag(apdu, tagNumber);
    length += encode(apdu + length);
    length += encode_closing_tag(apdu + length, tagNumber);
    return length;
}

int DataPropertyInObject0::encode(TQ::Utility::OctetBuffer& buffer) const {
    uint8_t local[kEncodedMax];
    return appendEncoded(buffer, local, encode(local));
}

int DataPropertyInObject0::encodeContext(TQ::Utility::OctetBuffer& buffer, uint8_t tagNumber) const {
    uint8_t local[kEncodedMax];
    return appendEncoded(buffer, local, encodeContext(local, tagNumber));
}

void DataPropertyInObject0::getAsANY(DataType::ANY& out) const {
    uint8_t bytes[kEncodedMax];
    const int length = encode(bytes);
    const DataPropertyInObject0 itself(BACNET_DT_PROPERTY_DESCRIPTOR, BACNET_APPLICATION_TAG_NULL,
                                       BACNET_DTS_SINGLE_VALUE, false, 4);
    out.setTypeAndValue(itself, bytes, static_cast<unsigned>(length));
}

BACNET_APPLICATION_TAG DataPropertyInObject0::getPrimitiveType(BACnetDataType datatype) {
    if (datatype <= BACNET_DT_RESERVE3) return static_cast<BACNET_APPLICATION_TAG>(datatype);
    for (const FixedPrimitive& fixed : kFixedPrimitives)
        if (fixed.datatype == datatype) return fixed.tag;

    const Entity::BnDataTypeConstruct* definition = Entity::BnDataTypeConstruct::find(datatype);
    if (!definition)
        throw Poco::DataException("Unknown datatype id " + std::to_string(static_cast<uint32_t>(datatype)) +
                                  " in database (by key bn_datatype_construct.id_bn_datatype)");
    const Poco::Dynamic::Var& markup = definition->getVar(Entity::BnDataTypeConstruct::_COL_ID_BN_MARKUP);
    if (markup.isEmpty()) return BACNET_APPLICATION_TAG_NULL;
    try {
        return static_cast<BACNET_APPLICATION_TAG>(markup.convert<unsigned int>());
    } catch (const Poco::BadCastException&) {
        throw;
    } catch (const Poco::Exception& e) {
        throw Poco::BadCastException("DataPropertyInObject0::getPrimitiveType(): markup kind of datatype " +
                                         std::to_string(static_cast<uint32_t>(datatype)) +
                                         " is not a tag number",
                                     e);
    }
}

bool DataPropertyInObject0::getValueTypeAndStructure(BACNET_OBJECT_TYPE objectType,
                                                     BACNET_PROPERTY_ID propertyId,
                                                     DataPropertyInObject0& out, bool useFallback) {
    if (static_cast<uint32_t>(objectType) >= MAX_BACNET_OBJECT_TYPE ||
        static_cast<uint32_t>(propertyId) > kMaxPropertyId)
        return false;
    if (lastAnswer.key == cacheKey(objectType, propertyId)) {
        out = lastAnswer.descriptor;
        return true;
    }
    if (lookUp(objectType, propertyId, out)) return true;
    // Outside the lock: the fallback takes it again and the mutex is not recursive.
    if (useFallback && propertyId != PROP_PRESENT_VALUE) {
        if (!lookUp(OBJECT_ANALOG_OUTPUT, propertyId, out)) out.datatype = BACNET_DT_UNKNOWN;
    }
    return false;
}

bool DataPropertyInObject0::lookUp(BACNET_OBJECT_TYPE objectType, BACNET_PROPERTY_ID propertyId,
                                   DataPropertyInObject0& out) {
    using Poco::Data::Keywords::into;
    using Poco::Data::Keywords::limit;
    using Poco::Data::Keywords::use;

    const Poco::UInt64 key = cacheKey(objectType, propertyId);
    const auto cached = [&]() {
        auto it = _propertiesInObjects.find(key);
        if (it == _propertiesInObjects.end()) return false;
        out = it->second;
        lastAnswer = {key, out};
        return true;
    };
    {
        Poco::FastMutex::ScopedLock lock(_mutexPropertiesInObjects);
        if (cached()) return true;
    }
    if (!TQ::Utility::Data::pDB)
        throw Poco::NullPointerException(
            "DataPropertyInObject0::getValueTypeAndStructure(): no database session");
    // The session before the cache's lock, as every lookup takes them; then asked again, as
    // another thread may have loaded meanwhile.
    TQ::Utility::Data::SmoDbSession::Use session(*TQ::Utility::Data::pDB);
    Poco::FastMutex::ScopedLock lock(_mutexPropertiesInObjects);
    if (cached()) return true;
    unsigned int type = objectType;
    unsigned int property = propertyId;
    int datatype = -1;
    int tag = 0;
    int structure = 0;
    int emptyAllowed = 0;
    int managedInternally = 0;
    Poco::Data::Statement statement(TQ::Utility::Data::pDB->getSession());
    statement << kDescriptorQuery, use(type), use(property), into(datatype), into(tag), into(structure),
        into(emptyAllowed), into(managedInternally), limit(1);
    statement.execute();
    if (datatype <= 0) return false;

    DataPropertyInObject0 found(
        static_cast<BACnetDataType>(datatype), static_cast<BACNET_APPLICATION_TAG>(tag),
        static_cast<BACnetDataTypeStructure>(structure), emptyAllowed != 0, managedInternally);
    _propertiesInObjects[key] = found;
    out = found;
    lastAnswer = {key, found};
    return true;
}

}  // namespace BACnet
}  // namespace TQ
