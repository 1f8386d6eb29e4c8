// Several threads hammering the catalogue caches at once get the same answers, never lock
// each other out and load each descriptor once.

#include "TestCatalogue.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/Entity/BnDataType.h"
#include "TQ_BACnet/Entity/BnDataTypeConstruct.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/Entity/BnMarkupType.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <future>
#include <thread>
#include <vector>

using namespace TQ::BACnet;
using namespace TQ::BACnet::Entity;

namespace {

// Object type 3 is looked up by this test only, so every one of its pairs starts uncached.
const BACNET_PROPERTY_ID kPairs[] = {PROP_PRESENT_VALUE, PROP_OBJECT_NAME, PROP_DESCRIPTION,
                                     PROP_STATUS_FLAGS, PROP_EVENT_STATE};
constexpr int kThreads = 8;
constexpr int kRounds = 200;

// One round of lookups; the number of answers that differ from the catalogue's.
int oneRound(int round) {
    int wrong = 0;
    BACNET_PROPERTY_ID property = kPairs[round % 5];
    DataPropertyInObject0 descriptor;
    if (!DataPropertyInObject0::getValueTypeAndStructure(static_cast<BACNET_OBJECT_TYPE>(3), property,
                                                         descriptor, false))
        ++wrong;
    static const BACnetDataType expectedTypes[] = {
        BACNET_DT_ENUMERATED, BACNET_DT_CHARACTER_STRING, BACNET_DT_CHARACTER_STRING,
        static_cast<BACnetDataType>(5001), static_cast<BACnetDataType>(5002)};
    if (descriptor.datatype != expectedTypes[round % 5]) ++wrong;

    if (BnDataType::find(static_cast<BACnetDataType>(2700)) != "ThreadedType") ++wrong;
    if (BnDataType::findReverse("ThreadedType") != 2700) ++wrong;
    // A type tree whose member loads a further tree: the recursive lock re-enters.
    const BnDataTypeConstruct* threaded = BnDataTypeConstruct::find(static_cast<BACnetDataType>(2700));
    if (!threaded || threaded->getInternalBDTCs().size() != 1 || !threaded->getInternalBDTCs()[0].pDTC ||
        threaded->getInternalBDTCs()[0].pDTC->getInternalBDTCs().size() != 2)
        ++wrong;
    // Takes the construct lock, releases it and then takes the names lock.
    if (BnDataTypeEnum::getEnumNameByType(BACNET_DT_OBJECT_TYPE, 3) != "binary-input") ++wrong;
    if (BnDataTypeEnum::getEnumValueByType(BACNET_DT_OBJECT_TYPE, "binary-input") != 3u) ++wrong;
    if (BnDataTypeEnum::find(51, 28) != "description") ++wrong;
    if (BnDataTypeEnum::getBitCount(130) != 5) ++wrong;
    if (BnMarkupType::find(8) != "BitString") ++wrong;
    return wrong;
}

}  // namespace

TEST(CatalogueCaches, ManyThreadsGetIdenticalAnswersWithoutDeadlockAndOneQueryPerDescriptor) {
    TQTest::TempDatabase& db = TQTest::TestCatalogue::get();
    std::atomic<bool> go{false};
    std::vector<std::future<int>> workers;
    for (int t = 0; t < kThreads; ++t) {
        workers.push_back(std::async(std::launch::async, [&go, t] {
            while (!go.load()) std::this_thread::yield();
            int wrong = 0;
            for (int round = 0; round < kRounds; ++round) wrong += oneRound(round + t);
            return wrong;
        }));
    }
    go = true;
    for (std::future<int>& worker : workers) {
        if (worker.wait_for(std::chrono::seconds(60)) == std::future_status::timeout) {
            ADD_FAILURE() << "the caches deadlocked";
            std::abort();
        }
        EXPECT_EQ(worker.get(), 0);
    }
    for (BACNET_PROPERTY_ID property : kPairs)
        EXPECT_EQ(db.queries("id_bn_object_type=3 AND id_bn_property_type=" + std::to_string(property)), 1)
            << "property " << property;
    EXPECT_EQ(db.queries("bn_datatype_construct WHERE id_bn_datatype=2700"), 1);
}
