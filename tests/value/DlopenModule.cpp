// Loaded late by DlopenTest: looks properties up from two threads at once, as a host that
// opens the library with dlopen would.
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQTestCatalogue.h"

#include <atomic>
#include <thread>

namespace BN = TQ::BACnet;

extern "C" int tqWrongLookupsFromTwoThreads(int rounds) {
    TQTest::Catalogue::open();
    std::atomic<int> wrong{0};
    // A REAL present value and the device's object list in turn, so every lookup replaces the
    // thread's last answer.
    auto look = [&wrong, rounds](BACNET_OBJECT_TYPE type) {
        for (int i = 0; i < rounds; ++i) {
            BN::DataPropertyInObject0 out;
            const bool real = i % 2 == 0;
            const bool found = BN::DataPropertyInObject0::getValueTypeAndStructure(
                real ? type : OBJECT_DEVICE, real ? PROP_PRESENT_VALUE : PROP_OBJECT_LIST, out, false);
            const bool right = real ? out.datatype == BN::BACNET_DT_REAL && out.structure == BN::BACNET_DTS_SINGLE_VALUE
                                    : out.datatype == BN::BACNET_DT_OBJECT_ID && out.structure == BN::BACNET_DTS_ARRAY;
            if (!found || !right) ++wrong;
        }
    };
    std::thread a(look, OBJECT_ANALOG_INPUT);
    std::thread b(look, OBJECT_ANALOG_OUTPUT);
    a.join();
    b.join();
    return wrong;
}
