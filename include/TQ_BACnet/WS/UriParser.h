#pragma once

#include "TQ_BACnet/WS/DataWsError.h"
#include "TQ_BACnet/WS/DotBACnetPathParams.h"
#include "TQ_BACnet/WS/MarkupOptions.h"

#include "tq_stack/enums.h"

#include <Poco/URI.h>

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace TQ {
namespace BACnet {
namespace WS {

/// Reads a BACnet/WS request URI: its query options, and its path as a data path resolved to
/// scope, device, object, property, array index and service, checked against the service, the
/// HTTP method, the output format and the "depth" option. Every rejection leaves a web-service
/// error code and text in a DataWsError; the first code set is kept.
class UriParser {
public:
    /// Both parse the query options: an option that must be a number and is not raises
    /// Poco::SyntaxException, as does a broken percent-encoding. A request target that begins
    /// with "/" is split into path and query here; any other text is read by Poco::URI.
    explicit UriParser(const std::string& uri);
    explicit UriParser(const Poco::URI& uri);
    UriParser(const UriParser&) = delete;
    UriParser& operator=(const UriParser&) = delete;

    /// The gateway's own device instance, for ".device", ".self", ".this" and the shorthands.
    static void setLocalDevInstance(unsigned int instance) { _localDevInstance = instance; }
    static unsigned int getLocalDevInstance() { return _localDevInstance; }

    static bool isPathBACnetRWRequest(std::string_view item);
    static bool isPathBACnetServiceRequest(std::string_view item);
    static bool isPathBACnetRequest(std::string_view item);

    /// The stored URI's path, split at "/" (empty items dropped, blanks trimmed).
    bool getAndValidatePath(DotBACnetPathParams& params, DataWsError& error);
    /// The parser proper. False without touching `error` when the items are no BACnet/WS data
    /// path; false with the error set for a rejected one. Never throws.
    static bool getAndValidatePath(const std::vector<std::string>& items, DotBACnetPathParams& params,
                                   DataWsError& error, MarkupOptions& options);
    /// URI to parameters in one call that never throws: a malformed URI or option is a
    /// web-service error (code 3) too.
    static bool validateRequest(const std::string& uri, DotBACnetPathParams& params,
                                DataWsError& error) noexcept;

    /// Item converters: each sets the error and throws on a bad item.
    static BACNET_OBJECT_TYPE getObjType(std::string_view item, DataWsError& error);
    static unsigned int getObjInstance(std::string_view item, bool isDevice, DataWsError& error);
    static BACNET_PROPERTY_ID getPropIdentifier(std::string_view item, DataWsError& error);

    static std::string getScopeName(unsigned short network);
    static std::string getScopeDisplayName(unsigned short network);

    /// The request URI (made on first use when the parser was given text).
    const Poco::URI& getUri() const;
    /// The decoded path.
    const std::string& getPath() const;
    const MarkupOptions& getOptions() const { return _options; }
    MarkupOptions& getOptions() { return _options; }

private:
    struct Items;

    static bool getAndValidatePath(const Items& items, DotBACnetPathParams& params, DataWsError& error,
                                   MarkupOptions& options);
    static bool validate(const Items& items, DotBACnetPathParams& params, DataWsError& error,
                         MarkupOptions& options);

    /// The request target as given, kept in `_short` when it fits: one per request, and most
    /// are short, so most parsers allocate nothing for it.
    std::string_view _text;
    std::string _long;
    char _short[128];
    /// The decoded path: a view of `_text` when it holds no percent sign, else of `_decoded`.
    mutable std::string_view _path;
    mutable std::string _decoded;
    mutable std::unique_ptr<Poco::URI> _uri;
    MarkupOptions _options;

    static unsigned int _localDevInstance;
};

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
