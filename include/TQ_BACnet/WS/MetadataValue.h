#pragma once

#include "TQ_BACnet/WS/Metadata.h"

#include <Poco/Dynamic/Var.h>

#include <string>
#include <utility>

namespace TQ {
namespace BACnet {
namespace WS {

/// One metadata item attached to a markup: its number and its value as text.
class MetadataValue {
public:
    MetadataValue(Metadata::METADATA metadata, const std::string& value)
        : _metadata(metadata), _value(value) {}
    /// Spares callers with a literal the choice between the string and the variant form.
    MetadataValue(Metadata::METADATA metadata, const char* value)
        : _metadata(metadata), _value(value ? value : "") {}
    MetadataValue(Metadata::METADATA metadata, std::string&& value)
        : _metadata(metadata), _value(std::move(value)) {}
    /// Raises the variant's exception when it has no string form.
    MetadataValue(Metadata::METADATA metadata, const Poco::Dynamic::Var& value);

    Metadata::METADATA getMetadata() const { return _metadata; }
    const std::string& getValue() const { return _value; }

    /// `before` + the item's catalogue name + `after`; empty when the catalogue has no name, and
    /// (with a line on standard error) when the lookup fails.
    std::string getName(const std::string& before = "", const std::string& after = "") const;

    /// "true" or "false" in any letter case.
    bool isBoolean() const;

    bool operator==(const MetadataValue& other) const {
        return _metadata == other._metadata && _value == other._value;
    }

private:
    Metadata::METADATA _metadata;
    std::string _value;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
