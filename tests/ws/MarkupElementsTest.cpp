// The writers' short form of an array's elements must write what the one-markup-per-value way
// writes, byte for byte, whatever the values, the writer and its settings.
#include "TQTestCatalogue.h"
#include "TQ_BACnet/DataApplicationValue.h"
#include "TQ_BACnet/WS/MarkupFactoryJSON.h"
#include "TQ_BACnet/WS/MarkupFactoryMaker.h"

#include <Poco/Exception.h>
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

using namespace TQ::BACnet;
using MF = WS::MarkupFactory;

namespace {

using Values = std::vector<DataApplicationValue>;

DataApplicationValue real(float v) {
    DataApplicationValue value;
    value.setReal(v);
    return value;
}

// The general way: the value's text, then one markup.
void general(MF& f, const DataApplicationValue& value, const std::string& name) {
    bool ok = false;
    std::string text;
    try {
        text = value.getText(false, BACNET_DT_REAL, &ok, nullptr, true);
    } catch (const Poco::Exception&) {
    }
    const auto type = static_cast<MF::BaseType>(value.isNull() ? 0u : unsigned(value.tag));
    f.markupValue(type, name, ok ? text : "???", false, false, value.getContextTagAsString());
}

enum Way { GENERAL, VALUE, ELEMENTS };

// Opens the array (after a sibling, or under an array marker of another kind, when asked),
// writes the elements one of the ways and closes everything.
std::string render(const std::string& query, const Values& values, Way way, int before, bool oddNames) {
    WS::MarkupOptions options;
    options.parseOptionsFromQuery(query);
    std::ostringstream out;
    MF* f = WS::MarkupFactoryMaker::getMarkupFactoryPointer(options, out, false);
    f->markupOpen(MF::BT_SEQUENCE, "x", false, true);
    if (before == 1) f->markupValue(MF::BT_UNSIGNED, "first", "7", false, false, "");
    if (before == 2) f->markupValue(MF::BT_STRING, "marked", "s", true, false, "");
    f->markupOpen(MF::BT_ARRAY, "present-value", false, false);
    if (way == ELEMENTS) f->markupElements(values.data(), values.size(), BACNET_DT_REAL, true);
    for (std::size_t i = 0; way != ELEMENTS && i < values.size(); ++i) {
        // Member names that need escaping take the general way too.
        const std::string name = oddNames && i % 3 == 2 ? "a\"b" : std::to_string(i + 1);
        if (way == GENERAL)
            general(*f, values[i], name);
        else
            values[i].markup(*f, name, false, BACNET_DT_REAL, false, -1, true);
    }
    const std::size_t markups = f->getMarkupCount();
    f->closeAllOpenMarkups();
    WS::MarkupFactoryMaker::flushAndDeleteMarkupFactoryPointer(f);
    return std::to_string(markups) + ' ' + out.str();
}

}  // namespace

TEST(MarkupElements, WriteWhatOneMarkupPerValueWrites) {
    TQTest::Catalogue::open();  // metadata names come from it
    Values numbers;
    for (float v : {20.0f, 20.1f, -21.5f, 0.0f, -0.0f, 1e-3f, 0.05f, 1234567.0f, 1e7f, 3e-12f, 1.5e30f,
                    std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()})
        numbers.push_back(real(v));
    numbers.emplace_back(BACNET_APPLICATION_TAG_UNSIGNED_INT, true);
    numbers.back().setUInt(4294967295u);
    numbers.emplace_back(BACNET_APPLICATION_TAG_SIGNED_INT, true);
    numbers.back().setInt(-2147483647 - 1);
    numbers.emplace_back(BACNET_APPLICATION_TAG_BOOLEAN, true);
    numbers.emplace_back(BACNET_APPLICATION_TAG_DOUBLE, true);
    numbers.back().setDouble(-2.2250738585072014e-308);
    numbers.emplace_back(BACNET_APPLICATION_TAG_REAL, false);  // a null REAL
    numbers.emplace_back(BACNET_APPLICATION_TAG_ENUMERATED, true);
    numbers.emplace_back(BACNET_APPLICATION_TAG_CHARACTER_STRING, true);
    numbers.back().setCharString("say \"hi\"\n");
    numbers.push_back(real(22.25f));
    numbers.back().context_specific = true;  // its context tag is metadata
    numbers.back().context_tag = 3;
    // Past the short form's buffer, so that it writes in pieces.
    Values many;
    for (int i = 0; i < 300; ++i) many.push_back(real(static_cast<float>(i) * 0.37f));
    const std::vector<Values> runs = {{}, {real(21.5f)}, numbers, many};
    const char* queries[] = {"alt=json", "alt=json&metadata=cat-all", "alt=json&random=1", "", "metadata=cat-all", "alt=plain"};
    for (const char* query : queries)
        for (std::size_t run = 0; run < runs.size(); ++run)
            for (int before = 0; before <= 2; ++before)
                for (const bool oddNames : {false, true}) {
                    const std::string reference = render(query, runs[run], GENERAL, before, oddNames);
                    const std::string where = std::string(query) + ", run " + std::to_string(run) + ", before " +
                                              std::to_string(before) + (oddNames ? ", odd names" : "");
                    EXPECT_EQ(reference, render(query, runs[run], VALUE, before, oddNames)) << where;
                    // Elements are named by their numbers only.
                    if (!oddNames) {
                        EXPECT_EQ(reference, render(query, runs[run], ELEMENTS, before, false)) << where;
                    }
                }
}
