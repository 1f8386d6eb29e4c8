#include "Render.h"

#include "TQ_BACnet/ValueContainer.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "TQ_BACnet/WS/MarkupFactoryMaker.h"
#include "TQ_BACnet/WS/MarkupOptions.h"
#include "TQ_BACnet/WS/PropertyDocument.h"

#include <iostream>
#include <memory>

namespace TQ {
namespace Apps {

using BACnet::WS::MarkupFactory;
using BACnet::WS::MarkupFactoryMaker;
using BACnet::WS::MarkupOptions;

const std::vector<OptionInfo>& renderOptions() {
    static const std::vector<OptionInfo> options = {
        {"alt", "FORMAT", "xml (the default), json or plain"},
        {"names", "", "enumerated values and bits by name"},
        {"metadata", "CATS", "metadata categories, e.g. cat-value,cat-types"},
    };
    return options;
}

void writeDocument(const Args& args, std::ostream& out, bool plainFits,
                   const std::function<bool(MarkupFactory&)>& write) {
    MarkupOptions options;
    const std::string alt = args.get("alt", MarkupOptions::ALT_XML);
    if (alt != MarkupOptions::ALT_XML && alt != MarkupOptions::ALT_JSON && alt != MarkupOptions::ALT_PLAIN) {
        throw UsageError("--alt is xml, json or plain, not \"" + alt + "\"");
    }
    if (alt == MarkupOptions::ALT_PLAIN && !plainFits) {
        throw InputError("plain text shows single primitive values only; ask for xml or json");
    }
    options.parseOptionsFromQuery("alt=" + alt + (args.has("metadata") ? "&metadata=" + args.get("metadata") : ""));
    auto release = [](MarkupFactory* factory) { MarkupFactoryMaker::flushAndDeleteMarkupFactoryPointer(factory); };
    std::unique_ptr<MarkupFactory, decltype(release)> factory(
        MarkupFactoryMaker::getMarkupFactoryPointer(options, out, args.has("names")), release);
    const bool whole = write(*factory);
    factory->closeAllOpenMarkups();
    const std::string why = factory->getLastErrorText();
    factory.reset();
    out << "\n";
    if (!whole) std::cerr << "tq-bacnet: the value is shown only in part: " << why << "\n";
}

void renderValue(const Args& args, const BACnet::ValueContainer& value, BACNET_OBJECT_TYPE objectType,
                 BACNET_PROPERTY_ID property, int arrayIndex, std::ostream& out) {
    const bool simple = value.getStructure() == BACnet::BACNET_DTS_SINGLE_VALUE && value.isPrimitive();
    writeDocument(args, out, simple, [&](MarkupFactory& factory) {
        return BACnet::WS::PropertyDocument::write(factory, objectType, property,
                                                   arrayIndex < 0 ? BACNET_ARRAY_ALL : uint32_t(arrayIndex), value);
    });
}

}  // namespace Apps
}  // namespace TQ
