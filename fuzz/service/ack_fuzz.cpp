// libFuzzer harness of the acknowledgement decoders of ReadProperty (TQ_FUZZ_ACK 0),
// ReadPropertyMultiple (1) and ReadRange (2): whole APDUs from the network decoded into value
// containers, plainly and against a request. Whatever decodes must encode or print without a
// fault; a refused answer must leave the acknowledgement as it was.
#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadProperty.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyAck.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyMultiple.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyMultipleAck.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadRange.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadRangeAck.h"

#include <Poco/Exception.h>
#include <Poco/File.h>
#include <Poco/TemporaryFile.h>

#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

using namespace TQ::BACnet;
using namespace TQ::BACnet::Service::ObjectAccess;

namespace {

void check(bool condition) {
    if (!condition) std::abort();
}

// The text of what was decoded. A date or time with fields out of range (hour 57) does not
// print: that is reported as a Poco exception, which is all that is asked of it here.
void print(const ValueContainer& value) {
    std::string text;
    try {
        value.getText(text, true);
    } catch (const Poco::RangeException&) {
    }
}

// The catalogue types the values: one temporary database for the whole run.
struct Catalogue {
    Catalogue() : file(Poco::TemporaryFile::tempName() + ".db") {
        db = TQ::Utility::Data::openEmbeddedDatabase(file);
        TQ::Utility::Data::pDB = db.get();
    }
    ~Catalogue() {
        TQ::Utility::Data::pDB = nullptr;
        db.reset();
        Poco::File(file).remove();
    }
    std::string file;
    std::unique_ptr<TQ::Utility::Data::SmoDbSession> db;
};

DataType::BACnetObjectPropertyReference ref(BACNET_OBJECT_TYPE type, unsigned instance,
                                            BACNET_PROPERTY_ID property) {
    return DataType::BACnetObjectPropertyReference(DataType::ObjectIdentifier(type, instance), property,
                                                   BACNET_ARRAY_ALL);
}

void readProperty(const uint8_t* data, unsigned size) {
    ReadPropertyAck ack;
    DataError error;
    uint8_t invokeId = 0;
    if (ack.decode(data, size, &invokeId, (size & 1) ? &error : nullptr) >= 0) {
        uint8_t apdu[MAX_APDU];
        ack.encode(invokeId, apdu);
        print(ack.getValue());
    }
    static const ReadProperty asked(ref(OBJECT_ANALOG_INPUT, 3, PROP_PRESENT_VALUE));
    ReadPropertyAck held;
    held.getValue().setUInt(7);
    if (held.decode(asked, data, size, nullptr, &error) < 0) check(held.getValue().getUInt() == 7);
}

void readPropertyMultiple(const uint8_t* data, unsigned size) {
    ReadPropertyMultipleAck ack;
    DataError error;
    if (ack.decode(data, size, nullptr, &error) > 0)
        for (auto result = ack.beginRAR(); result != ack.endRAR(); ++result)
            for (const auto& value : result->getPropertyValues()) print(value.getValue());
    static const ReadPropertyMultiple asked = [] {
        ReadPropertyMultiple request;
        DataType::ReadAccessSpecification readAccess(DataType::ObjectIdentifier(OBJECT_ANALOG_INPUT, 3));
        readAccess.addPropertyReference(
            DataType::BACnetPropertyReference(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 0));
        request.addRAS(readAccess);
        return request;
    }();
    const std::size_t before = ack.sizeRAR();
    if (ack.decode(asked, data, size, nullptr, &error) < 0) check(ack.sizeRAR() == before);
}

void readRange(const uint8_t* data, unsigned size) {
    ReadRangeAck ack;
    DataError error;
    uint8_t invokeId = 0;
    if (ack.decode(data, size, &invokeId, &error) >= 0) {
        uint8_t apdu[MAX_APDU];
        ack.encode(invokeId, apdu);
        print(ack.getResult().items);
    }
    static const ReadRange asked(ref(OBJECT_TREND_LOG, 1, PROP_LOG_BUFFER), ReadRange::Range());
    ReadRangeAck held;
    held.getResult().itemCount = 77;
    if (held.decode(asked, data, size, nullptr, &error) < 0) check(held.getResult().itemCount == 77);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static Catalogue catalogue;
    if (size > 4 * MAX_APDU) return 0;
    // An exact copy, so that a read past the end is seen.
    std::unique_ptr<uint8_t[]> bytes(new uint8_t[size ? size : 1]);
    std::copy(data, data + size, bytes.get());
    const unsigned length = static_cast<unsigned>(size);
    static void (*const decoders[])(const uint8_t*, unsigned) = {readProperty, readPropertyMultiple,
                                                                 readRange};
    decoders[TQ_FUZZ_ACK](bytes.get(), length);
    return 0;
}
