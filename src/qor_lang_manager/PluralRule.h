#pragma once

#include <cstdint>
#include <optional>
#include <string_view>
#include <vector>

namespace qor_lang {

// A catalogue's plural rule in gettext's notation, "nplurals=N; plural=EXPR;", where EXPR is a C
// expression on the unsigned count n. Parsed once into a small tree; evaluating it allocates nothing,
// so a look-up may call formFor on its hot path. Copyable; immutable after parse.
class PluralRule {
public:
    // EXPR may use ?:, ||, &&, ==, !=, <, <=, >, >=, %, /, *, +, -, !, parentheses and decimal literals,
    // with C's precedence. std::nullopt on any syntax error, an N outside 1..6, a literal that does not
    // fit, or nesting deeper than a real rule ever needs (a guard for untrusted files).
    static std::optional<PluralRule> parse(std::string_view text);

    unsigned count() const noexcept { return count_; }

    // The form for n. Arithmetic wraps like C's unsigned long; a division or remainder by zero, or a
    // result >= count(), gives form 0, as gettext does for a rule that answers out of range.
    unsigned formFor(unsigned long n) const noexcept;

private:
    enum class Op : std::uint8_t {
        Number,
        Variable,
        Not,
        Multiply,
        Divide,
        Modulo,
        Add,
        Subtract,
        Less,
        LessEqual,
        Greater,
        GreaterEqual,
        Equal,
        NotEqual,
        And,
        Or,
        Conditional
    };
    struct Node {
        Op op;
        std::uint16_t a = 0, b = 0, c = 0; // operand node indices
        unsigned long value = 0; // Op::Number
    };
    class Parser;

    PluralRule() = default;
    unsigned long evaluate(std::uint16_t node, unsigned long n, bool& failed) const noexcept;

    std::vector<Node> nodes_;
    std::uint16_t root_ = 0;
    unsigned count_ = 1;
};

// The CLDR-derived gettext rule for a language ("ru", "ar", "ja"; ASCII case ignored; a few regional
// variants such as "pt-PT" are listed under their full tag), or nullptr when the table has none.
const char* findPluralRule(std::string_view language);

// Everything "nplurals=2; plural=(n != 1);" answers: English-like grammar, gettext's own default.
inline constexpr std::string_view kDefaultPluralRule = "nplurals=2; plural=(n != 1);";

} // namespace qor_lang
