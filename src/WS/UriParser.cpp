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

// Splits at `separator`, dropping empty parts and trimming blanks (spaces and tabs) around parts.
void split(const std::string& text, char separator, std::vector<std::string>& parts) {
    const char* const begin = text.data();
    const char* const end = begin + text.size();
    for (const char* start = begin; start <= end;) {
        const void* found = std::memchr(start, separator, static_cast<std::size_t>(end - start));
        const char* stop = found ? static_cast<const char*>(found) : end;
        const char* first = start;
        const char* last = stop;
        while (first < last && (*first == ' ' || *first == '\t')) ++first;
        while (last > first && (last[-1] == ' ' || last[-1] == '\t')) --last;
        if (last > first) parts.emplace_back(first, last);
        start = stop + 1;
    }
}

// The items the parser compares most, as strings: comparing them costs no strlen.
const std::string kBlt = PI::PI_DOT_BLT, kBltd = PI::PI_DOT_BLTD, kBacnet = PI::PI_DOT_BACNET,
                  kRoot = PI::PI_BACNETWS, kLocal = PI::PI_DOT_LOCAL, kDevice = PI::PI_DOT_DEVICE;

int hexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    throw Poco::URISyntaxException("URI encoding: not a hex digit");
}

// Decodes text[first, last) as Poco::URI does ("%41" is "A", "+" stays).
void percentDecode(const std::string& text, std::size_t first, std::size_t last, std::string& out) {
    out.reserve(last - first);
    for (std::size_t i = first; i < last;) {
        const std::size_t percent = std::min(text.find('%', i), last);
        out.append(text, i, percent - i);
        if (percent == last) break;
        if (percent + 2 >= last)
            throw Poco::URISyntaxException("URI encoding: no hex digit following percent sign");
        out += static_cast<char>(hexDigit(text[percent + 1]) << 4 | hexDigit(text[percent + 2]));
        i = percent + 3;
    }
}

std::string quoted(const std::string& item) {
    return "\"" + item + "\"";
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

UriParser::UriParser(const std::string& uri) : _text(uri) {
    // The usual request target, "/path?query#fragment", without the general URI parser.
    if (!uri.empty() && uri[0] == '/') {
        const std::size_t end = std::min(uri.find('#'), uri.size());
        const std::size_t question = std::min(uri.find('?'), end);
        percentDecode(uri, 0, question, _path);
        std::string query;
        if (question < end) percentDecode(uri, question + 1, end, query);
        _options.parseOptionsFromQuery(query);
        return;
    }
    _uri.reset(new Poco::URI(uri));
    _path = _uri->getPath();
    _options.parseOptionsFromQuery(_uri->getQuery());
}

UriParser::UriParser(const Poco::URI& uri)
    : _text(uri.toString()), _path(uri.getPath()), _uri(new Poco::URI(uri)) {
    _options.parseOptionsFromQuery(_uri->getQuery());
}

const Poco::URI& UriParser::getUri() const {
    if (!_uri) _uri.reset(new Poco::URI(_text));
    return *_uri;
}

bool UriParser::getAndValidatePath(DotBACnetPathParams& params, DataWsError& error) {
    std::vector<std::string> items;
    items.reserve(kItemBeyond + 1);
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
    if (items.size() < 2 || items[kItemRoot] != kRoot) return false;
    try {
        return validate(items, params, error, options);
    } catch (const Poco::Exception& e) {
        fail(error, DataWsError::WS_ERR_PARAM_SYNTAX, e.displayText());
    } catch (...) {
        fail(error, DataWsError::WS_ERR_OTHER, "unknown exception");
    }
    return false;
}

bool UriParser::validate(const std::vector<std::string>& items, DotBACnetPathParams& params,
                         DataWsError& error, MarkupOptions& options) {
    const std::size_t count = items.size();
    if (!params.setService(options.serviceName)) {
        fail(error, DataWsError::WS_ERR_SERVICE_NOT_SUPPORTED,
             "\"Invalid or not supported service ( parameter \"947-srv\") \"" + options.serviceName +
                 "\" specified");
        return false;
    }

    const std::string& tree = items[kItemTree];
    if (tree == kBlt || tree == kBltd) {
        std::vector<std::string> expanded{PI::PI_BACNETWS, PI::PI_DOT_BACNET, PI::PI_DOT_LOCAL,
                                          PI::PI_DOT_THIS};
        if (tree == kBltd) expanded.emplace_back(PI::PI_DOT_DEVICE);
        expanded.insert(expanded.end(), items.begin() + kItemScope, items.end());
        return getAndValidatePath(expanded, params, error, options);
    }
    if (tree != kBacnet) {
        fail(error, DataWsError::WS_ERR_PATH_NOT_FOUND, quoted(tree) + " is invalid path item");
        return false;
    }

    if (count > kItemScope) {
        const std::string& scope = items[kItemScope];
        uint32_t network = 0;
        if (scope != kLocal &&
            (PathNumber::read(scope, network) != PathNumber::Result::Ok || network > kMaxNetwork)) {
            fail(error, DataWsError::WS_ERR_PATH_SYNTAX,
                 "Addressing scope as " + quoted(scope) + " is invalid");
            return false;
        }
        params.scope = scope;
    }

    if (count > kItemDevice) params.deviceInstance = getObjInstance(items[kItemDevice], true, error);

    if (count > kItemObject) {
        const std::string& object = items[kItemObject];
        std::vector<std::string> parts;
        parts.reserve(3);
        split(object, ',', parts);
        if (parts.size() == 2) {
            if (parts[0] == "trendlog") parts[0] = "trend-log";
            const BACNET_OBJECT_TYPE type = getObjType(parts[0], error);
            params.objectId = DataType::ObjectIdentifier(type, getObjInstance(parts[1], false, error));
        } else if (parts.size() == 1 && parts[0] == kDevice) {
            params.objectId = DataType::ObjectIdentifier(OBJECT_DEVICE, params.deviceInstance);
        } else {
            fail(error, DataWsError::WS_ERR_PATH_SYNTAX,
                 "object-identifier as " + quoted(object) + " is invalid syntax");
            return false;
        }
    }

    if (count > kItemProperty) {
        const std::string& property = items[kItemProperty];
        if (property == ".contents") {
            if (params.objectId.getObjectType() == OBJECT_FILE)
                fail(error, DataWsError::WS_ERR_PATH_NOT_FOUND,
                     quoted(property) + " is not supported for objects of type \"file\"");
            else
                fail(error, DataWsError::WS_ERR_NOT_A_FILE,
                     "property as path item \"/" + property + "\" is only valid with object type \"file\"");
            return false;
        }
        params.propertyId = getPropIdentifier(property, error);
    }

    if (count > kItemIndex) {
        const std::string& index = items[kItemIndex];
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
