// Commands that need no network: values between bytes, text and the catalogue database.
#include "Commands.h"
#include "Render.h"
#include "Values.h"

#include <cstdint>

namespace TQ {
namespace Apps {

namespace {

const std::vector<OptionInfo> kPropertyOptions = {
    {"object", "TYPE", "object type, by name or number (analog-input, 0)"},
    {"property", "PROP", "property, by name or number (present-value, 85)"},
    {"index", "N", "array index the value belongs to (0: the array's size)"},
};

/// Hexadecimal bytes may come as one word or several ("82 04 00").
std::string joined(const std::vector<std::string>& words) {
    std::string all;
    for (const std::string& word : words) all += (all.empty() ? "" : " ") + word;
    return all;
}

int runText(const Args& args, std::ostream& out) {
    args.expectPositionals(1, SIZE_MAX);
    Catalogue catalogue(args);
    const PropertyOf of = propertyOf(args);
    const BACnet::ValueContainer value = decodeValue(bytesOf(joined(args.positionals())), of);
    std::string text;
    out << value.getText(text, args.has("names")) << "\n";
    return EXIT_OK;
}

int runRender(const Args& args, std::ostream& out) {
    args.expectPositionals(1, SIZE_MAX);
    Catalogue catalogue(args);
    const PropertyOf of = propertyOf(args);
    const BACnet::ValueContainer value = decodeValue(bytesOf(joined(args.positionals())), of);
    renderValue(args, value, of.objectType, of.property, of.arrayIndex, out);
    return EXIT_OK;
}

int runEncode(const Args& args, std::ostream& out) {
    args.expectPositionals(1, 1);
    Catalogue catalogue(args);
    const PropertyOf of = propertyOf(args);
    out << encodedHex(valueFromText(args.positionals()[0], of)) << "\n";
    return EXIT_OK;
}

int runJson(const Args& args, std::ostream& out) {
    args.expectPositionals(1, 1);
    Catalogue catalogue(args);
    out << encodedJsonHex(args.positionals()[0], propertyOf(args)) << "\n";
    return EXIT_OK;
}

int runDb(const Args& args, std::ostream& out) {
    args.expectPositionals(2, 2);
    if (args.positionals()[0] != "init") throw UsageError("unknown db action \"" + args.positionals()[0] + "\"");
    std::vector<std::string> words = {"--db", args.positionals()[1]};
    Catalogue catalogue(Args(words, commonOptions()));
    out << catalogue.location() << (catalogue.created() ? ": created with the catalogue" : ": already there")
        << "\n";
    return EXIT_OK;
}

}  // namespace

std::vector<Command> offlineCommands() {
    std::vector<OptionInfo> textOptions = kPropertyOptions;
    textOptions.push_back({"names", "", "enumerated values by name"});
    std::vector<OptionInfo> renderWith = kPropertyOptions;
    renderWith.insert(renderWith.end(), renderOptions().begin(), renderOptions().end());
    return {
        {"render", "a property value given as bytes (a ReadProperty-ACK's value), rendered as BACnet/WS shows it",
         "--object TYPE --property PROP [--index N] [--alt xml|json|plain] HEX", renderWith,
         "tq-bacnet render --object analog-value --property priority-array --alt json 00 00 00 00 00 00 00 "
         "4441a80000 00 00 00 00 00 00 00 00",
         runRender},
        {"text", "the stored text form of a property value given as bytes", "--object TYPE --property PROP HEX",
         textOptions, "tq-bacnet text --object analog-input --property status-flags 82 04 00", runText},
        {"encode", "the bytes of a property value given in its stored text form",
         "--object TYPE --property PROP TEXT", kPropertyOptions,
         "tq-bacnet encode --object analog-value --property present-value 21.5", runEncode},
        {"json", "the bytes of a property value given as a BACnet/WS JSON body", "--object TYPE --property PROP JSON",
         kPropertyOptions, "tq-bacnet json --object analog-value --property priority-array '{\"8\":{\"real\":21.5}}'",
         runJson},
        {"db", "creates a database file holding the full catalogue", "init PATH", {},
         "tq-bacnet db init /var/lib/tq/bacnet.db", runDb},
    };
}

}  // namespace Apps
}  // namespace TQ
