#include "StringUtils.h"
#include "KVTUtils.h"
#include "StringTokenizer.h"

#include <gtest/gtest.h>

TEST(StringUtils, TrimsOnlyTheFourBlankCharacters) {
    EXPECT_EQ(StringUtils::trim("\t x \r\n"), "x");
    EXPECT_EQ(StringUtils::trim(" \v"), "\v");
    EXPECT_EQ(StringUtils::trim("   "), "");
    EXPECT_EQ(StringUtils::trim(""), "");
    EXPECT_EQ(StringUtils::trim("a b"), "a b");
    EXPECT_FALSE(StringUtils::charIsTrimable('\f'));
}

TEST(StringUtils, CaseChangeFollowsTheByteRules) {
    EXPECT_EQ(StringUtils::toUpper("abc"), "aBC");
    EXPECT_EQ(StringUtils::toUpper("{"), "[");
    EXPECT_EQ(StringUtils::toLower("A1"), "aQ");
    EXPECT_EQ(StringUtils::toLower(" "), "@");
    EXPECT_EQ(StringUtils::toLower(std::string(1, '\xC0')), std::string(1, '\xE0'));
}

TEST(StringUtils, IntTestAcceptsOnlyDigitsAndOneLeadingMinus) {
    EXPECT_TRUE(StringUtils::isInt("-"));
    EXPECT_TRUE(StringUtils::isInt("0123"));
    EXPECT_TRUE(StringUtils::isInt("-45"));
    EXPECT_FALSE(StringUtils::isInt(""));
    EXPECT_FALSE(StringUtils::isInt("+1"));
    EXPECT_FALSE(StringUtils::isInt(" 1"));
    EXPECT_FALSE(StringUtils::isInt("--1"));
    EXPECT_FALSE(StringUtils::isInt("1\xB1"));
}

TEST(StringUtils, FloatTestNeedsTwoIntegerParts) {
    EXPECT_TRUE(StringUtils::isFloat("3.25"));
    EXPECT_TRUE(StringUtils::isFloat("-3.25"));
    EXPECT_TRUE(StringUtils::isFloat("1..2"));
    EXPECT_TRUE(StringUtils::isFloat("1.-2"));
    EXPECT_FALSE(StringUtils::isFloat("3"));
    EXPECT_FALSE(StringUtils::isFloat(".5"));
    EXPECT_FALSE(StringUtils::isFloat("5."));
    EXPECT_FALSE(StringUtils::isFloat("1e5"));
    EXPECT_FALSE(StringUtils::isFloat(""));
    EXPECT_TRUE(StringUtils::isBool("true"));
    EXPECT_FALSE(StringUtils::isBool("True"));
}

TEST(StringTokenizer, BlankSourcesGiveNoTokens) {
    for (const char* source : {"", "   "}) {
        StringTokenizer tokens(source, " ");
        EXPECT_EQ(tokens.countTokens(), 0);
        EXPECT_FALSE(tokens.hasMoreTokens());
        EXPECT_EQ(tokens.getNext(), "");
    }
}

TEST(StringTokenizer, DropsEmptyAndBlankTokensButKeepsInnerBlanks) {
    StringTokenizer spaced("a  b");
    ASSERT_EQ(spaced.countTokens(), 2);
    EXPECT_EQ(spaced.getNext(), "a");
    EXPECT_EQ(spaced.getNext(), "b");
    EXPECT_FALSE(spaced.hasMoreTokens());

    StringTokenizer padded("a , b", ",");
    EXPECT_EQ(padded.getNext(), "a ");
    EXPECT_EQ(padded.getNext(), " b");

    StringTokenizer time("12:30:500", ":");
    EXPECT_EQ(time.getNext(), "12");
    EXPECT_EQ(time.getNext(), "30");
    EXPECT_EQ(time.getCurrent(), "30");
    EXPECT_EQ(time.getNext(), "500");
}

TEST(StringTokenizer, ReturnsDelimitersWhenAsked) {
    StringTokenizer tokens("a,b", ",", true);
    ASSERT_EQ(tokens.countTokens(), 3);
    EXPECT_EQ(tokens.getNext(), "a");
    EXPECT_EQ(tokens.getNext(), ",");
    EXPECT_EQ(tokens.getNext(), "b");

    StringTokenizer blankNeighbour(" ,b", ",", true);
    ASSERT_EQ(blankNeighbour.countTokens(), 2);
    EXPECT_EQ(blankNeighbour.getNext(), ",");
}

TEST(StringTokenizer, AnyCharacterOfTheDelimiterStringSplits) {
    StringTokenizer tokens("a b\nc", "\n ");
    EXPECT_EQ(tokens.countTokens(), 3);
}

TEST(StringTokenizer, ResetRewindsWithoutRestoringHasMore) {
    StringTokenizer tokens("x y z");
    tokens.getNext();
    tokens.getNext();
    tokens.getNext();
    tokens.reset();
    EXPECT_EQ(tokens.countTokens(), 3);
    EXPECT_FALSE(tokens.hasMoreTokens());
    EXPECT_EQ(tokens.getNext(), "");
}

TEST(StringTokenizer, SkippingClearsHasMoreAtTheEnd) {
    StringTokenizer two("x y z");
    two.getNext(2);
    EXPECT_TRUE(two.hasMoreTokens());
    EXPECT_EQ(two.getNext(), "z");
    StringTokenizer three("x y z");
    three.getNext(3);
    EXPECT_FALSE(three.hasMoreTokens());
}

TEST(KVTUtils, ConvertsWithStreamFormatting) {
    EXPECT_EQ(KVTUtils::int2string(-12), "-12");
    EXPECT_EQ(KVTUtils::uint2string(4000000000u), "4000000000");
    EXPECT_EQ(KVTUtils::float2string(0.5f), "0.5");
    EXPECT_EQ(KVTUtils::float2string(1.0f), "1");
    EXPECT_EQ(KVTUtils::float2string(1234567.0f), "1.23457e+06");
    EXPECT_EQ(KVTUtils::string2Int("  42abc"), 42);
    EXPECT_EQ(KVTUtils::string2Int("abc"), 0);
    EXPECT_FLOAT_EQ(KVTUtils::string2Float("-2.5 rest"), -2.5f);
}
