#include "TQTestCatalogue.h"
#include "TQTestSupport.h"
#include "TQ_BACnet/DataType/BACnetAddress.h"
#include "TQ_BACnet/DataType/BACnetAddressBinding.h"
#include "TQ_BACnet/DataType/BACnetDateTime.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetDeviceObjectReference.h"
#include "TQ_BACnet/DataType/BACnetLogRecord.h"
#include "TQ_BACnet/DataType/BACnetObjectPropertyReference.h"
#include "TQ_BACnet/DataType/BACnetPropertyValue.h"
#include "TQ_BACnet/DataType/BACnetRecipient.h"
#include "TQ_BACnet/DataType/CharacterString.h"
#include "TQ_BACnet/DataType/Date.h"
#include "TQ_BACnet/DataType/Error.h"
#include "TQ_BACnet/DataType/Proprietary/Vendor947/BACnetTrendLogLastUploaded.h"
#include "TQ_BACnet/DataType/ReadAccessResult.h"
#include "TQ_BACnet/DataType/Time.h"
#include "TQ_BACnet/WS/MarkupFactoryMaker.h"
#include "WellFormed.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <sstream>

namespace {

using namespace TQ::BACnet;
using namespace TQ::BACnet::DataType;
using MF = WS::MarkupFactory;
using Render = std::function<void(MF&)>;

const ObjectIdentifier AI3(OBJECT_ANALOG_INPUT, 3);
const ObjectIdentifier DEVICE1234(OBJECT_DEVICE, 1234);

struct Rendered {
    std::string text;
    int lastError;
};

Rendered render(const std::string& format, const Render& write) {
    TQTest::Catalogue::open();
    WS::MarkupOptions options;
    options.parseOptionsFromQuery("alt=" + format);
    std::ostringstream out;
    // Released as a response releases it, also when rendering throws.
    const std::unique_ptr<MF, void (*)(MF*)> f(WS::MarkupFactoryMaker::getMarkupFactoryPointer(options, out, true),
                                               &WS::MarkupFactoryMaker::flushAndDeleteMarkupFactoryPointer);
    // As a response would: the values render inside the document's root.
    f->markup(MF::BT_SEQUENCE, "root", "", false, false, BACNET_DT_NULL, true);
    write(*f);
    f->closeAllOpenMarkups();
    const int lastError = f->getLastErrorCode();
    f->flush();
    return {out.str(), lastError};
}

BACnetAddress ipAddress() {
    const uint8_t mac[] = {0xC0, 0xA8, 0x01, 0x0A, 0xBA, 0xC0};
    BACnetAddress a;
    a.setMAC(mac, sizeof mac);
    return a;
}

BACnetLogRecord logged(void (*fill)(BACnetLogRecord&)) {
    BACnetLogRecord r;
    r.setTimestamp(Poco::Timestamp(1700000000LL * 1000000));
    fill(r);
    return r;
}

template <class T>
Render of(const T& value) {
    return [value](MF& f) { value.markup(f, "v", false); };
}

TEST(DataTypeMarkup, EveryTypeRendersParseableWithItsMemberNames) {
    const struct {
        const char* what;
        Render render;
        std::vector<std::string> inJson;
    } cases[] = {
        {"date", of(Date(BACnet_Date{2024, 3, 7, 4})), {"\"2024-03-07 4\""}},
        {"time", of(Time(BACnet_Time{8, 30, 0, 0})), {"\"08.30.00.00\""}},
        {"string", of(CharacterString("it's \"<ok>\"")), {"<ok>"}},
        {"object", [](MF& f) { AI3.markup(f, "v", false, ""); }, {"\"analog-input,3\""}},
        {"date-time", of(BACnetDateTime(BACnet_Date{2024, 3, 7, 4}, BACnet_Time{12, 0, 0, 0})),
         {"2024-03-07T12:00:00"}},
        {"no moment", of(BACnetDateTime()), {"\"0000-00-00 00.00.00.00\""}},
        {"address", of(ipAddress()), {"network-number", "\"192.168.1.10:47808\""}},
        {"recipient", of(BACnetRecipient(DEVICE1234)), {"\"device\"", "device,1234"}},
        {"recipient address", of(BACnetRecipient()), {"\"address\"", "mac-address"}},
        {"property ref", of(BACnetObjectPropertyReference(AI3, PROP_PRIORITY_ARRAY, 8)),
         {"object-identifier", "\"priority-array\"", "property-array-index"}},
        {"device property ref",
         of(BACnetDeviceObjectPropertyReference(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, DEVICE1234)),
         {"\"present-value\"", "device-identifier", "\"device,1234\""}},
        {"device object ref", of(BACnetDeviceObjectReference(DEVICE1234, AI3)), {"device-identifier", "object-identifier"}},
        {"binding", of(BACnetAddressBinding(DEVICE1234, ipAddress())), {"device-identifier", "device-address"}},
        {"last uploaded",
         of(Proprietary::Vendor947::BACnetTrendLogLastUploaded(DEVICE1234, ObjectIdentifier(OBJECT_TREND_LOG, 1),
                                                              Poco::Timestamp(1700000000LL * 1000000))),
         {"last-uploaded", "\"trend-log,1\""}},
        {"log real", of(logged([](BACnetLogRecord& r) {
             r.setReal(21.5f);
             r.setStatusFlags(0x05);
         })),
         {"timestamp", "log-datum", "real-value", "21.5", "status-flags"}},
        {"log failure", of(logged([](BACnetLogRecord& r) {
             BACnetLogRecord::Datum d;
             d.setError(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY);
             r.setDatum(BACnetLogRecord::FAILURE, d);
         })),
         {"failure", "error-class", "\"unknown-property\""}},
        {"error", of(Error(ERROR_CLASS_PROPERTY, ERROR_CODE_UNKNOWN_PROPERTY)), {"error-code", "\"property\""}},
        {"abort", of(Error(DataError::ABORT_CLASS, static_cast<BACNET_ERROR_CODE>(4))), {"\"segmentation-not-supported\""}},
        {"azure", [](MF& f) {
             BACnetDeviceObjectPropertyReference(AI3, PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, DEVICE1234)
                 .markupForAzure(f, "v");
         },
         {"\"1234;analog-input,3;present-value\""}},
    };
    for (const auto& k : cases) {
        SCOPED_TRACE(k.what);
        const Rendered json = render("json", k.render);
        EXPECT_EQ("", TQWsTest::jsonError(json.text));
        EXPECT_EQ(0, json.lastError) << json.text;
        for (const std::string& expected : k.inJson) EXPECT_NE(std::string::npos, json.text.find(expected)) << json.text;
        const Rendered xml = render("xml", k.render);
        EXPECT_EQ("http://bacnet.org/CSML/1.2", TQWsTest::xmlRootNamespace(xml.text)) << xml.text;
        EXPECT_FALSE(render("plain", k.render).text.empty());
    }
}

TEST(DataTypeMarkup, RecordsOfServicesWriteNothingAndPropertyReferencesRefuse) {
    EXPECT_EQ(render("json", [](MF&) {}).text, render("json", of(ReadAccessResult(AI3))).text);
    EXPECT_THROW(render("json", of(BACnetPropertyReference(PROP_PRESENT_VALUE, BACNET_ARRAY_ALL, 0))),
                 Poco::NotImplementedException);
    EXPECT_THROW(render("json", of(BACnetPropertyValue())), Poco::NotImplementedException);
}

}  // namespace
