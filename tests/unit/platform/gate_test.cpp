// The gate, against a strict parser and against the reader that it protects.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>
#include <string>

#include "platform/lcdcomm/gate.h"

namespace {

using namespace std::string_literals;

bool passes(const std::string& text) { return lcdcomm::passesGate(text, 256); }

std::string repeat(const std::string& text, std::size_t times) {
    std::string out;
    while (times-- > 0) {
        out += text;
    }
    return out;
}

// One character for each token; an "a" stands for a quoted one.
std::string textOf(const std::string& tokens) {
    std::string text;
    for (const char token : tokens) {
        text += token == 'a' ? std::string("\"a\"") : std::string(1, token);
    }
    return text;
}

// What the reader tolerates is put right: a comma behind an array's last element, a number as a key.
std::string strict(std::string tokens) {
    for (std::size_t at = tokens.size(); at-- > 0;) {
        if (tokens.compare(at, 2, "1:") == 0) {
            tokens[at] = 'a';
        } else if (at > 0 && tokens.compare(at, 2, ",]") == 0 && std::string("1a]}").find(tokens[at - 1]) < 4) {
            tokens.erase(at, 1);
        }
    }
    return textOf(tokens);
}

TEST(GateTest, AgreesWithAStrictParserOnAllShortTexts) {
    constexpr char kTokens[] = "[]{},:1a";
    std::size_t good = 0;
    for (std::size_t length = 1; length <= 6; ++length) {
        for (std::size_t number = 0; number < std::size_t{1} << 3 * length; ++number) {
            std::string tokens;
            for (std::size_t at = 0; at < length; ++at) {
                tokens += kTokens[number >> 3 * at & 7];
            }
            if (tokens.find("11") != tokens.npos) {
                continue;  // one token
            }
            const bool expected = nlohmann::json::accept(strict(tokens));
            good += expected ? 1 : 0;
            ASSERT_EQ(passes(textOf(tokens)), expected) << textOf(tokens);
        }
    }
    EXPECT_GT(good, 40U) << "texts that both let pass";
}

TEST(GateTest, LetsPassWhatTheReaderFinishesAndNothingElse) {
    const std::string whole =
        " // a comment\n{\"code\":0,message:ok,\"\\\"]\":[true,null ,-1.5e3,{},[]],\"u\":{\"}\":\"{\"}}\r\n\t ";
    EXPECT_TRUE(passes(whole));
    const std::size_t end = whole.rfind('}') + 1;
    for (std::size_t size = 0; size < end; ++size) {
        EXPECT_FALSE(passes(whole.substr(0, size))) << "cut after " << size;
    }
    const std::string bad[] = {""s,        " "s,          "ok"s,      "{}x"s,   "{}// behind"s, "{}/*"s,
                               "[[]/*"s,   "[1/*"s,       "[/* */]"s, "/*"s,    "/"s,           "[1.2.3]"s,
                               "[12abc]"s, "[\"a\nb\"]"s, "{}\0"s,    "[1,\0]"s};
    for (const std::string& text : bad) {
        EXPECT_FALSE(passes(text)) << text;
    }
}

TEST(GateTest, BoundsTheNesting) {
    struct {
        std::string open, close;
        std::size_t levels;
    } const kinds[] = {{"[", "]", 1}, {"{\"a\":", "}", 1}, {"[{a:", "}]", 2}};
    for (const auto& [open, close, levels] : kinds) {
        const auto nested = [&, &begin = open, &end = close](std::size_t times) {
            return repeat(begin, times) + "1" + repeat(end, times);
        };
        EXPECT_TRUE(passes(nested(256 / levels))) << open;
        EXPECT_FALSE(passes(nested(256 / levels + 1))) << open;
        EXPECT_FALSE(passes(nested(100'000))) << open;
    }
    EXPECT_FALSE(lcdcomm::passesGate(repeat("[", 5000) + repeat("]", 5000), 5000)) << "there is an upper bound";
}

}  // namespace
