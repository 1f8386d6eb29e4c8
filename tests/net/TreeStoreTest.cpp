// The simulated device backed by the stored tree in an embedded database: its objects are rows,
// and CreateObject/DeleteObject from the network change the rows before the device.
#include "NetTestSupport.h"

#include "TQ/Utility/Data/EmbeddedDatabase.h"
#include "TQ/Utility/Data/SmoDbSession.h"
#include "tq_stack/codec.h"
#include "tq_stack/create_object.h"
#include "tq_stack/strings.h"

#include <Poco/File.h>
#include <Poco/TemporaryFile.h>
#include <gtest/gtest.h>

using namespace tq_net_test;

namespace {

using Bytes = std::vector<uint8_t>;

class StoredTree : public ::testing::Test {
protected:
    void SetUp() override {
        _file = Poco::TemporaryFile::tempName() + ".db";
        _db = TQ::Utility::Data::openEmbeddedDatabase(_file);
        TQ::Utility::Data::pDB = _db.get();
    }
    void TearDown() override {
        TQ::Utility::Data::pDB = nullptr;
        _db.reset();
        Poco::File(_file).remove();
    }
    std::string _file;
    std::unique_ptr<TQ::Utility::Data::SmoDbSession> _db;
};

Bytes withoutHeader(Bytes apdu) {
    apdu.erase(apdu.begin(), apdu.begin() + 4);
    return apdu;
}

TEST_F(StoredTree, DeviceObjectsAreRowsAndCreateDeleteChangeThem) {
    TreeStore store("simulated gateway");
    const uint16_t port = uint16_t(basePort() + 4);
    DeviceThread d("127.0.0.2", port, 7, {}, 0, &store);
    EXPECT_EQ(store.objectCount(), int(d.objects.size()));

    BipSocket socket(portAt("127.0.0.1", port, true));
    Link link(socket, "client");
    Client client(link);
    const BACNET_ADDRESS to = bip("127.0.0.2", port);
    BACNET_CHARACTER_STRING name;
    characterstring_init_ansi(&name, "stored value");
    Bytes value(64);
    value.resize(size_t(encode_application_character_string(value.data(), &name)));
    BACNET_PROPERTY_VALUE_REF initial{PROP_OBJECT_NAME, BACNET_ARRAY_ALL, value.data(), uint32_t(value.size()), 0};
    BACNET_CREATE_OBJECT_DATA create{true, OBJECT_ANALOG_VALUE, 300, &initial, 1, 1};
    Bytes request(128);
    request.resize(size_t(create_object_encode_apdu(request.data(), 0, &create)));
    EXPECT_EQ(client.request(to, SERVICE_CONFIRMED_CREATE_OBJECT, withoutHeader(request)).kind, Result::ComplexAck);
    EXPECT_EQ(store.objectCount(), int(d.objects.size()));

    Bytes del(16);
    del.resize(size_t(delete_object_encode_apdu(del.data(), 0, OBJECT_ANALOG_VALUE, 300)));
    EXPECT_EQ(client.request(to, SERVICE_CONFIRMED_DELETE_OBJECT, withoutHeader(del)).kind, Result::SimpleAck);
    del.resize(16);
    del.resize(size_t(delete_object_encode_apdu(del.data(), 0, OBJECT_ANALOG_INPUT, 1)));
    EXPECT_EQ(client.request(to, SERVICE_CONFIRMED_DELETE_OBJECT, withoutHeader(del)).kind, Result::SimpleAck);
    EXPECT_EQ(store.objectCount(), int(d.objects.size()));
    EXPECT_EQ(d.objects.find(OBJECT_ANALOG_INPUT, 1), nullptr);
}

}  // namespace
