#pragma once

#include "TQ_BACnet/DataType/ObjectIdentifier.h"

#include "tq_stack/enums.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace TQ {
namespace BACnet {
namespace WS {

/// What a BACnet/WS data path addresses (scope, device, object, property, array index) and the
/// BACnet service that carries out the request. Filled step by step by UriParser: after a
/// failure it keeps what the steps before the failure set.
class DotBACnetPathParams {
public:
    /// One service a path may be carried out with, and the path depths it accepts.
    struct ServiceDescriptor {
        /// How the host's HTTP method maps: reading services use 1, writing services 2.
        enum HttpMethod : int { HM_NONE = 0, HM_READ = 1, HM_WRITE = 2 };

        BACNET_SERVICES_SUPPORTED service;
        HttpMethod httpMethod;
        const char* name;
        int32_t minDepth;
        int32_t maxDepth;
    };
    using HttpMethod = ServiceDescriptor::HttpMethod;

    /// The end row of the services table; as a service: none.
    static constexpr BACNET_SERVICES_SUPPORTED NO_SERVICE = static_cast<BACNET_SERVICES_SUPPORTED>(40);
    static constexpr uint32_t NO_INSTANCE = 0xFFFFFFFFu;
    static constexpr BACNET_PROPERTY_ID NO_PROPERTY_ID = static_cast<BACNET_PROPERTY_ID>(0xFFFFFF);
    static constexpr uint32_t NO_ARRAY_INDEX = 0xFFFFFFFFu;
    /// The services a path can be carried out with, ended by a NO_SERVICE row.
    static const ServiceDescriptor _validServices[6];

    /// Poco::InvalidArgumentException when `service` is a service (below NO_SERVICE) that the
    /// table does not offer for `method`.
    DotBACnetPathParams(HttpMethod method, BACNET_SERVICES_SUPPORTED service);

    /// Selects the service called exactly `name` for this method; an empty name keeps the
    /// current one. False, with the service unchanged, when there is none.
    bool setService(std::string_view name);
    const ServiceDescriptor* findValidService() const;
    bool isDepthValidForService() const;
    /// "invalid-service" when the service is not offered for the method.
    std::string getServiceName() const;
    BACNET_SERVICES_SUPPORTED getService(bool* isService = nullptr) const;
    /// The path depth down to which a response is shown for the "depth" option: 65535 (no limit)
    /// for an option below 1, else the option plus the path's depth.
    int getTruncateDepth(int depthOption) const;
    /// The canonical data path without the root item ("/.bacnet/.local/1234/..."), or
    /// "INVALID PATH" for a depth below 1.
    std::string getPath() const;

    int32_t depth = 0;  ///< path items after "bacnetws"
    std::string scope;
    uint32_t deviceInstance = NO_INSTANCE;
    DataType::ObjectIdentifier objectId{static_cast<BACNET_OBJECT_TYPE>(1024), 0};
    BACNET_PROPERTY_ID propertyId = NO_PROPERTY_ID;
    uint32_t arrayIndex = NO_ARRAY_INDEX;
    BACNET_SERVICES_SUPPORTED service;
    HttpMethod httpMethod;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
