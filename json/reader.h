// The tokeniser. Tolerant in its own way: bare words, line comments, numbers that end where they must.
#pragma once

#include <cstdint>
#include <exception>
#include <string>

namespace ajson {

enum token_type { token_string = 0, token_int = 1, token_uint = 2, token_double = 3, token_symbol = 4, token_end = 5 };

/// Raised by everything that reads. `what()` is "error at line :L col :C msg:TEXT", both numbers from zero.
class exception : public std::exception {
public:
    explicit exception(std::string text) : text_(std::move(text)) {}
    const char* what() const noexcept override { return text_.c_str(); }

private:
    std::string text_;
};

/// One token: a stretch of the input and, for a number, its value.
struct token {
    const char* text = "";  ///< of a quoted string the text between the quotes, escapes not undone
    std::uint64_t length = 0;
    token_type type = token_end;
    bool negative = false;  ///< the number began with "-"; the value is its magnitude
    union {
        std::uint64_t u64;  ///< of token_int and token_uint
        double d64;         ///< of token_double
    } value = {0};

    bool is_symbol(char symbol) const { return type == token_symbol && *text == symbol; }
    /// The looser test: a quoted text that begins with the symbol passes for it.
    bool starts_with(char symbol) const { return *text == symbol; }
};

/// Walks a text that ends at its first NUL. The text must outlive the reader.
///
/// Reading functions start with the cursor before a value and leave it behind the value; the token that
/// follows is not looked at until somebody needs it. Lines and columns are counted when an error is raised, not before.
class reader {
public:
    static constexpr std::uint64_t no_limit = ~std::uint64_t{0};

    explicit reader(const std::string& text) : reader(text.c_str(), text.c_str() + text.size()) {}
    /// Null counts as empty. With a limit the text ends there at the latest.
    explicit reader(const char* text, std::uint64_t limit = no_limit);
    reader(const reader&) = delete;
    reader& operator=(const reader&) = delete;

    /// Moves to the next token. Raises on text that is no token.
    void next();
    /// Moves the cursor one character, not past the end.
    void take() { cursor_ += ended() ? 0 : 1; }
    /// Reads on from a number's first character; the current token holds its type, sign and first digit.
    void parser_number();
    /// Raises `exception` with the cursor's line and column.
    [[noreturn]] void error(const char* text) const;

    const token& current() const { return current_; }
    bool ended() const { return *cursor_ == '\0'; }
    /// Puts the cursor back to the start of the current token.
    void unread() { cursor_ = token_start_; }

    const char* cursor() const { return cursor_; }
    void set_cursor(const char* cursor) { cursor_ = cursor; }
    /// The NUL that ends the buffer, behind or at the end of the text.
    const char* buffer_end() const { return buffer_end_; }

private:
    reader(const char* text, const char* buffer_end)
        : input_(text), cursor_(text), buffer_end_(buffer_end), token_start_(text) {}

    void quoted_string(const char* start);
    void bare_word(const char* start);
    const char* exponent(const char* at);
    void end_of_text(const char* at);
    void block_comment(const char* start);

    std::string limited_;        // a copy of the text up to its limit, where there is one
    char byte_at_limit_ = '\0';  // what the end token shows
    const char* input_;
    const char* cursor_;
    const char* buffer_end_;
    const char* token_start_;
    token current_;
};

/// Passes one value, whatever it is. A text that ends inside an array that is passed keeps the loop waiting
/// for its closing bracket for ever: texts from outside are checked before they come here.
void skip(reader& in);

/// Undoes the escapes of a quoted string. False for an escape that doesn't exist, for U+0000 and for less
/// than four hexadecimal digits; surrogates are kept as two characters.
bool escape_string(std::string& out, const char* text, std::uint64_t length);

}  // namespace ajson
