// What the reader takes, what it refuses, and what the writer makes: pinned, so that speed can't change it.
#include "json/ajson.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>

#include "lcdprotocolimpl/core/codec.h"
#include "lcdprotocolimpl/core/response.h"

namespace {

using LCD::ProtocolImpl::decode;
using LCD::ProtocolImpl::encode;

struct Inner {
    int x = -1;
    std::string s;
    AJSON(x, s)
};

struct Sample {
    int id = -1;
    std::string name;
    float rate = 0;
    bool on = false;
    Inner inner;
    std::vector<Inner> list;
    std::list<int> numbers;
    AJSON(id, name, rate, on, inner, list, numbers)
};

template <class T>
std::string encoded(const T& value) {
    std::string out;
    encode(out, value);
    return out;
}

/// What a text decodes to, written again, or the reader's error.
template <class T>
std::string outcome(const std::string& text) {
    T value{};
    std::string error;
    return decode(text, value, error) ? encoded(value) : error;
}

struct Example {
    const char* text;
    const char* outcome;
};

template <class T, std::size_t N>
void expectOutcomes(const Example (&examples)[N]) {
    for (const Example& each : examples) {
        EXPECT_EQ(outcome<T>(each.text), each.outcome) << "of " << each.text;
    }
}

std::string at(int column, const char* text) {
    return "error at line :0 col :" + std::to_string(column) + " msg:" + text;
}

TEST(JsonReader, recordsAndTheirTolerance) {
    struct Pair {
        int a = -1;
        Inner inner;
        int b = -1;
        AJSON(a, inner, b)
    };
    expectOutcomes<Pair>({
        {R"({"a":1,"inner":{"x":2,"s":"t"},"b":3})", R"({"a":1,"inner":{"x":2,"s":"t"},"b":3})"},
        {R"({"b":3,"inner":{"s":"t","x":2},"a":1})", R"({"a":1,"inner":{"x":2,"s":"t"},"b":3})"},
        {"\t{\r\n \"a\" : 1 ,\n \"b\":2 } ", R"({"a":1,"inner":{"x":-1,"s":""},"b":2})"},
        {R"({a:1,inner:{s:word},b:2})", R"({"a":1,"inner":{"x":-1,"s":"word"},"b":2})"},
        {"{// one\n\"a\"// two\n:// three\n1// four\n,\"b\":2}// five", R"({"a":1,"inner":{"x":-1,"s":""},"b":2})"},
        {R"({"a":1,"a":2})", R"({"a":2,"inner":{"x":-1,"s":""},"b":-1})"},
        {R"({"zz":[{"q":[1,"]"]},{},{}],"A":7,"a":1})", R"({"a":1,"inner":{"x":-1,"s":""},"b":-1})"},
        {R"({"a":1}trailing text )", R"({"a":1,"inner":{"x":-1,"s":""},"b":-1})"},
        // an empty record leaves its brace to the one above
        {R"({})", R"({"a":-1,"inner":{"x":-1,"s":""},"b":-1})"},
        {R"({"inner":{},"b":1})", R"({"a":-1,"inner":{"x":-1,"s":""},"b":-1})"},
        // a record's braces and commas are known by their first character, quoted or not
        {R"("{x" "a":1})", R"({"a":1,"inner":{"x":-1,"s":""},"b":-1})"},
        {R"({"a":1",then""b":2"}"1 )", R"({"a":1,"inner":{"x":-1,"s":""},"b":2})"},
        {R"({"}a":1})", R"({"a":-1,"inner":{"x":-1,"s":""},"b":-1})"},
    });
    // A block comment that the text's end cuts off leaves the token that stood before it.
    EXPECT_EQ(outcome<Inner>(R"({"x":2,"s":"}"/* )"), R"({"x":2,"s":"}"})");
    EXPECT_EQ(outcome<Pair>(R"({"a":1,})"), at(8, "object key must be string"));
    EXPECT_EQ(outcome<Pair>(R"({"a"":"1})"), at(7, "invalid json document!"));
    EXPECT_EQ(outcome<Pair>(R"({"a" 1})"), at(6, "invalid json document!"));
    EXPECT_EQ(outcome<Pair>(R"({"a":12abc })"), at(10, "invalid json document!"));
    EXPECT_EQ(outcome<Pair>(R"({"a":1 /* x */})"), at(14, "not a comment!"));
    EXPECT_EQ(outcome<Pair>(R"({"a":1 /x})"), at(8, "not a comment!"));
    EXPECT_EQ(outcome<Pair>(R"({"a":1/* )"), at(9, "invalid json document!"));
    EXPECT_EQ(outcome<Pair>(R"({"inner":[]})"), at(10, "read object must start with {!"));
    EXPECT_EQ(outcome<Pair>(R"({"inner":{"x":1})"), at(16, "invalid json document!"));
    EXPECT_EQ(outcome<Pair>(R"({"a":)"), at(5, "not a valid signed integral like number."));
    EXPECT_EQ(outcome<Pair>(R"({"a":tru)"), at(8, "not a valid string!"));
    EXPECT_EQ(outcome<Pair>(""), at(0, "read object must start with {!"));
    EXPECT_EQ(outcome<Pair>(R"( "a":1})"), at(4, "read object must start with {!"));
    EXPECT_EQ(outcome<Pair>(R"({"a":1} "open)"), at(13, "not a valid quote string!"));
    EXPECT_EQ(outcome<Pair>("{\r\n\"a\":1,\n  5:2}"), "error at line :2 col :4 msg:object key must be string");
    EXPECT_EQ(outcome<std::vector<Inner>>(""), at(0, "array must start with [."));
}

TEST(JsonReader, anUnknownKeysValueIsPassedWhole) {
    const std::string whole = R"({"x":1,"s":""})";
    for (const char* value : {"1", "-1.5e3", "\"a}\"", "word", "[]", "{}", "[1,2,]", "[[],{},[{}]]", "[,]",
                              R"({"k":1,2:3,w:{"z":[null,"]"]}})"}) {
        EXPECT_EQ(outcome<Inner>(std::string("{\"unknown\":") + value + ",\"x\":1}"), whole) << value;
    }
    EXPECT_EQ(outcome<Inner>(R"({"u":{"k" 1},"x":1})"), at(11, "invalid json document!"));
    EXPECT_EQ(outcome<Inner>(R"({"u":{:1},"x":1})"), at(7, "invalid json document!"));
    EXPECT_EQ(outcome<Inner>(R"({"u":{"k":1,},"x":1})"), at(13, "invalid json document!"));
    EXPECT_EQ(outcome<Inner>(R"({"u":[1 2],"x":1})"), at(9, "no valid array!"));
    EXPECT_EQ(outcome<Inner>(R"({"u":[}],"x":1})"), at(7, "no valid array!"));
}

template <class T>
std::string member(const std::string& value) {
    struct Holder {
        T m{};
        AJSON(m)
    };
    return outcome<Holder>("{\"m\":" + value + "}");
}

TEST(JsonReader, integersFromWhateverComes) {
    EXPECT_EQ(outcome<std::list<int>>(
                  R"([12,-12,007,-,2147483648,4294967295,-4294967297,18446744073709551617,1.99,-1.99,1.5e2,15E++1])"),
              "[12,-12,7,0,-2147483648,-1,-1,1,1,-1,150,150]");
    EXPECT_EQ(outcome<std::list<int>>(
                  R"([15e-1,1e400,1e4294967297,"12"," -12x",true,"TrUe",truer,false,null,"",-2147483648])"),
              "[1,0,10,12,-12,1,1,0,0,0,0,-2147483648]");
    EXPECT_EQ(member<int>("[1]"), at(6, "not a valid signed integral like number."));
    EXPECT_EQ(member<int>("{\"a\":1}"), at(6, "not a valid signed integral like number."));
    EXPECT_EQ(member<int>("1.2.3"), at(8, "not a valid number!"));
}

TEST(JsonReader, floatsByTheirOwnArithmetic) {
    EXPECT_EQ(
        outcome<std::list<float>>(R"([2,-3,59.94,0.1,-1.5e-1,25e+1,"0x10","-2.5e1z",word,1e999999999,1e-999999999])"),
        "[2,-3,59.939998626708984375,0.100000001490116119384765625,-0.1500000059604644775390625,250,16,-25,0,"
        "inf,0]");
    EXPECT_EQ(member<float>("{}"), at(6, "not a valid float point number."));
    // Digits are weighted one by one with fused multiply-adds, which is not always the nearest double.
    double sum = 0;
    double weight = 0.1;
    for (int digit : {8, 4, 5, 5, 1, 2, 4, 0, 8, 2, 2, 5, 5, 7, 0, 1}) {
        sum = std::fma(digit, weight, sum);
        weight *= 0.1;
    }
    ajson::reader in("0.8455124082255701 ");
    in.next();
    EXPECT_EQ(in.current().type, ajson::token_double);
    EXPECT_EQ(in.current().value.d64, sum);
    EXPECT_EQ(in.current().length, 18u);
}

TEST(JsonReader, boolsFromWhateverComes) {
    EXPECT_EQ(outcome<std::list<bool>>(R"([true,"TRUE",false,yes,null,2,-0,0.5,0.0])"), "[1,1,0,0,0,1,0,1,0]");
    EXPECT_EQ(member<bool>("[]"), at(6, "not a valid bool."));
}

TEST(JsonReader, stringsAndTheirEscapes) {
    const auto text = [](const std::string& quoted) -> std::string {
        std::string error;
        Inner value;
        return decode("{\"s\":" + quoted + "}", value, error) ? value.s : error;
    };
    EXPECT_EQ(text("\"\""), "");
    EXPECT_EQ(text("null"), "null");
    EXPECT_EQ(text("a\\tb"), "a\tb");
    EXPECT_EQ(text(R"("\"\\\/\b\f\n\r\t")"), "\"\\/\b\f\n\r\t");
    EXPECT_EQ(text(R"("\u0041\u00e9\u20AC")"), "A\u00e9\u20ac");
    EXPECT_EQ(text(R"("\ud83d\ude00")"), "\xED\xA0\xBD\xED\xB8\x80");
    EXPECT_EQ(text("\"a\tb\x01\xFF\""), "a\tb\x01\xFF");
    EXPECT_EQ(text("\"long enough for whole words at a time \\\\ and a rest\""),
              "long enough for whole words at a time \\ and a rest");
    for (const char* bad : {R"("\u0000")", R"("\u12")", R"("\u12g4")", R"("\x")"}) {
        EXPECT_EQ(text(bad), at(static_cast<int>(5 + std::string(bad).size()), "not a valid string.")) << bad;
    }
    EXPECT_EQ(text("12"), at(7, "not a valid string."));
    EXPECT_EQ(text("\"a\nb\""), "error at line :1 col :0 msg:not a valid quote string!");
    EXPECT_EQ(text("\"a\\\nb\""), "error at line :1 col :3 msg:not a valid string.");
}

TEST(JsonReader, arrays) {
    expectOutcomes<std::list<int>>({{"[1,2]", "[1,2]"},
                                    {"[1,2,]", "[1,2]"},
                                    {"[ ]", "[]"},
                                    {"[1]/* not looked at", "[1]"},
                                    {"null ", "[]"},
                                    {"nullify,", "[]"}});
    struct Lists {
        std::vector<Inner> list;
        std::vector<std::string> names;
        AJSON(list, names)
    };
    expectOutcomes<Lists>(
        {{R"({"list":null,"names":["a",b]})", R"({"list":[],"names":["a","b"]})"},
         {R"({"list":[{"x":1}],"list":[{"x":2}]})", R"({"list":[{"x":1,"s":""},{"x":2,"s":""}],"names":[]})"}});
    EXPECT_EQ(outcome<Lists>(R"({"list":{}})"), at(9, "array must start with [."));
    EXPECT_EQ(outcome<Lists>(R"({"list":[{},{}]})"), at(11, "no valid array!"));
    EXPECT_EQ(outcome<Lists>(R"({"list":[{"x":1} {"x":2}]})"), at(18, "no valid array!"));
    EXPECT_EQ(outcome<Lists>(R"({"list":[{"x":1}, )"), at(18, "read object must start with {!"));
}

TEST(JsonReader, theEnvelopeOfAnEmptyRecordIsSuccess) {
    LCD::ProtocolImpl::s_Response<Inner> response;
    std::string error;
    EXPECT_TRUE(decode(R"({"code":0,"data":{}})", response, error));
    EXPECT_TRUE(decode("{code:0,message:ok}", response, error));
    EXPECT_EQ(response.message, "ok");
}

TEST(JsonReader, whatWasReadBeforeAnErrorStays) {
    Sample value;
    std::string error;
    EXPECT_FALSE(decode(R"({"id":7,"list":[{"x":1},{"x":2}],"rate":[]})", value, error));
    EXPECT_EQ(value.id, 7);
    EXPECT_EQ(value.list.size(), 2u);
}

TEST(JsonReader, aGuessIsOnlyAGuess) {
    // The same record in changing orders, so that every guess is wrong at times, with keys that begin alike.
    struct Alike {
        int aaaaaaaaa = -1;
        int aaaaaaaab = -1;
        int aaaaaaaaaa = -1;
        int b = -1;
        AJSON(aaaaaaaaa, aaaaaaaab, aaaaaaaaaa, b)
    };
    for (int round = 0; round < 2; ++round) {
        expectOutcomes<Alike>({
            {R"({"aaaaaaaaa":1,"aaaaaaaab":2,"aaaaaaaaaa":3,"b":4})",
             R"({"aaaaaaaaa":1,"aaaaaaaab":2,"aaaaaaaaaa":3,"b":4})"},
            {R"({"b":4,"aaaaaaaaaa":3,"aaaaaaaab":2,"aaaaaaaaa":1})",
             R"({"aaaaaaaaa":1,"aaaaaaaab":2,"aaaaaaaaaa":3,"b":4})"},
            {R"({"aaaaaaaac":9,"aaaaaaaab":2,"aaaaaaaa":8,"b" : 4,"aaaaaaaaa":1})",
             R"({"aaaaaaaaa":1,"aaaaaaaab":2,"aaaaaaaaaa":-1,"b":4})"},
        });
    }
}

TEST(JsonReader, endsWhereItsLimitIs) {
    const char* text = "{\"x\":1}";
    Inner value;
    ajson::reader whole(text, 7);
    ajson::detail::read_document(whole, ajson::detail::type_of<Inner>(), &value);
    EXPECT_EQ(value.x, 1);
    ajson::reader shorter(text, 4);
    EXPECT_THROW(ajson::detail::read_document(shorter, ajson::detail::type_of<Inner>(), &value), ajson::exception);
    ajson::reader none(nullptr);
    EXPECT_TRUE(none.ended());
    none.next();
    EXPECT_EQ(none.current().type, ajson::token_end);
}

TEST(JsonWriter, everyMemberInListOrderWithoutWhiteSpace) {
    Sample value;
    value.on = true;
    value.rate = 2.0F;
    value.list.resize(2);
    value.numbers = {std::numeric_limits<int>::min(), -10, -9, 0, 9, 10, 99, 100, 12345, 1234567890};
    EXPECT_EQ(encoded(value),
              R"({"id":-1,"name":"","rate":2,"on":1,"inner":{"x":-1,"s":""},"list":[{"x":-1,"s":""},{"x":-1,"s":""}],)"
              R"("numbers":[-2147483648,-10,-9,0,9,10,99,100,12345,1234567890]})");
}

TEST(JsonWriter, strings) {
    const auto written = [](const std::string& text) {
        const std::string whole = encoded(Inner{0, text});
        return whole.substr(12, whole.size() - 14);  // between the quotes of "s"
    };
    EXPECT_EQ(written("plain / text, long enough for words"), "plain / text, long enough for words");
    EXPECT_EQ(written("\b\t\n\f\r\"\\"), R"(\b\t\n\f\r\"\\)");
    EXPECT_EQ(written("\x01\x1F\x7F"), R"(\u0001\u001F\u007F)");
    EXPECT_EQ(written("1234567\x7F"), R"(1234567\u007F)");
    EXPECT_EQ(written("\u00e9\u20ac"), R"(\u00E9\u20AC)");
    EXPECT_EQ(written("\U0001F600"), R"(\u0001\uF600)");
    EXPECT_EQ(written(std::string("cut\0here", 8)), "cut");
    EXPECT_EQ(written("a\xFF z\xC3z\xE2\x82z\xED\xA0\xBDq\xC3"), "a zq") << "bad bytes go with their sequence";
    // Longer than the buffer and than a chunk, with a character across the chunk's edge.
    const std::string edge = std::string(511, 'x') + "\u00e9" + std::string(3000, 'y');
    EXPECT_EQ(written(edge), std::string(511, 'x') + R"(\u00E9)" + std::string(3000, 'y'));
}

TEST(JsonWriter, floatsAreWrittenInFull) {
    const auto expect = [](float value) {
        char buffer[128];
        std::snprintf(buffer, sizeof buffer, "%.62g", static_cast<double>(value));
        struct Holder {
            float f;
            AJSON(f)
        };
        EXPECT_EQ(encoded(Holder{value}), std::string("{\"f\":") + buffer + "}");
    };
    for (float value : {0.0F, -0.0F, 1.0F, 0.1F, 59.94F, -23.976F, 1e-4F, 1.0001e-4F, 9.9e-5F, 1e-7F, 4294967040.0F,
                        4294967296.0F, 1e20F, std::numeric_limits<float>::max(), std::numeric_limits<float>::min(),
                        std::numeric_limits<float>::denorm_min(), std::numeric_limits<float>::infinity()}) {
        expect(value);
        expect(-value);
    }
    std::uint32_t bits = 12345;
    for (int i = 0; i < 20000; ++i) {
        bits = bits * 1664525u + 1013904223u;
        float value;
        std::memcpy(&value, &bits, sizeof value);
        if (!std::isnan(value)) {
            expect(value);
        }
    }
}

TEST(JsonReflection, fieldListsAreSplitAtCommasAndWhiteSpace) {
    std::vector<std::string> names;
    for (const auto& each : ajson::detail::split_fields(" code,\tmessage ,,\r\n data\f,")) {
        names.emplace_back(each.str, each.len);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"code", "message", "data"}));
}

}  // namespace
