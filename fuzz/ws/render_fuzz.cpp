// Input layout: bytes 0 and 1 choose a constructed type of the catalogue, byte 2 the structure
// (single value, array, list) and the metadata categories; the rest is the value's encoding.
// The bytes are decoded with the catalogue's guide and rendered in all three formats, whole and
// in part. Rendering must not fail, and every XML and JSON document must parse.
#include "TQTestCatalogue.h"
#include "TQ_BACnet/DataType/ANY.h"
#include "TQ_BACnet/WS/MarkupFactoryJSON.h"
#include "TQ_BACnet/WS/MarkupFactoryPLAIN.h"
#include "TQ_BACnet/WS/MarkupFactoryXML.h"

#include <Poco/DOM/AutoPtr.h>
#include <Poco/DOM/DOMParser.h>
#include <Poco/DOM/Document.h>
#include <Poco/DOM/Element.h>
#include <Poco/Data/Statement.h>
#include <Poco/JSON/Parser.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <sstream>
#include <vector>

namespace {

using namespace TQ::BACnet;
using MF = WS::MarkupFactory;

const std::vector<int>& constructedTypes() {
    static const std::vector<int> types = [] {
        TQTest::Catalogue::open();
        std::cout.rdbuf(nullptr);  // the renderer's diagnostics are no finding
        std::vector<int> found;
        Poco::Data::Statement select(TQ::Utility::Data::pDB->getSession());
        select << "SELECT id_bn_datatype FROM bn_datatype_construct WHERE id_bn_datatype_construct = id_parent "
                  "AND id_bn_markup IN (22, 24, 25) ORDER BY id_bn_datatype",
            Poco::Data::Keywords::into(found), Poco::Data::Keywords::now;
        found.push_back(2999);  // and one the catalogue does not know
        return found;
    }();
    return types;
}

void check(bool condition) {
    if (!condition) std::abort();
}

void checkDocument(int format, const std::string& text) {
    if (text.empty() || format == 2) return;
    try {
        if (format == 0) {
            Poco::JSON::Parser parser;
            parser.parse(text);
        } else {
            Poco::XML::DOMParser parser;
            parser.setFeature(Poco::XML::XMLReader::FEATURE_NAMESPACES, true);
            Poco::AutoPtr<Poco::XML::Document> document = parser.parseString(text);
            check(document->documentElement()->namespaceURI() == WS::MarkupFactoryXML::_embeddedText);
        }
    } catch (const Poco::Exception&) {
        std::cerr << "not well-formed: " << text << std::endl;
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 3) return 0;
    const std::vector<int>& types = constructedTypes();
    const auto type = static_cast<BACnetDataType>(types[(data[0] << 8 | data[1]) % types.size()]);
    const auto structure = static_cast<BACnetDataTypeStructure>(data[2] % 3);
    const WS::Metadata categories((data[2] & 0x80) ? 1u : 0u);
    const DataPropertyInObject0 descriptor(type, BACNET_APPLICATION_TAG_NULL, structure, false, 0);
    const DataType::ANY value(descriptor, data + 3, static_cast<unsigned>(size - 3));

    for (int format = 0; format < 3; ++format) {
        for (const bool part : {false, true}) {
            std::ostringstream out;
            std::unique_ptr<MF> f;
            if (format == 0) f.reset(new WS::MarkupFactoryJSON(out, false, true, -1));
            if (format == 1) f.reset(new WS::MarkupFactoryXML(out, false, true, -1));
            if (format == 2) f.reset(new WS::MarkupFactoryPLAIN(out, false, true, -1));
            f->setMetaData(categories);
            if (part)
                value.markupTruncated(*f, "v", true, 2, "", "");
            else
                value.markup(*f, "v", false, true, -1);
            f->closeAllOpenMarkups();
            check(f->getOpenMarkupCount() == 0);
            checkDocument(format, out.str());
        }
    }
    return 0;
}
