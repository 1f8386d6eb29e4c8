// Commands that talk to devices over BACnet/IP: discovery, reads, writes, trend logs, time.
#include "Catalogue.h"
#include "Commands.h"
#include "Network.h"
#include "Render.h"
#include "Values.h"

#include "TQ_BACnet/DataType/BACnetPropertyReference.h"
#include "TQ_BACnet/DataType/ReadAccessResult.h"
#include "TQ_BACnet/DataType/ReadAccessSpecification.h"
#include "TQ_BACnet/Entity/BnDataType.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/Net/DeviceStore.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyMultiple.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyMultipleAck.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadRange.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadRangeAck.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "TQ_BACnet/WS/MarkupOptions.h"
#include "TQ_BACnet/WS/PropertyDocument.h"

#include <Poco/DateTime.h>
#include <Poco/DateTimeParser.h>
#include <Poco/Exception.h>
#include <Poco/Timestamp.h>

#include <unistd.h>

#include <atomic>
#include <chrono>
#include <iostream>
#include <thread>

namespace TQ {
namespace Apps {

namespace {

using namespace BACnet::Net;
using BACnet::DataType::BACnetObjectPropertyReference;
using BACnet::DataType::ObjectIdentifier;
using BACnet::WS::MarkupFactory;
namespace OA = BACnet::Service::ObjectAccess;

BACnetObjectPropertyReference referenceOf(const ObjectId& object, BACNET_PROPERTY_ID property, int index) {
    return BACnetObjectPropertyReference(ObjectIdentifier(object.type, object.instance), property,
                                         index < 0 ? BACNET_ARRAY_ALL : static_cast<unsigned>(index));
}

int indexArgument(const Args& args, size_t position) {
    if (args.positionals().size() <= position) return static_cast<int>(args.getNumber("index", -1, 0, 0xFFFFFFFEL));
    return static_cast<int>(parseNumber(args.positionals()[position], 0, 0xFFFFFFFEL, "array index"));
}

/// Shows, while a Who-Is waits and standard error is a terminal, how long is left.
class Progress {
public:
    explicit Progress(unsigned totalMs) : _active(isatty(STDERR_FILENO) == 1 && totalMs > 0) {
        if (_active) _thread = std::thread([this, totalMs] { run(totalMs); });
    }
    ~Progress() {
        _done = true;
        if (_thread.joinable()) _thread.join();
        if (_active) std::cerr << "\r\033[K" << std::flush;
    }

private:
    void run(unsigned totalMs) {
        const auto start = std::chrono::steady_clock::now();
        while (!_done) {
            const auto waited = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
            const long left = (static_cast<long>(totalMs) - waited.count() + 999) / 1000;
            std::cerr << "\rwaiting for devices to answer Who-Is: " << (left > 0 ? left : 0) << " s " << std::flush;
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
        }
    }
    bool _active;
    std::atomic<bool> _done{false};
    std::thread _thread;
};

std::string segmentationName(int segmentation) {
    const auto type = BACnet::Entity::BnDataType::findReverse("BACnetSegmentation");
    const std::string name = BACnet::Entity::BnDataTypeEnum::getEnumNameByType(type, static_cast<unsigned>(segmentation));
    return name.empty() ? std::to_string(segmentation) : name;
}

int runWhois(const Args& args, std::ostream& out) {
    args.expectPositionals(0, 2);
    if (args.positionals().size() == 1) throw UsageError("give both limits LOW HIGH, or none");
    Catalogue catalogue(args);
    const bool limited = args.positionals().size() == 2;
    const auto low = limited ? static_cast<int32_t>(parseNumber(args.positionals()[0], 0, 4194303, "LOW")) : -1;
    const auto high = limited ? static_cast<int32_t>(parseNumber(args.positionals()[1], 0, 4194303, "HIGH")) : -1;
    if (low > high) throw UsageError("LOW must not be above HIGH");
    Network network(args);
    std::vector<IAm> devices;
    {
        Progress progress(network.waitMs());
        devices = network.operations().whoIs(network.waitMs(), low, high);
    }
    std::sort(devices.begin(), devices.end(),
              [](const IAm& a, const IAm& b) { return a.deviceInstance < b.deviceInstance; });
    writeDocument(args, out, false, [&](MarkupFactory& factory) {
        factory.markup(MarkupFactory::BT_LIST, "devices", "", false, false, BACnet::BACNET_DT_NULL, true);
        for (const IAm& device : devices) {
            factory.markup(MarkupFactory::BT_SEQUENCE, std::to_string(device.deviceInstance), "", false, false,
                           BACnet::BACNET_DT_NULL, false);
            const auto field = [&factory](MarkupFactory::BaseType type, const std::string& name, const std::string& value) {
                factory.markup(type, name, value, true, false, BACnet::BACNET_DT_NULL, false);
            };
            field(MarkupFactory::BT_STRING, "address", addressText(device.address));
            field(MarkupFactory::BT_UNSIGNED, "vendor-identifier", std::to_string(device.vendorId));
            field(MarkupFactory::BT_UNSIGNED, "max-apdu-length-accepted", std::to_string(device.maxApdu));
            field(MarkupFactory::BT_ENUMERATED, "segmentation-supported", segmentationName(device.segmentation));
            factory.closeOpenMarkup();
        }
        return true;
    });
    return EXIT_OK;
}

int runRead(const Args& args, std::ostream& out) {
    args.expectPositionals(3, 4);
    Catalogue catalogue(args);
    const Target device = parseDevice(args.positionals()[0]);
    const ObjectId object = parseObjectId(args.positionals()[1]);
    const BACNET_PROPERTY_ID property = parseProperty(args.positionals()[2]);
    const int index = indexArgument(args, 3);
    Network network(args);
    network.bind(device);
    BACnet::ValueContainer value;
    check(network.operations().readProperty(device, referenceOf(object, property, index), value),
          "reading " + propertyName(property));
    renderValue(args, value, object.type, property, index, out);
    return EXIT_OK;
}

/// OBJECT PROPERTY... [OBJECT PROPERTY...]: a word with a comma starts the next object.
OA::ReadPropertyMultiple multipleRequest(const std::vector<std::string>& words) {
    OA::ReadPropertyMultiple request;
    BACnet::DataType::ReadAccessSpecification current;
    bool open = false;
    for (size_t i = 1; i < words.size(); ++i) {
        if (words[i].find_first_of(",:") != std::string::npos) {
            if (open && current.getPropertyReferences().empty()) throw UsageError("no property for " + words[i - 1]);
            if (open) request.addRAS(current);
            const ObjectId object = parseObjectId(words[i]);
            current = BACnet::DataType::ReadAccessSpecification(ObjectIdentifier(object.type, object.instance));
            open = true;
        } else {
            if (!open) throw UsageError("an OBJECT (TYPE,INSTANCE) comes before its properties");
            current.addPropertyReference(
                BACnet::DataType::BACnetPropertyReference(parseProperty(words[i]), BACNET_ARRAY_ALL, 0));
        }
    }
    if (!open || current.getPropertyReferences().empty()) throw UsageError("missing a property");
    request.addRAS(current);
    return request;
}

int runReadMultiple(const Args& args, std::ostream& out) {
    args.expectPositionals(3, SIZE_MAX);
    Catalogue catalogue(args);
    const Target device = parseDevice(args.positionals()[0]);
    const OA::ReadPropertyMultiple request = multipleRequest(args.positionals());
    Network network(args);
    OA::ReadPropertyMultipleAck ack;
    network.bind(device);
    check(network.operations().readPropertyMultiple(device, request, ack), "reading the properties");
    BACnet::WS::MarkupOptions options;
    writeDocument(args, out, false, [&](MarkupFactory& factory) {
        factory.markup(MarkupFactory::BT_LIST, "objects", "", false, false, BACnet::BACNET_DT_NULL, true);
        for (auto result = ack.beginRAR(); result != ack.endRAR(); ++result) {
            BACnet::WS::PropertyDocument::object(factory, *result, options, false);
        }
        return true;
    });
    return EXIT_OK;
}

/// VALUE as a BACnet/WS JSON body (an object, array or quoted text) or in the stored text form.
Utility::OctetBuffer valueBytes(const std::string& text, const PropertyOf& of) {
    const size_t first = text.find_first_not_of(" \t");
    const bool json = first != std::string::npos && (text[first] == '{' || text[first] == '[' || text[first] == '"');
    return bytesOf(json ? encodedJsonHex(text, of) : encodedHex(valueFromText(text, of)));
}

int runWrite(const Args& args, std::ostream& out) {
    args.expectPositionals(4, 4);
    Catalogue catalogue(args);
    const Target device = parseDevice(args.positionals()[0]);
    const ObjectId object = parseObjectId(args.positionals()[1]);
    const PropertyOf of{object.type, parseProperty(args.positionals()[2]), indexArgument(args, 99)};
    const auto priority = static_cast<uint8_t>(args.getNumber("priority", 0, 1, 16));
    const Utility::OctetBuffer bytes = valueBytes(args.positionals()[3], of);
    Network network(args);
    network.bind(device);
    check(network.operations().writeProperty(device, referenceOf(object, of.property, of.arrayIndex), bytes, priority),
          "writing " + propertyName(of.property));
    out << "written: " << propertyName(of.property) << " of " << objectTypeName(object.type) << "," << object.instance
        << (priority ? " at priority " + std::to_string(priority) : "") << "\n";
    return EXIT_OK;
}

BACNET_DATE_TIME dateTimeOf(const std::string& text) {
    Poco::DateTime moment;
    int zone = 0;
    if (!Poco::DateTimeParser::tryParse(text, moment, zone)) {
        throw UsageError("--time is a date and time such as 2026-11-23T08:00:00, not \"" + text + "\"");
    }
    BACNET_DATE_TIME out{};
    out.date.year = static_cast<uint16_t>(moment.year());
    out.date.month = static_cast<uint8_t>(moment.month());
    out.date.day = static_cast<uint8_t>(moment.day());
    out.date.wday = static_cast<uint8_t>(moment.dayOfWeek() == 0 ? 7 : moment.dayOfWeek());
    out.time.hour = static_cast<uint8_t>(moment.hour());
    out.time.min = static_cast<uint8_t>(moment.minute());
    out.time.sec = static_cast<uint8_t>(moment.second());
    return out;
}

int runReadRange(const Args& args, std::ostream& out) {
    args.expectPositionals(2, 2);
    Catalogue catalogue(args);
    const Target device = parseDevice(args.positionals()[0]);
    const ObjectId object = parseObjectId(args.positionals()[1]);
    const BACNET_PROPERTY_ID property = parseProperty(args.get("property", "log-buffer"));
    OA::ReadRange::Range range;
    if (args.has("position") + args.has("time") + args.has("sequence") > 1) {
        throw UsageError("choose one of --position, --sequence and --time");
    }
    range.count = static_cast<int32_t>(args.getNumber("count", 10, -32768, 32767));
    if (args.has("time")) {
        range.requestType = RR_BY_TIME;
        range.reference.time = dateTimeOf(args.get("time"));
    } else if (args.has("sequence")) {
        range.requestType = RR_BY_SEQUENCE;
        range.reference.index = static_cast<uint32_t>(args.getNumber("sequence", 1, 0, 0xFFFFFFFFL));
    } else {
        range.requestType = RR_BY_POSITION;
        range.reference.index = static_cast<uint32_t>(args.getNumber("position", 1, 1, 0xFFFFFFFFL));
    }
    Network network(args);
    OA::ReadRangeAck ack;
    const OA::ReadRange request(referenceOf(object, property, -1), range);
    network.bind(device);
    check(network.operations().readRange(device, request, ack), "reading the range");
    renderValue(args, ack.getResult().items, object.type, property, -1, out);
    return EXIT_OK;
}

int runTimeSync(const Args& args, std::ostream& out) {
    args.expectPositionals(0, 1);
    if (args.positionals().empty() != args.has("broadcast")) throw UsageError("give a DEVICE or --broadcast, not both");
    Catalogue catalogue(args);
    Network network(args);
    const bool utc = args.has("utc");
    if (args.has("broadcast")) {
        check(network.operations().timeSync(nullptr, Poco::Timestamp(), utc), "synchronising time");
    } else {
        const Target device = parseDevice(args.positionals()[0]);
        network.bind(device);
        check(network.operations().timeSync(&device, Poco::Timestamp(), utc), "synchronising time");
    }
    out << (utc ? "UTC time" : "time") << " sent\n";
    return EXIT_OK;
}

/// The instance of the device at a target: given, or read from its device object (any device
/// answers to the wildcard instance).
uint32_t instanceOf(Network& network, const Target& device) {
    if (!device.byAddress) return device.instance;
    constexpr unsigned kWildcardInstance = 4194303;
    BACnet::ValueContainer id;
    check(network.operations().readProperty(
              device, referenceOf({OBJECT_DEVICE, kWildcardInstance}, PROP_OBJECT_IDENTIFIER, -1), id),
          "reading the device's identifier");
    return id.getObjectIdentifier().getInstance();
}

int runDiscover(const Args& args, std::ostream& out) {
    args.expectPositionals(1, 1);
    Catalogue catalogue(args);
    const Target device = parseDevice(args.positionals()[0]);
    Network network(args);
    network.bind(device);
    const uint32_t instance = instanceOf(network, device);
    std::vector<FoundObject> objects;
    check(network.operations().readObjects(device, instance, {PROP_OBJECT_NAME, PROP_PRESENT_VALUE}, objects),
          "reading the object list");
    if (args.has("store")) {
        const int key = DeviceStore::storeDevice(catalogue.session(), instance, objects);
        std::cerr << "stored device " << instance << " with " << objects.size() << " objects in "
                  << catalogue.location() << " (device key " << key << ")\n";
    }
    writeDocument(args, out, false, [&](MarkupFactory& factory) {
        factory.markup(MarkupFactory::BT_LIST, "objects", "", false, false, BACnet::BACNET_DT_NULL, true);
        for (const FoundObject& found : objects) {
            const auto type = found.id.getObjectType();
            factory.markup(MarkupFactory::BT_OBJECT, found.id.getPath(false), "", false, false, BACnet::BACNET_DT_NULL,
                           false);
            factory.markup(MarkupFactory::BT_ENUMERATED, "object-type", objectTypeName(type), true, false,
                           BACnet::BACNET_DT_NULL, false);
            for (const auto& value : found.values) {
                BACnet::WS::PropertyDocument::value(factory, type, value.first, BACNET_ARRAY_ALL, value.second,
                                                    propertyName(value.first), false);
            }
            factory.closeOpenMarkup();
        }
        return true;
    });
    return EXIT_OK;
}

const std::vector<OptionInfo> kNetworkOptions = {
    {"interface", "NAME|ADDRESS", "the interface or address to use (default: the first that is up)"},
    {"port", "UDP", "the local UDP port (default 47808)"},
    {"broadcast", "ADDRESS", "the broadcast address (default: the interface's)"},
    {"bbmd", "HOST:PORT", "register as a foreign device with this BBMD"},
    {"ttl", "S", "time-to-live of the registration (default 60)"},
    {"timeout", "S", "seconds to wait for each answer (default 3)"},
    {"retries", "N", "times a request is sent again (default 3)"},
};

std::vector<OptionInfo> with(std::vector<OptionInfo> own, bool rendered) {
    own.insert(own.end(), kNetworkOptions.begin(), kNetworkOptions.end());
    if (rendered) own.insert(own.end(), renderOptions().begin(), renderOptions().end());
    return own;
}

}  // namespace

const std::vector<OptionInfo>& networkOptions() { return kNetworkOptions; }

std::vector<Command> networkCommands() {
    return {
        {"whois", "the devices that answer Who-Is, with address, vendor, max-APDU and segmentation",
         "[LOW HIGH] [--wait S]", with({{"wait", "S", "seconds to collect answers (default 3)"}}, true),
         "tq-bacnet whois --interface 127.0.0.1 --alt json", runWhois},
        {"read", "one property of one object of a device", "DEVICE OBJECT PROPERTY [INDEX]", with({}, true),
         "tq-bacnet read 1234 analog-input,1 present-value --alt json", runRead},
        {"readm", "several properties of several objects in one request",
         "DEVICE OBJECT PROPERTY... [OBJECT PROPERTY...]", with({}, true),
         "tq-bacnet readm 1234 analog-input,1 present-value status-flags binary-value,2 present-value --alt json",
         runReadMultiple},
        {"write", "writes a property: VALUE in its text form or as BACnet/WS JSON", "DEVICE OBJECT PROPERTY VALUE",
         with({{"priority", "P", "command priority 1..16"}, {"index", "N", "array element to write"}}, false),
         "tq-bacnet write 1234 analog-value,1 present-value 21.5 --priority 8", runWrite},
        {"readrange", "items of a list property, a trend log's buffer by default", "DEVICE OBJECT",
         with({{"property", "PROP", "the list property (default log-buffer)"},
               {"position", "I", "from this position (the default, from 1)"},
               {"sequence", "N", "from this sequence number"},
               {"time", "T", "from this time (2026-11-23T08:00:00)"},
               {"count", "N", "items to read, negative backwards (default 10)"}},
              true),
         "tq-bacnet readrange 1234 trend-log,1 --count 5 --alt json", runReadRange},
        {"discover", "the objects of a device with name, type and present value; --store keeps them in the tree",
         "DEVICE [--store]", with({{"store", "", "store the device and its objects in the database"}}, true),
         "tq-bacnet discover 1234 --store --alt json", runDiscover},
        {"timesync", "sends the time to a device or to all", "DEVICE | --broadcast",
         with({{"utc", "", "UTC time synchronisation"}, {"broadcast", "", "to every device on the network"}}, false),
         "tq-bacnet timesync 1234 --utc", runTimeSync},
    };
}

}  // namespace Apps
}  // namespace TQ
