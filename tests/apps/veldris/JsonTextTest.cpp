#include <veldris/JsonText.h>

#include <gtest/gtest.h>
#include <limits>
#include <rapidjson/document.h>

namespace {

TEST(JsonTextTest, writesWhatAParserReadsBack) {
    const ovMemory::String nasty = "quote \" backslash \\ line\nend \x01 \xc3\xa9";
    veldris::JsonObject inner;
    inner.text(nasty, nasty).boolean("yes", true);
    const ovMemory::String text = veldris::JsonObject()
                                      .number("third", 1.0 / 3.0)
                                      .number("infinite", std::numeric_limits<double>::infinity())
                                      .object("inner", inner)
                                      .array("list", {inner, inner})
                                      .texts("texts", {"a", nasty})
                                      .texts("none", {})
                                      .toText();
    rapidjson::Document document;
    ASSERT_FALSE(document.Parse(text.c_str()).HasParseError()) << text;
    EXPECT_EQ(document["third"].GetDouble(), 1.0 / 3.0);
    EXPECT_TRUE(document["infinite"].IsNull());
    EXPECT_EQ(document["inner"][nasty.c_str()].GetString(), nasty);
    EXPECT_TRUE(document["list"][1]["yes"].GetBool());
    EXPECT_EQ(document["texts"][1].GetString(), nasty);
    EXPECT_TRUE(document["none"].GetArray().Empty());
    EXPECT_EQ(text.find('\n'), ovMemory::String::npos);
    EXPECT_EQ(veldris::JsonObject().toText(), "{}");
}

} // namespace
