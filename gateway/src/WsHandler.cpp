#include "TQ_BACnet/Gateway/WsHandler.h"

#include "TQ/Utility/OctetBuffer.h"
#include "TQ_BACnet/DataPropertyInObject0.h"
#include "TQ_BACnet/DataType/ReadAccessResult.h"
#include "TQ_BACnet/DataType/ReadAccessSpecification.h"
#include "TQ_BACnet/Entity/BnWsError.h"
#include "TQ_BACnet/Gateway/Gateway.h"
#include "TQ_BACnet/WS/PropertyDocument.h"
#include "TQ_BACnet/WS/DotBACnetPathParams.h"
#include "TQ_BACnet/WS/EncoderJSON.h"
#include "TQ_BACnet/WS/MarkupFactory.h"
#include "TQ_BACnet/WS/MarkupFactoryMaker.h"
#include "TQ_BACnet/WS/UriParser.h"

#include <Poco/Data/DataException.h>
#include <Poco/Net/HTTPServerRequest.h>
#include <Poco/Net/HTTPServerResponse.h>
#include <Poco/StreamCopier.h>
#include <Poco/URI.h>

#include <iostream>
#include <sstream>

namespace TQ {
namespace BACnet {
namespace Gateway {

using DataType::BACnetObjectPropertyReference;
using DataType::BACnetPropertyReference;
using DataType::ObjectIdentifier;
using Net::Outcome;
using Poco::Net::HTTPResponse;
using Poco::Net::HTTPServerRequest;
using Poco::Net::HTTPServerResponse;
using WS::DataWsError;
using WS::DotBACnetPathParams;
using WS::MarkupFactory;
using WS::MarkupOptions;
using namespace Service::ObjectAccess;

namespace {

// Web-service error codes the gateway sets besides those of the path parser.
constexpr DataWsError::WS_ERROR_CODE kNotAuthenticated = 1, kNotAuthorized = 2, kParamValueFormat = 5,
                                     kParamOutOfRange = 6, kDataNotFound = 9, kNotWritable = 15,
                                     kIndexOutOfRange = 14, kNotAnArray = 22, kDeviceNotReachable = 41,
                                     kBacnetError = 43, kBacnetReject = 44, kBacnetAbort = 45, kResources = 47,
                                     kMethodNotAllowed = 51, kNotReady = 38;

// History is read in steps of this many records and merged.
constexpr int32_t kHistoryStep = 50;
constexpr unsigned kObjectsPerRead = 4;

struct Failure {
    DataWsError::WS_ERROR_CODE code;
    std::string text;
    HTTPResponse::HTTPStatus status = HTTPResponse::HTTP_OK;  ///< an HTTP limit: this status instead
};

// The web-service error a device's answer becomes.
Failure failureOf(const Outcome& o) {
    switch (o.kind) {
        case Outcome::Error:
            switch (o.error.getErrorCode()) {
                case ERROR_CODE_UNKNOWN_OBJECT:
                case ERROR_CODE_UNKNOWN_PROPERTY:
                    return {kDataNotFound, o.describe()};
                case ERROR_CODE_WRITE_ACCESS_DENIED:
                    return {kNotWritable, o.describe()};
                case ERROR_CODE_INVALID_DATA_TYPE:
                    return {DataWsError::WS_ERR_VALUE_FORMAT, o.describe()};
                case ERROR_CODE_VALUE_OUT_OF_RANGE:
                    return {DataWsError::WS_ERR_VALUE_OUT_OF_RANGE, o.describe()};
                case ERROR_CODE_INVALID_ARRAY_INDEX:
                    return {kIndexOutOfRange, o.describe()};
                case ERROR_CODE_PROPERTY_IS_NOT_AN_ARRAY:
                    return {kNotAnArray, o.describe()};
                default:
                    return {kBacnetError, o.describe()};
            }
        case Outcome::Reject:
            return {kBacnetReject, o.describe()};
        case Outcome::Abort:
            return {kBacnetAbort, o.describe()};
        case Outcome::Timeout:
            return {kDeviceNotReachable, o.describe()};
        default:
            return {DataWsError::WS_ERR_OTHER, o.describe()};
    }
}

void sendFailure(HTTPServerResponse& response, const Failure& f) {
    std::string name = "WS_ERR_OTHER", text = f.text;
    int status = 500;
    try {
        const Entity::BnWsError& row = Entity::BnWsError::find(f.code);
        name = row.getName();
        status = row.getHttpStatus();
        if (text.empty()) text = row.getErrorText();
    } catch (const Poco::Exception&) {
        // an unknown code: answered as "other"
    }
    if (f.status != HTTPResponse::HTTP_OK) status = f.status;
    if (status == 401) response.set("WWW-Authenticate", "Bearer");
    const std::string body = name + ": " + text + "\n";
    response.setStatusAndReason(HTTPResponse::HTTPStatus(status));
    response.setContentType("text/plain; charset=utf-8");
    response.setContentLength(std::streamsize(body.size()));
    response.send() << body;
}

// A response rendered in full before anything is sent, so that a failure half-way still gets
// its own status.
class Answer {
public:
    explicit Answer(const MarkupOptions& options)
        : _options(options), _factory(WS::MarkupFactoryMaker::getMarkupFactoryPointer(options, _out, true)) {}
    ~Answer() {
        if (_factory) WS::MarkupFactoryMaker::flushAndDeleteMarkupFactoryPointer(_factory);
    }
    MarkupFactory& factory() { return *_factory; }
    void send(HTTPServerResponse& response) {
        _factory->closeAllOpenMarkups();
        WS::MarkupFactoryMaker::flushAndDeleteMarkupFactoryPointer(_factory);
        _factory = nullptr;
        const std::string body = _out.str();
        response.setContentType(std::string(_options.contentType));
        if (_options.compression == 1) response.set("Content-Encoding", "gzip");
        if (_options.compression == 0) response.set("Content-Encoding", "deflate");
        response.setContentLength(std::streamsize(body.size()));
        response.send().write(body.data(), std::streamsize(body.size()));
    }

private:
    const MarkupOptions& _options;
    std::ostringstream _out;
    MarkupFactory* _factory;
};

class Request {
public:
    Request(Gateway& gateway, HTTPServerRequest& request, HTTPServerResponse& response)
        : _gateway(gateway), _request(request), _response(response) {}

    void serve(Tokens::Access access) {
        const bool write = _request.getMethod() == "PUT" || _request.getMethod() == "POST";
        if (!write && _request.getMethod() != "GET" && _request.getMethod() != "HEAD")
            return fail({kMethodNotAllowed, "method " + _request.getMethod() + " is not served"});
        if (access == Tokens::Access::Missing)
            return fail({kNotAuthenticated, "no bearer token (Authorization: Bearer ...)"});
        if (access == Tokens::Access::Unknown) return fail({kNotAuthorized, "the token is not known"});
        if (write && access != Tokens::Access::ReadWrite)
            return fail({kNotAuthorized, "the token may read, not write"});

        std::unique_ptr<WS::UriParser> parser;
        try {
            parser = std::make_unique<WS::UriParser>(_request.getURI());
        } catch (const Poco::Exception& e) {
            return fail({kParamValueFormat, e.displayText()});
        }
        MarkupOptions& options = parser->getOptions();
        DotBACnetPathParams params(write ? DotBACnetPathParams::ServiceDescriptor::HM_WRITE
                                         : DotBACnetPathParams::ServiceDescriptor::HM_READ,
                                   write ? SERVICE_SUPPORTED_WRITE_PROPERTY : SERVICE_SUPPORTED_READ_PROP_MULTIPLE);
        DataWsError error;
        if (!parser->getAndValidatePath(params, error)) {
            if (!write && options.history && params.propertyId != DotBACnetPathParams::NO_PROPERTY_ID)
                return history(params, options);
            if (!error.hasWsError()) return fail({kDataNotFound, "not a BACnet/WS data path"});
            return fail({error.getWsErrorCode(), error.getWsErrorText()});
        }
        if (params.depth >= 3 && !_gateway.knows(params.deviceInstance))
            return fail({kDataNotFound, "device " + std::to_string(params.deviceInstance) +
                                            " is not known to the gateway (not found by Who-Is)"});
        if (write) return put(params, options);
        if (params.depth >= 5) return property(params, options);
        if (params.depth == 4) return object(params, options);
        return tree(params, options);
    }

    void fail(const Failure& f) { sendFailure(_response, f); }

private:
    BACnetObjectPropertyReference reference(const DotBACnetPathParams& params) const {
        return BACnetObjectPropertyReference(params.objectId, params.propertyId, params.arrayIndex);
    }

    void property(const DotBACnetPathParams& params, const MarkupOptions& options) {
        ValueContainer value;
        const Outcome o = _gateway.readProperty(params.deviceInstance, reference(params), value, true);
        if (!o.ok()) return fail(failureOf(o));
        Answer answer(options);
        WS::PropertyDocument::value(answer.factory(), params.objectId.getObjectType(), params.propertyId, params.arrayIndex, value,
                      WS::PropertyDocument::propertyName(params.propertyId), true);
        answer.send(_response);
    }

    // All properties of the objects, a few objects per request; false with the failure sent
    // when the device does not answer at all.
    bool readObjects(uint32_t device, const std::vector<ObjectIdentifier>& ids, ReadPropertyMultipleAck& all,
                     std::vector<DataType::ReadAccessResult>& results) {
        for (std::size_t first = 0; first < ids.size(); first += kObjectsPerRead) {
            ReadPropertyMultiple rpm;
            for (std::size_t i = first; i < std::min(ids.size(), first + kObjectsPerRead); ++i) {
                DataType::ReadAccessSpecification wanted(ids[i]);
                wanted.addPropertyReference(BACnetPropertyReference(PROP_ALL, BACNET_ARRAY_ALL, 0));
                rpm.addRAS(wanted);
            }
            const Outcome o = _gateway.readPropertyMultiple(device, rpm, all);
            if (!o.ok()) {
                fail(failureOf(o));
                return false;
            }
            results.insert(results.end(), all.beginRAR(), all.endRAR());
        }
        return true;
    }

    void object(const DotBACnetPathParams& params, const MarkupOptions& options) {
        ReadPropertyMultipleAck ack;
        std::vector<DataType::ReadAccessResult> results;
        if (!readObjects(params.deviceInstance, {params.objectId}, ack, results)) return;
        Answer answer(options);
        for (const auto& r : results) WS::PropertyDocument::object(answer.factory(), r, options, true);
        answer.send(_response);
    }

    // The device with its objects, or the devices under the scope, as deep as "depth" allows.
    void tree(const DotBACnetPathParams& params, const MarkupOptions& options) {
        if (params.depth >= 2 && params.scope != ".local")
            return fail({kDataNotFound, "network " + params.scope + " is not served; use .local"});
        if (params.depth == 2 && Poco::URI(_request.getURI()).getRawQuery().find("discover=true") !=
                                     std::string::npos) {
            const unsigned failures = _gateway.store().failures();
            _gateway.discover();
            // What was found and not stored would be lost at the next start: the client hears of it.
            if (_gateway.store().failures() != failures)
                return fail({kNotReady, "devices found but not stored: " + _gateway.store().lastError()});
        }
        const int shown = params.getTruncateDepth(options.depth);
        const auto stored = _gateway.store().tree();
        std::vector<uint32_t> devices;
        if (params.depth == 3) {
            devices.push_back(params.deviceInstance);
        } else {
            for (const auto& d : stored) devices.push_back(d.first);
        }
        std::vector<std::pair<uint32_t, std::vector<DataType::ReadAccessResult>>> read;
        for (uint32_t device : devices) {
            read.emplace_back(device, std::vector<DataType::ReadAccessResult>());
            const auto objects = stored.find(device);
            if (shown < 5 || objects == stored.end()) continue;
            ReadPropertyMultipleAck ack;
            if (!readObjects(device, objects->second, ack, read.back().second)) return;
        }
        Answer answer(options);
        MarkupFactory& f = answer.factory();
        if (params.depth == 1) f.markup(MarkupFactory::BT_COLLECTION, ".bacnet", "", false, false, BACNET_DT_NULL, true);
        if (params.depth <= 2)
            f.markup(MarkupFactory::BT_COLLECTION, ".local", "", shown < 3, false, BACNET_DT_NULL, params.depth == 2);
        for (const auto& device : read) {
            if (shown < 3) break;
            f.markup(MarkupFactory::BT_COLLECTION, std::to_string(device.first), "", shown < 4, false, BACNET_DT_NULL,
                     params.depth == 3);
            if (shown < 4) continue;
            const auto objects = stored.find(device.first);
            if (shown >= 5) {
                for (const auto& r : device.second) WS::PropertyDocument::object(f, r, options, false);
            } else if (objects != stored.end()) {
                for (const ObjectIdentifier& id : objects->second)
                    f.markup(MarkupFactory::BT_OBJECT, id.getPath(false), "", true, false, BACNET_DT_NULL, false);
            }
            f.closeOpenMarkup();
        }
        answer.send(_response);
    }

    // The log buffer read by position in steps and merged into one value.
    void history(const DotBACnetPathParams& params, const MarkupOptions& options) {
        if (!_gateway.knows(params.deviceInstance))
            return fail({kDataNotFound, "device " + std::to_string(params.deviceInstance) + " is not known"});
        ValueContainer all;
        unsigned have = 0;
        for (;;) {
            ReadRange::Range range;
            range.requestType = RR_BY_POSITION;
            range.reference.index = have + 1;
            range.count = kHistoryStep;
            ReadRangeAck ack;
            const Outcome o = _gateway.readRange(
                params.deviceInstance,
                ReadRange(BACnetObjectPropertyReference(params.objectId, params.propertyId, BACNET_ARRAY_ALL), range),
                ack);
            if (!o.ok()) return fail(failureOf(o));
            const auto& result = ack.getResult();
            if (result.itemCount == 0) break;
            std::string why;
            if (have == 0) {
                all = result.items;
            } else if (!all.merge(result.items, have, why)) {
                return fail({DataWsError::WS_ERR_OTHER, "history steps do not merge: " + why});
            }
            have += result.itemCount;
            // A device that leaves the more-items flag unset is asked once more when the step came full.
            const bool more = (result.resultFlags & (1u << RESULT_FLAG_MORE_ITEMS)) != 0 ||
                              result.itemCount >= uint32_t(kHistoryStep);
            if (!more || (options.maxResults > 0 && have >= unsigned(options.maxResults))) break;
        }
        Answer answer(options);
        if (have == 0) {
            answer.factory().markup(MarkupFactory::BT_LIST, WS::PropertyDocument::propertyName(params.propertyId), "", true, false,
                                    BACNET_DT_NULL, true);
        } else {
            WS::PropertyDocument::value(answer.factory(), params.objectId.getObjectType(), params.propertyId, BACNET_ARRAY_ALL, all,
                          WS::PropertyDocument::propertyName(params.propertyId), true);
        }
        answer.send(_response);
    }

    void put(const DotBACnetPathParams& params, const MarkupOptions& options) {
        if (options.priority < 1 || options.priority > 16)
            return fail({kParamOutOfRange, "priority " + std::to_string(options.priority) + " is not 1 to 16"});
        std::string body;
        if (!readBody(body)) return;
        DataPropertyInObject0 descriptor;
        DataPropertyInObject0::getValueTypeAndStructure(params.objectId.getObjectType(), params.propertyId, descriptor,
                                                        true);
        if (params.arrayIndex == 0) return fail({kNotWritable, "the size of an array is not written"});
        if (params.arrayIndex != DotBACnetPathParams::NO_ARRAY_INDEX) descriptor.structure = BACNET_DTS_SINGLE_VALUE;
        // The encoder writes into the buffer's room; the size is then cut to what it wrote.
        TQ::Utility::OctetBuffer bytes{std::size_t(ValueContainer::MAX_ENCODED)};
        DataWsError error;
        const int length = WS::EncoderJSON().encode(descriptor, body, bytes, 0, error);
        if (length <= 0) {
            if (!error.hasWsError()) error.setWsError(DataWsError::WS_ERR_BAD_PAYLOAD, "nothing to write");
            return fail({error.getWsErrorCode(), error.getWsErrorText()});
        }
        bytes.resize(std::size_t(length));
        const Outcome o =
            _gateway.writeProperty(params.deviceInstance, reference(params), bytes, uint8_t(options.priority));
        if (!o.ok()) return fail(failureOf(o));
        if (!options.readback) {
            _response.setStatusAndReason(HTTPResponse::HTTP_NO_CONTENT);
            _response.setContentLength(0);
            _response.send();
            return;
        }
        property(params, options);
    }

    bool readBody(std::string& body) {
        const std::size_t limit = _gateway.config().maxBody;
        if (_request.hasContentLength() && std::size_t(_request.getContentLength64()) > limit) {
            fail({kResources, "request body above " + std::to_string(limit) + " bytes",
                  HTTPResponse::HTTP_REQUEST_ENTITY_TOO_LARGE});
            return false;
        }
        body.resize(limit + 1);
        std::istream& in = _request.stream();
        in.read(&body[0], std::streamsize(body.size()));
        body.resize(std::size_t(in.gcount()));
        if (body.size() > limit) {
            fail({kResources, "request body above " + std::to_string(limit) + " bytes",
                  HTTPResponse::HTTP_REQUEST_ENTITY_TOO_LARGE});
            return false;
        }
        return true;
    }

    Gateway& _gateway;
    HTTPServerRequest& _request;
    HTTPServerResponse& _response;
};

}  // namespace

void WsHandler::handleRequest(HTTPServerRequest& request, HTTPServerResponse& response) {
    Request r(_gateway, request, response);
    try {
        const Config& c = _gateway.config();
        if (request.getURI().size() > c.maxPath)
            return r.fail({DataWsError::WS_ERR_PATH_SYNTAX, "path above " + std::to_string(c.maxPath) + " characters",
                           HTTPResponse::HTTP_REQUESTURITOOLONG});
        if (request.size() > c.maxHeaders)
            return r.fail({kResources, "more than " + std::to_string(c.maxHeaders) + " header fields",
                           HTTPResponse::HTTPStatus(431)});
        r.serve(_tokens.check(request.get("Authorization", "")));
    } catch (const Poco::Data::DataException& e) {
        // The database (a catalogue lookup that missed its cache) is away: a temporary state.
        std::cerr << "database: " << request.getURI() << ": " << e.displayText() << std::endl;
        if (!response.sent()) r.fail({kNotReady, "database: " + e.displayText()});
    } catch (const std::exception& e) {
        if (!response.sent()) {
            const auto* poco = dynamic_cast<const Poco::Exception*>(&e);
            r.fail({DataWsError::WS_ERR_OTHER, poco ? poco->displayText() : std::string(e.what())});
        }
    }
}

}  // namespace Gateway
}  // namespace BACnet
}  // namespace TQ
