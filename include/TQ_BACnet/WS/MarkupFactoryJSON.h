#pragma once

#include "TQ_BACnet/WS/MarkupFactory.h"

namespace TQ {
namespace BACnet {
namespace WS {

/// The web-service JSON form: without metadata a value is its name and bare value; with
/// metadata every markup is an object with "$base", "$value" and "$<metadata>" members.
class MarkupFactoryJSON : public MarkupFactory {
public:
    MarkupFactoryJSON(std::ostream& out, bool pretty, bool useNames, int compression)
        : MarkupFactory(out, pretty, useNames, compression) {}

    void reset() override;
    void embeddStart() override;
    void embeddEnd() override;
    void append(const std::string& text) override;
    bool allowArrays() const override { return true; }
    int descMarkup(BaseType baseType, const std::string& name, const std::string& value, unsigned int flags,
                   const std::vector<MetadataValue>* metadata) override;
    void descCloseOpenMarkup(const std::string& baseTypeName, bool arrayMarker) override;
    void descStringEncode(std::string& text) override;
    bool descPrimitive(const DataApplicationValue& value, const std::string& name) override;
    std::size_t descElements(const DataApplicationValue* values, std::size_t count,
                             std::size_t firstNumber) override;

private:
    void writeValue(BaseType baseType, const std::string& value, unsigned int flags);
    void writeString(const std::string& text);
    void writeMetadata(const std::vector<MetadataValue>& metadata, unsigned int flags);
    void flushLine();
    /// Whether members can take the short form: compact, without metadata or quoting, and no
    /// array marker on top that the next markup would have to end.
    bool shortForm() const;

    /// One markup's text, written to the stream at once; reused, so writing does not allocate.
    std::string _line;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
