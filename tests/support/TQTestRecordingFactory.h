#pragma once

#include "TQ_BACnet/WS/MarkupFactory.h"

#include <ostream>
#include <string>
#include <vector>

namespace TQTest {

using TQ::BACnet::WS::MarkupFactory;
using TQ::BACnet::WS::MetadataValue;

/// A writer that prints a compact tag syntax and remembers every call, so that tests see both
/// what reached the stream (indentation, compression) and what the core handed over.
class RecordingFactory : public MarkupFactory {
public:
    struct Opened {
        BaseType baseType;
        std::string name, value;
        unsigned int flags;
        bool hasMetadata;
        std::vector<MetadataValue> metadata;
    };
    struct Closed {
        std::string baseTypeName;
        bool arrayMarker;
    };

    explicit RecordingFactory(std::ostream& out, bool pretty = false, bool arrays = false,
                              int compression = -1)
        : MarkupFactory(out, pretty, false, compression), _arrays(arrays) {}

    void append(const std::string& text) override { _out << text; }
    void descHeader() override { _out << "<?hdr?>"; }
    bool allowArrays() const override { return _arrays; }

    int descMarkup(BaseType baseType, const std::string& name, const std::string& value, unsigned int flags,
                   const std::vector<MetadataValue>* metadata) override {
        opened.push_back({baseType, name, value, flags, metadata != nullptr,
                          metadata ? *metadata : std::vector<MetadataValue>()});
        _out << '<' << getBaseTypeName(baseType) << ' ' << name;
        if (!value.empty()) _out << '=' << value;
        _out << ((flags & MF_COMPLETE) ? "/>" : ">");
        return 0;
    }

    void descCloseOpenMarkup(const std::string& baseTypeName, bool arrayMarker) override {
        closed.push_back({baseTypeName, arrayMarker});
        if (!arrayMarker) _out << "</" << baseTypeName << '>';
    }

    void descStringEncode(std::string& text) override {
        std::string out;
        for (char c : text) out += (c == '<') ? std::string("&lt;") : std::string(1, c);
        text = out;
    }

    std::vector<Opened> opened;
    std::vector<Closed> closed;

private:
    bool _arrays;
};

}  // namespace TQTest
