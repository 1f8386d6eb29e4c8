// The catalogue walk of the JSON encoder: entries, constructed members and tags.
#include "TQ_BACnet/WS/EncoderJSON.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/Entity/BnDataType.h"
#include "TQ_BACnet/Entity/BnMarkupType.h"
#include "TQ_BACnet/WS/DataWsError.h"
#include "WsSupport.h"
#include "tq_stack/codec.h"
#include "tq_stack/config.h"

#include <Poco/Exception.h>
#include <Poco/JSON/JSONException.h>
#include <Poco/JSON/Parser.h>
#include <Poco/String.h>

#include <algorithm>
#include <cstring>

namespace TQ {
namespace BACnet {
namespace WS {

using Entity::BnDataTypeConstruct;
using Poco::Dynamic::Var;

namespace {

constexpr unsigned kSequence = 22;
constexpr unsigned kSequenceOf = 24;
constexpr unsigned kChoice = 25;
constexpr unsigned kLastPrimitiveKind = 12;
// Every level of JSON takes at most a few members of the walk (type, top row, member).
constexpr std::size_t kMaxWalk = 4 * EncoderJSON::kMaxNesting;

BnDataTypeConstruct::DataTypeAndName topMember(const BnDataTypeConstruct& def) {
    const Poco::Nullable<int> parent = def.getIdParent();
    const unsigned id = static_cast<unsigned>(def.getIdBnDataTypeConstruct());
    return {&def,
            "",
            def.getIdBnMarkup(),
            def.getContextNr(),
            id,
            parent.isNull() ? id : static_cast<unsigned>(parent.value()),
            def.isOptional()};
}

// "$value" given as a JSON null or as the text "null" in any letter case, or the value itself
// a JSON null.
bool isNullValue(const Var& json) {
    if (json.isEmpty()) return true;
    const Poco::JSON::Object* object = WsSupport::objectOf(json);
    if (!object || !object->has("$value")) return false;
    const Var value = object->get("$value");
    return value.isEmpty() || (value.isString() && Poco::icompare(value.extract<std::string>(), "null") == 0);
}

DataWsError::WS_ERROR_CODE codeOf(const Poco::Exception& e) {
    if (dynamic_cast<const Poco::JSON::JSONException*>(&e)) return DataWsError::WS_ERR_BAD_PAYLOAD;
    if (dynamic_cast<const Poco::RangeException*>(&e)) return DataWsError::WS_ERR_VALUE_OUT_OF_RANGE;
    if (dynamic_cast<const Poco::NotImplementedException*>(&e))
        return DataWsError::WS_ERR_UNSUPPORTED_DATATYPE;
    return DataWsError::WS_ERR_VALUE_FORMAT;
}

}  // namespace

/// Bounds the writes of one walk: the entry that starts a walk sets the limit, nested calls
/// keep it.
class EncoderJSON::Bound {
public:
    Bound(const EncoderJSON& encoder, unsigned char* start, std::size_t room) : _encoder(encoder) {
        if (_encoder._end) return;
        _encoder._end = start + room;
        _owner = true;
    }
    ~Bound() {
        if (_owner) _encoder._end = nullptr;
    }
    Bound(const Bound&) = delete;
    Bound& operator=(const Bound&) = delete;

private:
    const EncoderJSON& _encoder;
    bool _owner = false;
};

/// Counts the members entered, so that a definition that leads back to itself ends.
class EncoderJSON::Depth {
public:
    explicit Depth(const EncoderJSON& encoder) : _encoder(encoder) {
        if (++_encoder._depth > kMaxWalk) {
            --_encoder._depth;
            throw Poco::DataFormatException(
                "TQ::BACnet::WS::EncoderJSON::encode() the value nests deeper than " +
                std::to_string(kMaxWalk) + " members");
        }
    }
    ~Depth() { --_encoder._depth; }
    Depth(const Depth&) = delete;
    Depth& operator=(const Depth&) = delete;

private:
    const EncoderJSON& _encoder;
};

int EncoderJSON::encode(const DataPropertyInObject0& descriptor, const std::string& text,
                        TQ::Utility::OctetBuffer& buffer, unsigned int offset) {
    if (text.size() > kMaxDocumentSize)
        throw Poco::JSON::JSONException(
            "TQ::BACnet::WS::EncoderJSON::encode() the JSON text is larger than " +
            std::to_string(kMaxDocumentSize) + " bytes");
    Poco::JSON::Parser parser;
    parser.setDepth(kMaxNesting);
    const Var parsed = parser.parse(text);
    if (!WsSupport::objectOf(parsed))
        throw Poco::JSON::JSONException(
            "TQ::BACnet::WS::EncoderJSON::encode() the JSON text is not an object");
    expanded = WsSupport::objectOf(parsed)->has("$base");
    const bool isArray =
        descriptor.structure != BACNET_DTS_SINGLE_VALUE && descriptor.datatype != WsSupport::kPriorityArray;

    // The walk writes into scratch space, so a failure leaves the caller's bytes untouched.
    unsigned char scratch[MAX_APDU];
    unsigned char* out = scratch;
    const Bound bound(*this, scratch, sizeof scratch);
    const int length = encode(descriptor.datatype, parsed, &out, isArray);
    if (length <= 0) return length;
    if (buffer.capacity() < std::size_t(offset) + std::size_t(length))
        buffer.reserve(std::size_t(offset) + length);
    std::memcpy(buffer.data() + offset, scratch, static_cast<std::size_t>(length));
    return length;
}

int EncoderJSON::encode(const DataPropertyInObject0& descriptor, const std::string& text,
                        TQ::Utility::OctetBuffer& buffer, unsigned int offset, DataWsError& error) noexcept {
    try {
        return encode(descriptor, text, buffer, offset);
    } catch (const Poco::Exception& e) {
        if (!error.hasWsError()) error.setWsError(codeOf(e), e.displayText());
    } catch (const std::exception& e) {
        if (!error.hasWsError()) error.setWsError(DataWsError::WS_ERR_OTHER, e.what());
    } catch (...) {
        if (!error.hasWsError()) error.setWsError(DataWsError::WS_ERR_OTHER, "unknown exception");
    }
    return -1;
}

int EncoderJSON::encode(BACnetDataType type, const Var& json, unsigned char** out, bool isArray) const {
    const Bound bound(*this, *out, MAX_APDU);
    const BnDataTypeConstruct* def = BnDataTypeConstruct::find(type);
    if (!def)
        throw Poco::NotImplementedException("Can't encode as BACnet datatype " + std::to_string(type) +
                                            " is not implemented in MERLO-Stack database");
    const DataTypeAndName top = topMember(*def);
    if (!isArray) return encode(top, json, out);

    int total = 0;
    if (const Poco::JSON::Array* elements = WsSupport::arrayOf(json)) {
        for (std::size_t i = 0; i < elements->size(); ++i) {
            const int length = encode(top, elements->get(static_cast<unsigned>(i)), out);
            if (length < 1) break;
            total += length;
        }
        return total;
    }
    for (unsigned i = 1;; ++i) {
        Var element;
        if (!getSubObject(json, std::to_string(i), element, false)) break;
        const int length = encode(top, element, out);
        if (length < 1) break;
        total += length;
    }
    return total;
}

int EncoderJSON::encode(const DataTypeAndName& member, const Var& json, unsigned char** out) const {
    const Depth depth(*this);
    const BnDataTypeConstruct* def = member.pDTC;
    if (!def) return encodePrimitiveInternal(member, json, out);
    if (isNullValue(json)) return encodeNullInternal(member, out);
    const unsigned type = static_cast<unsigned>(def->getIdBnDataType());
    if (type < BACNET_DT_MAX_APPLICATION_TAG) return encodePrimitiveInternal(member, json, out);

    int length = 0;
    if (!member.idBnMarkup.isNull()) {
        const unsigned kind = member.idBnMarkup.value();
        if (kind <= kLastPrimitiveKind) return encodePrimitiveInternal(member, json, out);
        length += encodeOpeningTagIfExist(member.contextNr, out);
        switch (kind) {
            case kSequence:
                length += encodeSequenceInternal(def->_internalBDTCs, json, out);
                break;
            case kSequenceOf: {
                BACnetDataType element = static_cast<BACnetDataType>(type);
                if (member.idBnDataTypeConstruct == member.idParent) {
                    const auto& inner = def->_internalBDTCs;
                    if (inner.size() != 1)
                        throw Poco::Exception(
                            "TQ::BACnet::WS::EncoderJSON::encode[3]() number of internal internal datatypes "
                            "is " +
                            std::to_string(inner.size()) +
                            ", but should be 1 for bn_datatype_construct.id_bn_datatype_construct=" +
                            std::to_string(member.idBnDataTypeConstruct));
                    if (!inner[0].pDTC)
                        throw Poco::NotImplementedException("Can't encode as BACnet datatype " +
                                                            std::to_string(BACNET_DT_UNKNOWN) +
                                                            " is not implemented in MERLO-Stack database");
                    element = static_cast<BACnetDataType>(inner[0].pDTC->getIdBnDataType());
                }
                length += encodeSequenceOfInternal(element, json, out);
                break;
            }
            case kChoice:
                length += encodeChoiceInternal(def->_internalBDTCs, json, out);
                break;
            default:
                throw Poco::NotFoundException(
                    "TQ::BACnet::WS::EncoderJSON::encode[3]() Unsupported BaseType " + std::to_string(kind));
        }
        length += encodeClosingTagIfExist(member.contextNr, out);
        return std::max(length, 0);
    }
    // A context-tagged ABSTRACT-SYNTAX.&Type is enclosed in its tags like any constructed member.
    if (type == BACNET_DT_ANY) {
        length += encodeOpeningTagIfExist(member.contextNr, out);
        length += encodeAnyInternal(json, out);
        return length + encodeClosingTagIfExist(member.contextNr, out);
    }
    const Poco::Nullable<unsigned> topKind = def->getIdBnMarkup();
    if (!topKind.isNull() && topKind.value() <= kLastPrimitiveKind)
        return encodePrimitiveInternal(member, json, out);
    length += encodeOpeningTagIfExist(member.contextNr, out);
    length += encode(static_cast<BACnetDataType>(type), json, out, false);
    return length + encodeClosingTagIfExist(member.contextNr, out);
}

int EncoderJSON::encodeGroup(const std::vector<DataTypeAndName>& members, std::size_t& index, const Var& json,
                             unsigned char** out) const {
    DataTypeAndName group = members[index];
    std::vector<DataTypeAndName> inner;
    while (index + 1 < members.size() && members[index + 1].idParent == group.idBnDataTypeConstruct)
        inner.push_back(members[++index]);
    const BnDataTypeConstruct synthetic(inner);
    group.pDTC = &synthetic;
    if (group.name.empty()) return encode(group, json, out);
    Var sub;
    if (!getSubObject(json, group.name, sub, !group.optional)) return 0;
    return encode(group, sub, out);
}

int EncoderJSON::encodeSequenceInternal(const std::vector<DataTypeAndName>& members, const Var& json,
                                        unsigned char** out) const {
    int total = 0;
    for (std::size_t i = 0; i < members.size(); ++i) {
        if (!members[i].pDTC) {
            total += encodeGroup(members, i, json, out);
            continue;
        }
        Var sub;
        if (getSubObject(json, members[i].name, sub, !members[i].optional))
            total += encode(members[i], sub, out);
    }
    return total;
}

int EncoderJSON::encodeChoiceInternal(const std::vector<DataTypeAndName>& alternatives, const Var& json,
                                      unsigned char** out) const {
    const Poco::JSON::Object* object = WsSupport::objectOf(json);
    for (std::size_t i = 0; object && i < alternatives.size(); ++i) {
        const DataTypeAndName& alternative = alternatives[i];
        const bool chosen = !alternative.name.empty() && object->has(alternative.name);
        if (!alternative.pDTC) {
            // An inline group is one alternative: its members are skipped unless it is chosen.
            if (chosen) return encodeGroup(alternatives, i, json, out);
            while (i + 1 < alternatives.size() &&
                   alternatives[i + 1].idParent == alternative.idBnDataTypeConstruct)
                ++i;
            continue;
        }
        if (chosen) return encode(alternative, object->get(alternative.name), out);
    }
    throw Poco::NotFoundException("TQ::BACnet::WS:: EncoderJSON::encodeChoiceInternal() no CHOICE match");
}

int EncoderJSON::encodeSequenceOfInternal(BACnetDataType elementType, const Var& json,
                                          unsigned char** out) const {
    return encode(elementType, json, out, true);
}

int EncoderJSON::encodeAnyInternal(const Var& json, unsigned char** out) const {
    Var base;
    getSubObject(json, "$base", base, true);
    const std::string name = base.isString() ? base.extract<std::string>() : base.toString();
    BACnetDataType type = Entity::BnDataType::findReverse(name);
    if (type >= BACNET_DT_NOT_FOUND) {
        // The writer names primitives by their base type ("Real"), the catalogue by ASN.1 ("REAL").
        const Poco::Nullable<int> kind = Entity::BnMarkupType::findReverse(name);
        if (kind.isNull() || kind.value() < 0 || kind.value() > static_cast<int>(kLastPrimitiveKind))
            throw Poco::NotFoundException(
                "TQ::BACnet::WS::EncoderJSON::encodeAnyInternal(), datatype for \"" + name +
                "\" dosen't exist");
        type = static_cast<BACnetDataType>(kind.value());
    }
    Var value;
    getSubObject(json, "$value", value, true);
    return encode(type, value, out, false);
}

int EncoderJSON::encodeOpeningTagIfExist(const Poco::Nullable<unsigned char>& contextNr,
                                         unsigned char** out) const {
    if (contextNr.isNull()) return 0;
    reserve(*out, 2);
    const int length = encode_opening_tag(*out, contextNr.value());
    *out += length;
    return length;
}

int EncoderJSON::encodeClosingTagIfExist(const Poco::Nullable<unsigned char>& contextNr,
                                         unsigned char** out) const {
    if (contextNr.isNull()) return 0;
    reserve(*out, 2);
    const int length = encode_closing_tag(*out, contextNr.value());
    *out += length;
    return length;
}

bool EncoderJSON::getSubObject(const Var& json, std::string name, Var& result, bool mandatory) const {
    const Poco::JSON::Object* object = WsSupport::objectOf(json);
    if (object && object->has(name)) {
        result = object->get(name);
        return true;
    }
    result.clear();
    if (mandatory)
        throw Poco::NotFoundException("TQ::BACnet::WS::EncoderJSON::getSubObject() sub-item \"" + name +
                                      "\" not found");
    return false;
}

void EncoderJSON::reserve(const unsigned char* at, std::size_t bytes) const {
    if (_end && (at > _end || static_cast<std::size_t>(_end - at) < bytes))
        throw Poco::RangeException("TQ::BACnet::WS::EncoderJSON the value does not fit into one APDU of " +
                                   std::to_string(MAX_APDU) + " bytes");
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
