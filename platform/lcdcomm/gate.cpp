#include "platform/lcdcomm/gate.h"

#include <algorithm>
#include <bitset>

#include "json/reader.h"

namespace lcdcomm {

namespace {

// The brackets around the place that was reached, and what may stand there.
class Structure {
public:
    explicit Structure(std::size_t deepest) : deepest_(deepest) {}

    // False for a token out of place.
    bool take(const ajson::token& token) {
        const char symbol = token.type == ajson::token_symbol ? *token.text : '\0';
        const bool isScalar = symbol == '\0' && token.type != ajson::token_end;
        switch (place_) {
            case Place::Element:
                return symbol == ']' ? close() : takeValue(symbol, isScalar);
            case Place::Value:
                return takeValue(symbol, isScalar);
            case Place::FirstKey:
                return symbol == '}' ? close() : takeKey(isScalar);
            case Place::Key:
                return takeKey(isScalar);
            case Place::Colon:
                place_ = Place::Value;
                return symbol == ':';
            case Place::Separator:
                return takeSeparator(symbol);
        }
        return false;
    }
    bool isComplete() const { return depth_ == 0 && place_ == Place::Separator; }

private:
    enum class Place {
        Value,
        Element,   // a value, or the array's end
        FirstKey,  // a key, or the object's end
        Key,
        Colon,
        Separator,  // or the end of what it would separate
    };

    bool inObject() const { return isObject_[depth_ - 1]; }

    bool takeValue(char symbol, bool isScalar) {
        if (symbol != '[' && symbol != '{') {
            place_ = Place::Separator;
            return isScalar;
        }
        if (depth_ == deepest_) {
            return false;
        }
        isObject_[depth_++] = symbol == '{';
        place_ = symbol == '{' ? Place::FirstKey : Place::Element;
        return true;
    }

    bool takeKey(bool isScalar) {
        place_ = Place::Colon;
        return isScalar;
    }

    bool takeSeparator(char symbol) {
        if (symbol == ',') {
            place_ = inObject() ? Place::Key : Place::Element;
            return true;
        }
        return symbol == (inObject() ? '}' : ']') && close();
    }

    bool close() {
        --depth_;
        place_ = Place::Separator;
        return true;
    }

    const std::size_t deepest_;
    std::size_t depth_ = 0;
    Place place_ = Place::Value;
    std::bitset<kDeepestGate> isObject_;  // the brackets that are open, the outermost first
};

}  // namespace

bool passesGate(const std::string& text, std::size_t deepest) {
    ajson::reader in(text);
    Structure structure(std::min(deepest, kDeepestGate));
    try {
        do {
            const char* const before = in.cursor();
            in.next();
            // Ahead of a block comment that is never closed the reader gives its last token again.
            const bool isNew = in.current().type == ajson::token_end || in.current().text >= before;
            if (!isNew || !structure.take(in.current())) {
                return false;
            }
        } while (!structure.isComplete());
    } catch (const ajson::exception&) {
        return false;
    }
    return text.find_first_not_of(" \t\r\n", static_cast<std::size_t>(in.cursor() - text.c_str())) == text.npos;
}

}  // namespace lcdcomm
