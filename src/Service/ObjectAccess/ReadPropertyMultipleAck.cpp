#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyMultipleAck.h"

#include "../ServiceSupport.h"
#include "TQ_BACnet/Service/ObjectAccess/ReadPropertyMultiple.h"
#include "tq_stack/rpm.h"

namespace TQ {
namespace BACnet {
namespace Service {
namespace ObjectAccess {

namespace {

// Properties that stand for a set of properties: the server answers each of them.
bool standsForSeveral(BACNET_PROPERTY_ID property) {
    return property == PROP_ALL || property == PROP_REQUIRED || property == PROP_OPTIONAL;
}

bool answers(const DataType::ReadAccessSpecification& asked, const DataType::ReadAccessResult& answer) {
    if (asked.getObjectIdentifier() != answer.getObjectIdentifier()) return false;
    const auto& properties = asked.getPropertyReferences();
    for (const auto& property : properties)
        if (standsForSeveral(property.getPropertyIdentifier())) return true;
    const auto& values = answer.getPropertyValues();
    if (values.size() != properties.size()) return false;
    for (std::size_t i = 0; i < values.size(); ++i)
        if (!(static_cast<const DataType::BACnetPropertyReference&>(values[i]) == properties[i]))
            return false;
    return true;
}

}  // namespace

int ReadPropertyMultipleAck::encode(uint8_t, uint8_t*) const {
    return -1;
}

int ReadPropertyMultipleAck::encode(uint8_t, TQ::Utility::OctetBuffer& buffer, unsigned offset) const {
    buffer.resize(offset + Detail::APDU_SIZE);
    return -1;
}

int ReadPropertyMultipleAck::decodeServiceRequest(const uint8_t* request, unsigned length, DataError* error) {
    BACnet_Read_Access_Data first{};
    const int result = rpm_ack_decode_service_request(request, length, &first);
    _results.clear();
    try {
        if (result > 0)
            for (const BACnet_Read_Access_Data* record = &first; record != nullptr; record = record->next) {
                _results.emplace_back();
                _results.back() = *record;
            }
    } catch (...) {
        rpm_ack_free_all(&first);
        throw;
    }
    rpm_ack_free_all(&first);
    return result < 0 ? Detail::malformed(result, error) : result;
}

int ReadPropertyMultipleAck::decode(const uint8_t* apdu, unsigned length, uint8_t* invokeId,
                                    DataError* error) {
    const int header =
        Detail::checkAckHeader(apdu, length, SERVICE_CONFIRMED_READ_PROP_MULTIPLE, invokeId, error);
    return header < 1 ? header : decodeServiceRequest(apdu + 3, length - 3, error);
}

int ReadPropertyMultipleAck::decode(const ReadPropertyMultiple& request, const uint8_t* apdu, unsigned length,
                                    uint8_t* invokeId, DataError* error) {
    const int header =
        Detail::checkAckHeader(apdu, length, SERVICE_CONFIRMED_READ_PROP_MULTIPLE, invokeId, error);
    if (header < 1) return header < 0 ? header : Detail::malformed(-1, error);
    ReadPropertyMultipleAck answer;
    const int result = answer.decodeServiceRequest(apdu + 3, length - 3, error);
    if (result < 0) return result;
    bool matches = answer.sizeRAR() == request.sizeRAS();
    auto asked = request.beginRAS();
    for (auto it = answer.beginRAR(); matches && it != answer.endRAR(); ++it, ++asked)
        matches = answers(*asked, *it);
    if (!matches) {
        if (error) error->setError(ERROR_CLASS_SERVICES, ERROR_CODE_INCONSISTENT_PARAMETERS);
        return -1;
    }
    _results.swap(answer._results);
    return result;
}

}  // namespace ObjectAccess
}  // namespace Service
}  // namespace BACnet
}  // namespace TQ
