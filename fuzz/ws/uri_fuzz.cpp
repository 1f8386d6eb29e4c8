// Input: byte 0 picks the service and method the parameters are made for; the rest is the
// request URI (path and query). A failure must be a web-service error of the parser's codes, a
// success a consistent set of parameters; nothing may throw.
#include "TQ_BACnet/WS/UriParser.h"
#include "ws_fuzz_catalogue.h"

#include <cstddef>
#include <cstdint>
#include <string>

namespace {

using namespace TQ::BACnet::WS;
using SD = DotBACnetPathParams::ServiceDescriptor;

const SD CHOICES[] = {
    {SERVICE_SUPPORTED_READ_PROP_MULTIPLE, SD::HM_READ, nullptr, 0, 0},
    {SERVICE_SUPPORTED_READ_PROPERTY, SD::HM_READ, nullptr, 0, 0},
    {SERVICE_SUPPORTED_WRITE_PROPERTY, SD::HM_WRITE, nullptr, 0, 0},
    {DotBACnetPathParams::NO_SERVICE, SD::HM_WRITE, nullptr, 0, 0},
};

bool knownCode(int code) {
    for (int known : {0, 3, 8, 27, 39, 49, 50, 52})
        if (code == known) return true;
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    TQFuzz::openCatalogue();
    UriParser::setLocalDevInstance(1234);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 1 || size > 4096) return 0;
    const SD& choice = CHOICES[data[0] % 4];
    const std::string uri(reinterpret_cast<const char*>(data + 1), size - 1);
    DotBACnetPathParams params(choice.httpMethod, choice.service);
    DataWsError error;
    if (!UriParser::validateRequest(uri, params, error)) {
        TQFuzz::check(!error.hasWsError() || knownCode(error.getWsErrorCode()));
        TQFuzz::check(error.hasWsError() || error.getWsErrorText().empty());
        return 0;
    }
    TQFuzz::check(!error.hasWsError());
    TQFuzz::check(params.depth >= 1 && params.depth <= 6 && params.isDepthValidForService());
    TQFuzz::check(params.depth < 3 || params.deviceInstance < 0x400000);
    TQFuzz::check(params.depth < 4 || params.objectId.getObjectType() < 1024);
    TQFuzz::check(params.depth < 5 || params.propertyId < 0xFFFFFF);
    TQFuzz::check(params.getPath().rfind("/.bacnet", 0) == 0);
    return 0;
}
