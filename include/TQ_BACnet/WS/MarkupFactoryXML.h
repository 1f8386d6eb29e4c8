#pragma once

#include "TQ_BACnet/WS/MarkupFactory.h"

namespace TQ {
namespace BACnet {
namespace WS {

/// The BACnet XML data format: one element per markup, named after its base type, with the
/// name, metadata and value as attributes; the root carries the CSML namespace.
class MarkupFactoryXML : public MarkupFactory {
public:
    MarkupFactoryXML(std::ostream& out, bool pretty, bool useNames, int compression)
        : MarkupFactory(out, pretty, useNames, compression) {}

    void append(const std::string& text) override;
    void descHeader() override;
    bool allowArrays() const override { return false; }
    int descMarkup(BaseType baseType, const std::string& name, const std::string& value, unsigned int flags,
                   const std::vector<MetadataValue>* metadata) override;
    void descCloseOpenMarkup(const std::string& baseTypeName, bool arrayMarker) override;
    void descStringEncode(std::string& text) override;
    bool descPrimitive(const DataApplicationValue& value, const std::string& name) override;
    std::size_t descElements(const DataApplicationValue* values, std::size_t count,
                             std::size_t firstNumber) override;

    /// The namespace written on the root element.
    static const std::string _embeddedText;

private:
    /// Without layout or metadata attributes, a number element is written from the value.
    bool shortForm() const { return !_pretty && _metadata.getCategories() == 0; }

    /// One markup's text, written at once; reused, so writing does not allocate.
    std::string _line;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
