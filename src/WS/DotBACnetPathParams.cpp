#include "TQ_BACnet/WS/DotBACnetPathParams.h"

#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "tq_stack/bactext.h"

#include <Poco/Exception.h>

#include <climits>
#include <cstring>

namespace TQ {
namespace BACnet {
namespace WS {

namespace {

using SD = DotBACnetPathParams::ServiceDescriptor;

constexpr int kNoTruncation = 65535;

}  // namespace

const SD DotBACnetPathParams::_validServices[6] = {
    {SERVICE_SUPPORTED_READ_PROP_MULTIPLE, SD::HM_READ,
     bactext_confirmed_service_name(SERVICE_CONFIRMED_READ_PROP_MULTIPLE), 1, 6},
    {SERVICE_SUPPORTED_READ_PROPERTY, SD::HM_READ,
     bactext_confirmed_service_name(SERVICE_CONFIRMED_READ_PROPERTY), 5, 6},
    {SERVICE_SUPPORTED_GET_EVENT_INFORMATION, SD::HM_READ,
     bactext_confirmed_service_name(SERVICE_CONFIRMED_GET_EVENT_INFORMATION), 1, 4},
    {SERVICE_SUPPORTED_WRITE_PROPERTY, SD::HM_WRITE,
     bactext_confirmed_service_name(SERVICE_CONFIRMED_WRITE_PROPERTY), 5, 6},
    {SERVICE_SUPPORTED_ACKNOWLEDGE_ALARM, SD::HM_WRITE,
     bactext_confirmed_service_name(SERVICE_CONFIRMED_ACKNOWLEDGE_ALARM), 3, 3},
    {DotBACnetPathParams::NO_SERVICE, SD::HM_NONE, "", 0, 0},
};

DotBACnetPathParams::DotBACnetPathParams(HttpMethod method, BACNET_SERVICES_SUPPORTED service_)
    : service(service_), httpMethod(method) {
    if (service < NO_SERVICE && !findValidService())
        throw Poco::InvalidArgumentException(
            "Internal Error: Selected serivice not supported or not valid for selected HTTP method");
}

bool DotBACnetPathParams::setService(std::string_view name) {
    if (name.empty()) return true;
    for (const SD* row = _validServices; row->service != NO_SERVICE; ++row) {
        if (row->httpMethod == httpMethod && name == row->name) {
            service = row->service;
            return true;
        }
    }
    return false;
}

const SD* DotBACnetPathParams::findValidService() const {
    for (const SD* row = _validServices; row->service != NO_SERVICE; ++row)
        if (row->service == service && row->httpMethod == httpMethod) return row;
    return nullptr;
}

bool DotBACnetPathParams::isDepthValidForService() const {
    const SD* row = findValidService();
    return row && row->minDepth <= depth && depth <= row->maxDepth;
}

std::string DotBACnetPathParams::getServiceName() const {
    const SD* row = findValidService();
    return row ? row->name : "invalid-service";
}

BACNET_SERVICES_SUPPORTED DotBACnetPathParams::getService(bool* isService) const {
    if (isService) *isService = service != NO_SERVICE;
    return service;
}

int DotBACnetPathParams::getTruncateDepth(int depthOption) const {
    if (depthOption < 1) return kNoTruncation;
    // A huge option must not overflow: it is refused as too deep all the same.
    const long long sum = static_cast<long long>(depthOption) + depth;
    return sum > INT_MAX ? INT_MAX : static_cast<int>(sum);
}

std::string DotBACnetPathParams::getPath() const {
    if (depth < 1) return "INVALID PATH";
    std::string path = "/.bacnet";
    if (depth > 1) path += "/" + scope;
    if (depth > 2) path += "/" + std::to_string(deviceInstance);
    if (depth > 3) path += objectId.getPath(true);
    if (depth > 4)
        path += "/" + Entity::BnDataTypeEnum::getEnumNameById(Entity::BnDataTypeEnum::kPropertyIdentifiers,
                                                              static_cast<unsigned>(propertyId));
    if (depth > 5) path += "/" + std::to_string(arrayIndex);
    return path;
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
