#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyMultiple.h"

#include "../ServiceSupport.h"
#include "tq_stack/rpm.h"

#include <cstdlib>

namespace TQ {
namespace BACnet {
namespace Service {
namespace ObjectAccess {

int ReadPropertyMultiple::encode(uint8_t invokeId, uint8_t* apdu, int maxApdu) const {
    if (_readAccesses.empty()) return 0;
    BACnet_Read_Access_Data first{};
    BACnet_Read_Access_Data* last = &first;
    int result = -1;
    try {
        for (auto it = _readAccesses.begin(); it != _readAccesses.end(); ++it) {
            if (it != _readAccesses.begin()) {
                auto* record =
                    static_cast<BACnet_Read_Access_Data*>(std::calloc(1, sizeof(BACnet_Read_Access_Data)));
                if (!record) throw std::bad_alloc();
                last->next = record;
                last = record;
            }
            it->get(*last);
        }
        result = rpm_encode_apdu(apdu, static_cast<unsigned>(maxApdu < 0 ? 0 : maxApdu), invokeId, &first);
    } catch (...) {
        DataType::ReadAccessSpecification::freeRAS(first);
        throw;
    }
    DataType::ReadAccessSpecification::freeRAS(first);
    return result;
}

int ReadPropertyMultiple::encode(uint8_t invokeId, TQ::Utility::OctetBuffer& buffer, unsigned offset) const {
    return Detail::encodeAt(buffer, offset, 0, [&](uint8_t* apdu) {
        return encode(invokeId, apdu, static_cast<int>(Detail::APDU_SIZE));
    });
}

int ReadPropertyMultiple::decodeServiceRequest(const uint8_t*, unsigned) {
    return -1;
}

int ReadPropertyMultiple::decode(const uint8_t* apdu, unsigned length, uint8_t& invokeId) {
    const int header =
        Detail::checkRequestHeader(apdu, length, SERVICE_CONFIRMED_READ_PROP_MULTIPLE, invokeId);
    return header < 1 ? header : -1;
}

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
