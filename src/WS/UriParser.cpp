// The path parser: a BACnet/WS request path checked item by item.
#include "TQ_BACnet/WS/UriParser.h"

#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/Entity/BnDataTypeEnum.h"
#include "TQ_BACnet/WS/PathItemNames.h"
#include "UriParserSupport.h"
#include "WsSupport.h"

#include <Poco/Exception.h>

#include <algorithm>
#include <cstring>

namespace TQ {
namespace BACnet {
namespace WS {

namespace {

using PI = PathItemNames;

constexpr std::size_t kItemRoot = 0, kItemTree = 1, kItemScope = 2, kItemDevice = 3, kItemObject = 4,
                      kItemProperty = 5, kItemIndex = 6, kItemBeyond = 7;
constexpr int kMaxTruncateDepth = 5;
constexpr uint32_t kMaxNetwork = 0xFFFF;

}  // namespace

/// The items the parser looks at (the root and the seven after it, the last one only for its
/// text) and how many there are in all: views of the path, which the parser never copies.
struct UriParser::Items {
    static constexpr std::size_t kKept = kItemBeyond + 1;
    std::string_view item[kKept];
    std::size_t count = 0;
    void add(std::string_view text) {
        if (count < kKept) item[count] = text;
        ++count;
    }
};

namespace {

// Splits at `separator`, dropping empty parts and trimming blanks (spaces and tabs) around parts.
// A space or a tab; one comparison for the usual printable character.
inline bool isBlank(char c) {
    return static_cast<unsigned char>(c) <= ' ' && (c == ' ' || c == '\t');
}

template <class Parts>
void split(std::string_view text, char separator, Parts& parts) {
    // A plain scan: path items are a few characters long, too short for a library search to pay.
    const char* const end = text.data() + text.size();
    for (const char* start = text.data();; ++start) {
        const char* stop = start;
        while (stop != end && *stop != separator) ++stop;
        const char* first = start;
        const char* last = stop;
        while (first < last && isBlank(*first)) ++first;
        while (last > first && isBlank(last[-1])) --last;
        if (last > first) parts.add(std::string_view(first, static_cast<std::size_t>(last - first)));
        if (stop == end) return;
        start = stop;
    }
}

// The items the parser compares most.
constexpr std::string_view kBlt = PI::PI_DOT_BLT, kBltd = PI::PI_DOT_BLTD, kBacnet = PI::PI_DOT_BACNET,
                           kRoot = PI::PI_BACNETWS, kLocal = PI::PI_DOT_LOCAL, kDevice = PI::PI_DOT_DEVICE;

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    throw Poco::URISyntaxException("URI encoding: not a hex digit");
}

// Decodes `text` as Poco::URI does ("%41" is "A", "+" stays) into `out`.
void percentDecode(std::string_view text, std::string& out) {
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size();) {
        const std::size_t percent = std::min(text.find('%', i), text.size());
        out.append(text.data() + i, percent - i);
        if (percent == text.size()) break;
        if (percent + 2 >= text.size())
            throw Poco::URISyntaxException("URI encoding: no hex digit following percent sign");
        out += static_cast<char>(hexDigit(text[percent + 1]) << 4 | hexDigit(text[percent + 2]));
        i = percent + 3;
    }
}

// `text` itself when it holds nothing to decode, else its decoding, kept in `storage`.
std::string_view decoded(std::string_view text, std::string& storage) {
    if (text.find('%') == std::string_view::npos) return text;
    percentDecode(text, storage);
    return storage;
}

std::string quoted(std::string_view item) {
    return joined("\"", item, "\"");
}

std::string propertyName(BACNET_PROPERTY_ID property) {
    return Entity::BnDataTypeEnum::getEnumNameById(Entity::BnDataTypeEnum::kPropertyIdentifiers,
                                                   static_cast<unsigned>(property));
}

// Whether the plain format can show the addressed value: one primitive value.
bool plainShows(const DotBACnetPathParams& params) {
    if (params.propertyId == DotBACnetPathParams::NO_PROPERTY_ID) return false;
    DataPropertyInObject0 d;
    if (!DataPropertyInObject0::getValueTypeAndStructure(params.objectId.getObjectType(), params.propertyId,
                                                         d, true))
        return false;
    if (d.tag == BACNET_APPLICATION_TAG_NULL && d.datatype != BACNET_DT_NULL) return false;
    const bool alwaysOne = d.tag != BACNET_APPLICATION_TAG_NULL && d.datatype == WsSupport::kPriorityArray;
    return alwaysOne || d.structure == BACNET_DTS_SINGLE_VALUE ||
           params.arrayIndex != DotBACnetPathParams::NO_ARRAY_INDEX;
}

const char* depthReason(int option, int truncateDepth) {
    if (option < -1) return "Negative values other than -1 (referring to infinite depth) are not permitted";
    if (option == 0)
        return "A zeror value for depth is meaningless, would cause no data returned. Remove parmeter or set "
               "higher value";
    if (truncateDepth != 65535 && truncateDepth > kMaxTruncateDepth)
        return "Currently truncation can be done up to BACnet property level, but not deeper, either specify "
               "a "
               "lower value or remove the parameter";
    return nullptr;
}

}  // namespace

UriParser::UriParser(const std::string& uri) {
    if (uri.size() <= sizeof(_short)) {
        std::memcpy(_short, uri.data(), uri.size());
        _text = std::string_view(_short, uri.size());
    } else {
        _long = uri;
        _text = _long;
    }
    // The usual request target, "/path?query#fragment", without the general URI parser, and
    // without a copy of path or query unless they need decoding.
    const std::string_view text = _text;
    if (!text.empty() && text[0] == '/') {
        const std::size_t end = std::min(text.find('#'), text.size());
        const std::size_t question = std::min(text.find('?'), end);
        _path = decoded(text.substr(0, question), _decoded);
        if (question < end) {
            std::string storage;
            _options.parseOptionsFromQuery(decoded(text.substr(question + 1, end - question - 1), storage));
        }
        return;
    }
    _uri.reset(new Poco::URI(uri));
    _decoded = _uri->getPath();
    _path = _decoded;
    _options.parseOptionsFromQuery(_uri->getQuery());
}

UriParser::UriParser(const Poco::URI& uri) : _decoded(uri.getPath()), _uri(new Poco::URI(uri)) {
    _path = _decoded;
    _options.parseOptionsFromQuery(_uri->getQuery());
}

const Poco::URI& UriParser::getUri() const {
    if (!_uri) _uri.reset(new Poco::URI(std::string(_text)));
    return *_uri;
}

const std::string& UriParser::getPath() const {
    if (_path.data() != _decoded.data()) {
        _decoded.assign(_path.data(), _path.size());
        _path = _decoded;
    }
    return _decoded;
}

bool UriParser::getAndValidatePath(DotBACnetPathParams& params, DataWsError& error) {
    Items items;
    split(_path, '/', items);
    return getAndValidatePath(items, params, error, _options);
}

bool UriParser::validateRequest(const std::string& uri, DotBACnetPathParams& params,
                                DataWsError& error) noexcept {
    try {
        UriParser parser(uri);
        return parser.getAndValidatePath(params, error);
    } catch (const Poco::Exception& e) {
        fail(error, DataWsError::WS_ERR_PARAM_SYNTAX, e.displayText());
    } catch (...) {
        fail(error, DataWsError::WS_ERR_OTHER, "unknown exception");
    }
    return false;
}

bool UriParser::getAndValidatePath(const std::vector<std::string>& items, DotBACnetPathParams& params,
                                   DataWsError& error, MarkupOptions& options) {
    Items views;
    for (const std::string& item : items) views.add(item);
    return getAndValidatePath(views, params, error, options);
}

bool UriParser::getAndValidatePath(const Items& items, DotBACnetPathParams& params, DataWsError& error,
                                   MarkupOptions& options) {
    if (items.count < 2 || items.item[kItemRoot] != kRoot) return false;
    try {
        return validate(items, params, error, options);
    } catch (const Poco::Exception& e) {
        fail(error, DataWsError::WS_ERR_PARAM_SYNTAX, e.displayText());
    } catch (...) {
        fail(error, DataWsError::WS_ERR_OTHER, "unknown exception");
    }
    return false;
}

bool UriParser::validate(const Items& path, DotBACnetPathParams& params, DataWsError& error,
                         MarkupOptions& options) {
    const std::size_t count = path.count;
    const std::string_view* const items = path.item;
    if (!params.setService(options.serviceName)) {
        fail(error, DataWsError::WS_ERR_SERVICE_NOT_SUPPORTED,
             "\"Invalid or not supported service ( parameter \"947-srv\") \"" + options.serviceName +
                 "\" specified");
        return false;
    }

    const std::string_view tree = items[kItemTree];
    if (tree == kBlt || tree == kBltd) {
        Items expanded;
        for (const char* item : {PI::PI_BACNETWS, PI::PI_DOT_BACNET, PI::PI_DOT_LOCAL, PI::PI_DOT_THIS})
            expanded.add(item);
        if (tree == kBltd) expanded.add(kDevice);
        // Items beyond those kept only count: the expansion moves every item further out.
        for (std::size_t i = kItemScope; i < count; ++i) expanded.add(i < Items::kKept ? items[i] : tree);
        return validate(expanded, params, error, options);
    }
    if (tree != kBacnet) {
        fail(error, DataWsError::WS_ERR_PATH_NOT_FOUND, quoted(tree) + " is invalid path item");
        return false;
    }

    if (count > kItemScope) {
        const std::string_view scope = items[kItemScope];
        uint32_t network = 0;
        if (scope != kLocal &&
            (PathNumber::read(scope, network) != PathNumber::Result::Ok || network > kMaxNetwork)) {
            fail(error, DataWsError::WS_ERR_PATH_SYNTAX,
                 "Addressing scope as " + quoted(scope) + " is invalid");
            return false;
        }
        params.scope.assign(scope.data(), scope.size());
    }

    if (count > kItemDevice) params.deviceInstance = getObjInstance(items[kItemDevice], true, error);

    if (count > kItemObject) {
        const std::string_view object = items[kItemObject];
        Items parts;
        split(object, ',', parts);
        if (parts.count == 2) {
            const std::string_view type = parts.item[0] == "trendlog" ? "trend-log" : parts.item[0];
            const BACNET_OBJECT_TYPE objectType = getObjType(type, error);
            params.objectId =
                DataType::ObjectIdentifier(objectType, getObjInstance(parts.item[1], false, error));
        } else if (parts.count == 1 && parts.item[0] == kDevice) {
            params.objectId = DataType::ObjectIdentifier(OBJECT_DEVICE, params.deviceInstance);
        } else {
            fail(error, DataWsError::WS_ERR_PATH_SYNTAX,
                 "object-identifier as " + quoted(object) + " is invalid syntax");
            return false;
        }
    }

    if (count > kItemProperty) {
        const std::string_view property = items[kItemProperty];
        if (property == ".contents") {
            if (params.objectId.getObjectType() == OBJECT_FILE)
                fail(error, DataWsError::WS_ERR_PATH_NOT_FOUND,
                     quoted(property) + " is not supported for objects of type \"file\"");
            else
                fail(error, DataWsError::WS_ERR_NOT_A_FILE,
                     joined("property as path item \"/", property,
                            "\" is only valid with object type \"file\""));
            return false;
        }
        params.propertyId = getPropIdentifier(property, error);
    }

    if (count > kItemIndex) {
        const std::string_view index = items[kItemIndex];
        if (index == ".history" || index == "$history") {
            options.history = true;
            fail(error, DataWsError::WS_ERR_PATH_NOT_FOUND, quoted(index) + " is not supported");
            return false;
        }
        // All ones means "no index" and cannot be asked for.
        if (PathNumber::read(index, params.arrayIndex) != PathNumber::Result::Ok ||
            params.arrayIndex == DotBACnetPathParams::NO_ARRAY_INDEX) {
            params.arrayIndex = DotBACnetPathParams::NO_ARRAY_INDEX;
            fail(error, DataWsError::WS_ERR_PATH_SYNTAX,
                 "array index " + quoted(index) + " is not a positive integer");
            return false;
        }
        DataPropertyInObject0 d;
        const bool known = DataPropertyInObject0::getValueTypeAndStructure(params.objectId.getObjectType(),
                                                                           params.propertyId, d, true);
        if (!known || d.datatype == WsSupport::kPriorityArray || d.structure == BACNET_DTS_ARRAY) {
            if (count > kItemBeyond) {
                fail(error, DataWsError::WS_ERR_PATH_NOT_FOUND,
                     quoted(items[kItemBeyond]) + " and all path items after (if any) are unexpeced");
                return false;
            }
        } else {
            fail(error, DataWsError::WS_ERR_PATH_NOT_FOUND,
                 "property " + quoted(propertyName(params.propertyId)) +
                     " is not an array, therefore array index " + quoted(index) + " is not permitted");
            return false;
        }
    }

    if (options.alt == MarkupOptions::ALT_PLAIN && !plainShows(params)) {
        fail(error, DataWsError::WS_ERR_NOT_REPRESENTABLE,
             "result can not be represented in \"plain\" format");
        return false;
    }

    params.depth = static_cast<int32_t>(count - 1);

    if (const char* reason = depthReason(options.depth, params.getTruncateDepth(options.depth))) {
        fail(error, DataWsError::WS_ERR_RANGE,
             "Options parmeter \"depth\" as " + std::to_string(options.depth) + " is invalid. " + reason);
        return false;
    }

    if (!params.isDepthValidForService()) {
        fail(error, DataWsError::WS_ERR_PATH_NOT_FOUND,
             "The path for service  \"" + params.getServiceName() + "\" is not supported for that service");
        return false;
    }
    return true;
}

}  // namespace WS
}  // namespace BACnet
}  // namespace TQ
