// The simulated device backed by the stored tree in an embedded database: its objects are rows,
// and CreateObject/DeleteObject from the network change the rows before the device.
#include "NetTestSupport.h"

#include "TQTestCatalogue.h"
#include "TQTestCodec.h"
#include "tq_stack/codec.h"
#include "tq_stack/create_object.h"
#include "tq_stack/strings.h"

#include <gtest/gtest.h>

using namespace tq_net_test;

namespace {

using TQTest::Bytes;
using TQTest::requestOf;

TEST(StoredTree, DeviceObjectsAreRowsAndCreateDeleteChangeThem) {
    TQTest::TempDatabase db;
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
    const Bytes value = TQTest::encodedBy([&](uint8_t* p) { return encode_application_character_string(p, &name); });
    BACNET_PROPERTY_VALUE_REF initial{PROP_OBJECT_NAME, BACNET_ARRAY_ALL, value.data(), uint32_t(value.size()), 0};
    BACNET_CREATE_OBJECT_DATA create{true, OBJECT_ANALOG_VALUE, 300, &initial, 1, 1};
    EXPECT_EQ(client.request(to, SERVICE_CONFIRMED_CREATE_OBJECT,
                             requestOf([&](uint8_t* p) { return create_object_encode_apdu(p, 0, &create); }))
                  .kind,
              Result::ComplexAck);
    EXPECT_EQ(store.objectCount(), int(d.objects.size()));

    const auto del = [&](BACNET_OBJECT_TYPE type, uint32_t instance) {
        return client.request(to, SERVICE_CONFIRMED_DELETE_OBJECT,
                              requestOf([&](uint8_t* p) { return delete_object_encode_apdu(p, 0, type, instance); }));
    };
    EXPECT_EQ(del(OBJECT_ANALOG_VALUE, 300).kind, Result::SimpleAck);
    EXPECT_EQ(del(OBJECT_ANALOG_INPUT, 1).kind, Result::SimpleAck);
    EXPECT_EQ(store.objectCount(), int(d.objects.size()));
    EXPECT_EQ(d.objects.find(OBJECT_ANALOG_INPUT, 1), nullptr);
}

}  // namespace
