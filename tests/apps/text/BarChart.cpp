#include "text/BarChart.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/Xml.h"
#include "text/XmlText.h"

namespace {

using namespace keladjust::app;
using keladjust::test::whyNotXml;

const std::string replacement = "\xEF\xBF\xBD";

TEST(XmlText, EscapesWhatMarksUp) {
    EXPECT_EQ(xmlText("a < b & \"c\" > d"), "a &lt; b &amp; &quot;c&quot; &gt; d");
}

TEST(XmlText, KeepsCharactersOfEveryLength) {
    const std::string text = "d\xC3\xBCne \xE6\xB2\x99 \xF0\x9F\x8F\x9C \xED\x9F\xBF";
    EXPECT_EQ(xmlText(text), text);
}

TEST(XmlText, ReplacesWhatXmlCannotHold) {
    EXPECT_EQ(xmlText(std::string("a\0b", 3)), "a" + replacement + "b");
    EXPECT_EQ(xmlText("\x1B[1m"), replacement + "[1m");
    // Continuations without a beginning, beginnings without an end, overlong forms, surrogates,
    // and codes beyond the last one: a replacement for each byte.
    EXPECT_EQ(xmlText("\x80"), replacement);
    EXPECT_EQ(xmlText("\xC3"), replacement);
    EXPECT_EQ(xmlText("\xC3("), replacement + "(");
    EXPECT_EQ(xmlText("\xC0\xAF"), replacement + replacement);
    EXPECT_EQ(xmlText("\xE0\x80\xAF"), replacement + replacement + replacement);
    EXPECT_EQ(xmlText("\xED\xA0\x80"), replacement + replacement + replacement);
    EXPECT_EQ(xmlText("\xF4\x90\x80\x80"), replacement + replacement + replacement + replacement);
    EXPECT_EQ(xmlText("\xEF\xBF\xBF"), replacement + replacement + replacement);
}

std::size_t countOf(const std::string& needle, const std::string& text) {
    std::size_t count = 0;
    for (auto at = text.find(needle); at != std::string::npos; at = text.find(needle, at + 1)) {
        ++count;
    }
    return count;
}

// What the tests below rely on.
TEST(WhyNotXml, FindsWhatIsWrong) {
    const auto with = [](const std::string& body) {
        return whyNotXml("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + body);
    };
    EXPECT_EQ(with("<a b=\"1\" c=\"&lt;\"><d/>text</a>\n"), "");
    for (const char* const body :
         {"", "text", "<a>", "</a>", "<a><b></a></b>", "<a/><b/>", "<a>&</a>", "<a>&b;</a>",
          "<a b=1/>", "<a b=\"1\" b=\"2\"/>", "<a b=\"<\"/>", "<a>1 < 2</a>", "<a", "<a/>x"}) {
        EXPECT_NE(with(body), "") << body;
    }
    EXPECT_NE(whyNotXml("<a/>"), "");
}

TEST(BarChart, DrawsLengthsInProportion) {
    const std::vector<Bar> bars = {{"half", 5, "5 ms"}, {"whole", 10, "10 ms"}, {"none", 0, "0"}};
    const std::string svg = barChart("title", bars);
    EXPECT_EQ(countOf("width=\"210.0\" height=\"16.0\"", svg), 1u);
    EXPECT_EQ(countOf("width=\"420.0\" height=\"16.0\"", svg), 1u);
    EXPECT_EQ(countOf("width=\"0.0\" height=\"16.0\"", svg), 1u);
}

TEST(BarChart, HoldsAnyTexts) {
    const std::string odd = "<&\">\x01\xFF";
    const std::string svg = barChart(odd, std::vector<Bar>{{odd, 1, odd}});
    EXPECT_EQ(countOf("&lt;&amp;&quot;&gt;" + replacement + replacement, svg), 4u);
    EXPECT_EQ(whyNotXml(svg), "");
}

TEST(BarChart, WithoutBarsIsStillAPicture) {
    const std::string svg = barChart("nothing", {});
    EXPECT_EQ(whyNotXml(svg), "");
    EXPECT_EQ(svg.find("nan"), std::string::npos);
}

}  // namespace
