// What fuzzing has found is run again, and on strict JSON of known keys the reader agrees with another parser.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "fuzz/sample.h"
#include "fuzz/targets.h"
#include "lcdprotocolimpl/core/codec.h"
#include "platform/lcdcomm/gate.h"

namespace lcdfuzz {

NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(Item, number, text)
NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE_WITH_DEFAULT(Sample, id, name, rate, on, item, items, numbers, words, rates, rows)

}  // namespace lcdfuzz

namespace lcdtest {

namespace {

using Document = nlohmann::ordered_json;

// Makes documents for `Sample`: every type as it should be, any subset of the keys in any order, unknown keys between.
class Generator {
public:
    explicit Generator(unsigned start) : random_(start) {}

    std::string text() {
        const int indent = below(3) == 0 ? static_cast<int>(below(5)) : -1;
        escaped_ = below(2) == 0;
        return sample().dump(indent, below(2) == 0 ? ' ' : '\t', escaped_);
    }

private:
    std::uint32_t below(std::uint32_t bound) { return static_cast<std::uint32_t>(random_() % bound); }

    Document integer() {
        static constexpr int kEdges[] = {0, -1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()};
        return below(4) == 0 ? kEdges[below(4)] : static_cast<int>(random_()) >> below(31);
    }

    Document real() {
        static constexpr double kScales[] = {1e-6, 1e-3, 0.01, 1, 1e6};
        const double number = std::uniform_real_distribution<>(-1000, 1000)(random_);
        return below(4) == 0 ? integer() : Document(number * kScales[below(5)]);
    }

    Document string() {
        // The last is a pair of surrogates when escaped, which the reader doesn't join.
        static const char* const kPieces[] = {"a",        "word ",  "/",      "\"",     "\\",         "\b\f\n\r\t",
                                              "\x01\x7F", "{[,:]}", "\u00e9", "\u20ac", "12345678\\", "\U0001F600"};
        std::string text;
        for (std::uint32_t count = below(6); count > 0; --count) {
            text += kPieces[below(escaped_ ? 11 : 12)];
        }
        return text;
    }

    template <class Make>
    Document list(Make make) {
        Document out = Document::array();
        for (std::uint32_t count = below(4); count > 0; --count) {
            out.push_back(make());
        }
        return out;
    }

    // Never empty: an empty record ends the one around it.
    Document object(std::vector<std::pair<std::string, Document>> members) {
        std::shuffle(members.begin(), members.end(), random_);
        members.resize(1 + below(static_cast<std::uint32_t>(members.size())));
        Document out = Document::object();
        for (auto& [key, value] : members) {
            out[key] = std::move(value);
        }
        return out;
    }

    Document unknown(std::uint32_t depth = 3) {
        if (depth == 0 || below(2) == 0) {
            return Document{nullptr, below(2) == 0, string(), real(), Document::object()}[below(5)];
        }
        const auto inner = [&] { return unknown(depth - 1); };
        return below(2) == 0 ? list(inner) : object({{"id", inner()}, {"x", inner()}, {"", inner()}});
    }

    Document item() { return object({{"number", integer()}, {"text", string()}, {"numbers", unknown()}}); }

    Document sample() {
        const auto integers = [this] { return list([this] { return integer(); }); };
        return object({{"id", integer()},
                       {"name", string()},
                       {"rate", real()},
                       {"on", below(2) == 0},
                       {"item", item()},
                       {"items", list([this] { return item(); })},
                       {"numbers", integers()},
                       {"words", list([this] { return string(); })},
                       {"rates", list([this] { return real(); })},
                       {"rows", list(integers)},
                       {"row", unknown()},
                       {"ids", unknown()},
                       {"Name", unknown()}});
    }

    std::mt19937 random_;
    bool escaped_ = false;  // whether all but ASCII is
};

}  // namespace

TEST(JsonReaderTest, AgreesWithAnotherParserOnStrictDocuments) {
    for (unsigned start = 0; start < 5000; ++start) {
        const std::string text = Generator(start).text();
        ASSERT_TRUE(lcdcomm::passesGate(text, 256)) << text;
        lcdfuzz::Sample read;
        std::string error;
        ASSERT_TRUE(LCD::ProtocolImpl::decode(text, read, error)) << error << " in " << text;
        const nlohmann::json expected = nlohmann::json::parse(text).get<lcdfuzz::Sample>();
        ASSERT_EQ(nlohmann::json(read), expected) << text;
    }
}

// The inputs that fuzzing has kept.
class CorpusTest : public testing::TestWithParam<lcdfuzz::Target> {};

TEST_P(CorpusTest, BreaksNoPromise) {
    const auto folder = std::filesystem::path(LCD_TEST_SOURCES) / "fuzz/corpus" / GetParam().name;
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string input{std::istreambuf_iterator<char>(file), {}};
        EXPECT_NO_THROW(GetParam().run(input)) << entry.path().filename();
        ++count;
    }
    EXPECT_GT(count, 0U);
}

INSTANTIATE_TEST_SUITE_P(, CorpusTest, testing::ValuesIn(lcdfuzz::kTargets),
                         [](const auto& each) { return each.param.name; });

}  // namespace lcdtest
