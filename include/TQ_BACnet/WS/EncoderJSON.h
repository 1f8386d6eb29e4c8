#pragma once

#include "TQ_BACnet/BACnetDataType.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"

#include <Poco/Dynamic/Var.h>
#include <Poco/Nullable.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace TQ {
namespace Utility {
class OctetBuffer;
}
namespace BACnet {
namespace WS {

class DataWsError;

/// Turns the JSON body of a BACnet/WS write into the encoded BACnet value a WriteProperty
/// request carries, walking the property's data type in the catalogue: members by name,
/// array and list elements by the names "1", "2", ..., enumerations and bits by name or
/// number, context and opening/closing tags as the definition says. Both JSON forms the
/// writer produces are read: the compact one and the expanded one with "$base"/"$value".
///
/// Failures are Poco exceptions; the overload taking a DataWsError turns them into
/// web-service errors instead. Nothing partial ever reaches the caller's buffer.
class EncoderJSON {
public:
    using DataTypeAndName = Entity::BnDataTypeConstruct::DataTypeAndName;

    /// Bodies above this size are refused before parsing.
    static constexpr std::size_t kMaxDocumentSize = 1024 * 1024;
    /// Deepest JSON nesting accepted, and deepest walk through the catalogue: far above any
    /// catalogued type, low enough to keep the parser's and the walk's recursion small.
    static constexpr std::size_t kMaxNesting = 32;

    EncoderJSON() = default;

    /// Encodes the JSON `text` for a property with `descriptor` into `buffer`'s storage from
    /// `offset` on (grown when the buffer owns its storage); returns the byte count. The
    /// buffer's size is left to the caller. The value must fit into one APDU.
    int encode(const DataPropertyInObject0& descriptor, const std::string& text,
               TQ::Utility::OctetBuffer& buffer, unsigned int offset);
    /// The same without exceptions: -1 with the web-service error code and text set in `error`
    /// (bad document 29, bad value 12, value out of range 13, uncatalogued type 24).
    int encode(const DataPropertyInObject0& descriptor, const std::string& text,
               TQ::Utility::OctetBuffer& buffer, unsigned int offset, DataWsError& error) noexcept;

    /// A value of catalogued `type`; with `isArray` its elements "1", "2", ... (or a JSON array).
    /// Writes at `*out` and advances it; room for one APDU is assumed when no entry above set
    /// the bound.
    int encode(BACnetDataType type, const Poco::Dynamic::Var& json, unsigned char** out, bool isArray) const;
    int encode(const DataTypeAndName& member, const Poco::Dynamic::Var& json, unsigned char** out) const;

    int encodeSequenceInternal(const std::vector<DataTypeAndName>& members, const Poco::Dynamic::Var& json,
                               unsigned char** out) const;
    int encodeChoiceInternal(const std::vector<DataTypeAndName>& alternatives, const Poco::Dynamic::Var& json,
                             unsigned char** out) const;
    int encodeSequenceOfInternal(BACnetDataType elementType, const Poco::Dynamic::Var& json,
                                 unsigned char** out) const;
    int encodeAnyInternal(const Poco::Dynamic::Var& json, unsigned char** out) const;
    int encodePrimitiveInternal(const DataTypeAndName& member, const Poco::Dynamic::Var& json,
                                unsigned char** out) const;
    int encodeNullInternal(const DataTypeAndName& member, unsigned char** out) const;
    int encodeOpeningTagIfExist(const Poco::Nullable<unsigned char>& contextNr, unsigned char** out) const;
    int encodeClosingTagIfExist(const Poco::Nullable<unsigned char>& contextNr, unsigned char** out) const;

    /// Fills `value` with the member's primitive read from `json`.
    void setPrimitive(const DataTypeAndName& member, const Poco::Dynamic::Var& json,
                      DataApplicationValue& value) const;
    /// Member `name` of the JSON object `json` (anything but an object has none). A missing
    /// mandatory member raises Poco::NotFoundException naming it.
    bool getSubObject(const Poco::Dynamic::Var& json, std::string name, Poco::Dynamic::Var& result,
                      bool mandatory) const;

    /// Whether the document's top object is in the expanded form (has "$base").
    bool isExpanded() const { return expanded; }

private:
    class Bound;
    class Depth;

    void reserve(const unsigned char* at, std::size_t bytes) const;
    int encodeGroup(const std::vector<DataTypeAndName>& members, std::size_t& index,
                    const Poco::Dynamic::Var& json, unsigned char** out) const;

    bool expanded = false;
    mutable unsigned char* _end = nullptr;  ///< the write limit of the walk in progress
    mutable std::size_t _depth = 0;         ///< members entered and not yet left
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
