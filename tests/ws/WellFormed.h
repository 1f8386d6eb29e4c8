#pragma once

// Checks that rendered text is what a client's parser accepts: JSON through Poco's JSON parser,
// XML through Poco's DOM parser (with the root's namespace), compressed bodies inflated.

#include <Poco/DOM/AutoPtr.h>
#include <Poco/DOM/DOMParser.h>
#include <Poco/DOM/Document.h>
#include <Poco/DOM/Element.h>
#include <Poco/Exception.h>
#include <Poco/InflatingStream.h>
#include <Poco/JSON/Parser.h>
#include <Poco/SAX/InputSource.h>
#include <Poco/StreamCopier.h>

#include <sstream>
#include <string>

namespace TQWsTest {

/// Empty when `text` is one JSON value, else the parser's complaint.
inline std::string jsonError(const std::string& text) {
    try {
        Poco::JSON::Parser parser;
        parser.parse(text);
        return std::string();
    } catch (const Poco::Exception& e) {
        return e.displayText() + " in " + text;
    }
}

/// The namespace of the root element, or "!" and the parser's complaint when `text` is no
/// well-formed document.
inline std::string xmlRootNamespace(const std::string& text) {
    try {
        Poco::XML::DOMParser parser;
        parser.setFeature(Poco::XML::XMLReader::FEATURE_NAMESPACES, true);
        Poco::AutoPtr<Poco::XML::Document> document = parser.parseString(text);
        return document->documentElement()->namespaceURI();
    } catch (const Poco::Exception& e) {
        return "!" + e.displayText() + " in " + text;
    }
}

inline std::string inflate(const std::string& bytes, Poco::InflatingStreamBuf::StreamType type) {
    std::istringstream in(bytes);
    Poco::InflatingInputStream inflater(in, type);
    std::string text;
    Poco::StreamCopier::copyToString(inflater, text);
    return text;
}

}  // namespace TQWsTest
