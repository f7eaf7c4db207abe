#include "PluralRule.h"
#include "PluralRuleTable.h"

#include <algorithm>
#include <iterator>

namespace qor_lang {

namespace {

// Real rules nest a handful of levels (Arabic: six forms in a chain); these bounds keep a hostile
// file from exhausting the stack in the parser or in formFor.
constexpr unsigned kMaxDepth = 64;
constexpr std::size_t kMaxNodes = 1024;
constexpr unsigned kMaxForms = 6;

bool isSpace(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}
bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}
char lowerAscii(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

} // namespace

class PluralRule::Parser {
public:
    Parser(std::string_view text, PluralRule& rule) : text_(text), rule_(rule) {}

    bool header()
    {
        unsigned long count = 0;
        if (!word("nplurals") || !symbol("=") || !number(count) || !symbol(";") || !word("plural") || !symbol("="))
            return false;
        if (count < 1 || count > kMaxForms)
            return false;
        rule_.count_ = static_cast<unsigned>(count);
        auto root = conditional();
        if (!root)
            return false;
        rule_.root_ = *root;
        symbol(";");
        skipSpace();
        return pos_ == text_.size();
    }

private:
    using Index = std::optional<std::uint16_t>;

    void skipSpace()
    {
        while (pos_ < text_.size() && isSpace(text_[pos_]))
            ++pos_;
    }
    bool symbol(std::string_view s)
    {
        skipSpace();
        if (text_.substr(pos_, s.size()) != s)
            return false;
        pos_ += s.size();
        return true;
    }
    bool word(std::string_view s)
    {
        if (!symbol(s))
            return false;
        // "pluralx" is no keyword
        return pos_ >= text_.size() ||
               !(isDigit(text_[pos_]) || (lowerAscii(text_[pos_]) >= 'a' && lowerAscii(text_[pos_]) <= 'z'));
    }
    // A comparison operator that is not the start of a longer one ("<" of "<=", "=" of "==").
    bool exactSymbol(std::string_view s)
    {
        skipSpace();
        if (text_.substr(pos_, s.size()) != s)
            return false;
        if (pos_ + s.size() < text_.size() && text_[pos_ + s.size()] == '=' && s.size() == 1)
            return false;
        pos_ += s.size();
        return true;
    }
    bool number(unsigned long& out)
    {
        skipSpace();
        if (pos_ >= text_.size() || !isDigit(text_[pos_]))
            return false;
        unsigned long value = 0;
        while (pos_ < text_.size() && isDigit(text_[pos_])) {
            const unsigned digit = static_cast<unsigned>(text_[pos_++] - '0');
            if (value > (static_cast<unsigned long>(-1) - digit) / 10)
                return false;
            value = value * 10 + digit;
        }
        out = value;
        return true;
    }

    Index add(Op op, std::uint16_t a = 0, std::uint16_t b = 0, std::uint16_t c = 0, unsigned long value = 0)
    {
        if (rule_.nodes_.size() >= kMaxNodes)
            return std::nullopt;
        rule_.nodes_.push_back(Node{op, a, b, c, value});
        return static_cast<std::uint16_t>(rule_.nodes_.size() - 1);
    }

    struct DepthGuard {
        unsigned& depth;
        explicit DepthGuard(unsigned& d) : depth(++d) {}
        ~DepthGuard() { --depth; }
        bool tooDeep() const { return depth > kMaxDepth; }
    };

    Index conditional()
    {
        DepthGuard guard(depth_);
        if (guard.tooDeep())
            return std::nullopt;
        Index condition = binary(0);
        if (!condition || !symbol("?"))
            return condition;
        Index whenTrue = conditional();
        if (!whenTrue || !symbol(":"))
            return std::nullopt;
        Index whenFalse = conditional();
        if (!whenFalse)
            return std::nullopt;
        return add(Op::Conditional, *condition, *whenTrue, *whenFalse);
    }

    // Binary operators by C precedence, loosest first; each level is left-associative.
    struct Level {
        struct Entry {
            std::string_view text;
            Op op;
        };
        Entry entries[4];
    };
    static constexpr Level kLevels[] = {
        {{{"||", Op::Or}}},
        {{{"&&", Op::And}}},
        {{{"==", Op::Equal}, {"!=", Op::NotEqual}}},
        {{{"<=", Op::LessEqual}, {">=", Op::GreaterEqual}, {"<", Op::Less}, {">", Op::Greater}}},
        {{{"+", Op::Add}, {"-", Op::Subtract}}},
        {{{"*", Op::Multiply}, {"/", Op::Divide}, {"%", Op::Modulo}}},
    };

    Index binary(std::size_t level)
    {
        if (level == std::size(kLevels))
            return unary();
        Index left = binary(level + 1);
        while (left) {
            const Level::Entry* found = nullptr;
            for (const auto& entry : kLevels[level].entries)
                if (!entry.text.empty() && exactSymbol(entry.text)) {
                    found = &entry;
                    break;
                }
            if (!found)
                break;
            Index right = binary(level + 1);
            if (!right)
                return std::nullopt;
            left = add(found->op, *left, *right);
        }
        return left;
    }

    Index unary()
    {
        DepthGuard guard(depth_);
        if (guard.tooDeep())
            return std::nullopt;
        if (exactSymbol("!")) {
            Index operand = unary();
            return operand ? add(Op::Not, *operand) : std::nullopt;
        }
        if (symbol("(")) {
            Index inner = conditional();
            return inner && symbol(")") ? inner : std::nullopt;
        }
        unsigned long value = 0;
        if (number(value))
            return add(Op::Number, 0, 0, 0, value);
        if (word("n"))
            return add(Op::Variable);
        return std::nullopt;
    }

    std::string_view text_;
    PluralRule& rule_;
    std::size_t pos_ = 0;
    unsigned depth_ = 0;
};

std::optional<PluralRule> PluralRule::parse(std::string_view text)
{
    PluralRule rule;
    // Each node takes at least one character of the text: one allocation, whatever the rule.
    rule.nodes_.reserve(std::min(text.size(), kMaxNodes));
    Parser parser(text, rule);
    if (!parser.header())
        return std::nullopt;
    return rule;
}

unsigned long PluralRule::evaluate(std::uint16_t index, unsigned long n, bool& failed) const noexcept
{
    const Node& node = nodes_[index];
    auto a = [&] { return evaluate(node.a, n, failed); };
    auto b = [&] { return evaluate(node.b, n, failed); };
    switch (node.op) {
    case Op::Number: return node.value;
    case Op::Variable: return n;
    case Op::Not: return !a();
    case Op::Multiply: return a() * b();
    case Op::Divide:
    case Op::Modulo: {
        const unsigned long left = a(), right = b();
        if (right == 0) {
            failed = true;
            return 0;
        }
        return node.op == Op::Divide ? left / right : left % right;
    }
    case Op::Add: return a() + b();
    case Op::Subtract: return a() - b();
    case Op::Less: return a() < b();
    case Op::LessEqual: return a() <= b();
    case Op::Greater: return a() > b();
    case Op::GreaterEqual: return a() >= b();
    case Op::Equal: return a() == b();
    case Op::NotEqual: return a() != b();
    case Op::And: return a() && b();
    case Op::Or: return a() || b();
    case Op::Conditional: return a() ? b() : evaluate(node.c, n, failed);
    }
    return 0;
}

unsigned PluralRule::formFor(unsigned long n) const noexcept
{
    if (nodes_.empty())
        return 0;
    bool failed = false;
    const unsigned long form = evaluate(root_, n, failed);
    return failed || form >= count_ ? 0 : static_cast<unsigned>(form);
}

const char* findPluralRule(std::string_view language)
{
    auto less = [](std::string_view a, std::string_view b) {
        return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(),
                                            [](char x, char y) { return lowerAscii(x) < lowerAscii(y); });
    };
    const auto* first = detail::kPluralRuleRows;
    const auto* last = first + detail::kPluralRuleRowCount;
    const auto* row =
        std::lower_bound(first, last, language,
                         [&](const detail::PluralRuleRow& r, std::string_view key) { return less(r.language, key); });
    if (row == last || less(language, row->language))
        return nullptr;
    return row->rule;
}

} // namespace qor_lang
