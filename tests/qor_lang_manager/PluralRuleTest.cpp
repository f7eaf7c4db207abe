#include "qor_lang_manager/PluralRule.h"
#include "PluralModels.h"
#include "qor_lang_manager/PluralRuleTable.h"

#include <gtest/gtest.h>

#include <functional>
#include <set>
#include <string>

using qor_lang::findPluralRule;
using qor_lang::PluralRule;

namespace {

using Model = std::function<unsigned long(unsigned long)>;

void expectMatchesModel(const std::string& text, unsigned count, const Model& model)
{
    SCOPED_TRACE(text);
    auto rule = PluralRule::parse(text);
    ASSERT_TRUE(rule.has_value());
    EXPECT_EQ(rule->count(), count);
    for (unsigned long n = 0; n <= 1200; ++n) {
        const unsigned long expected = model(n);
        ASSERT_EQ(rule->formFor(n), expected < count ? expected : 0) << "n=" << n;
    }
}

} // namespace

// Operators, precedence and associativity against the same expression compiled by C++: every result
// is taken modulo 6 so that it always names one of six forms.
TEST(PluralRuleTest, ExpressionsEvaluateAsInC)
{
    const std::pair<const char*, Model> rows[] = {
        {"n+2*3-1", [](unsigned long n) { return n + 2 * 3 - 1; }},
        {"n-3-1", [](unsigned long n) { return n - 3 - 1; }}, // left-assoc, wraps below zero
        {"100/n/2", [](unsigned long n) { return n ? 100 / n / 2 : 0; }},
        {"n*7%5+n%3*2", [](unsigned long n) { return n * 7 % 5 + n % 3 * 2; }},
        {"(n+1)*(n+2)", [](unsigned long n) { return (n + 1) * (n + 2); }},
        {"n<5==n>2", [](unsigned long n) { return (n < 5) == (n > 2); }},
        {"n%4<=2==n%3>=1", [](unsigned long n) { return (n % 4 <= 2) == (n % 3 >= 1); }},
        {"!n+!!n*2+!(n%2)*3", [](unsigned long n) { return !n + !!n * 2 + !(n % 2) * 3; }},
        {"n==1||n==2&&n!=2||n>10&&n<20",
         [](unsigned long n) { return n == 1 || (n == 2 && n != 2) || (n > 10 && n < 20); }},
        {"n?n%2?1:2:3", [](unsigned long n) { return n ? (n % 2 ? 1 : 2) : 3; }},
        {"n<2?0:n<4?1:n<8?2:5", [](unsigned long n) { return n < 2   ? 0
                                                             : n < 4 ? 1
                                                             : n < 8 ? 2
                                                                     : 5; }},
        {"n==0||10/n>2", [](unsigned long n) { return n == 0 || 10 / n > 2; }}, // short-circuit guards the division
        {" ( n %\t10 ) \n", [](unsigned long n) { return n % 10; }},
    };
    for (const auto& [expression, model] : rows)
        expectMatchesModel(std::string("nplurals=6; plural=(") + expression + ")%6;", 6,
                           [&](unsigned long n) { return model(n) % 6; });
}

// A division by zero or an answer beyond the forms picks form 0, as gettext does; never a crash.
TEST(PluralRuleTest, OutOfRangeAnswersPickTheFirstForm)
{
    expectMatchesModel("nplurals=2; plural=n;", 2, [](unsigned long n) { return n; });
    expectMatchesModel("nplurals=3; plural=1+10/n;", 3, [](unsigned long n) { return n ? 1 + 10 / n : 0; });
    expectMatchesModel("nplurals=3; plural=n%0;", 3, [](unsigned long) { return 0; });
    // The largest literal that fits; one more does not.
    const unsigned long largest = static_cast<unsigned long>(-1);
    auto big = PluralRule::parse("nplurals=2; plural=n>" + std::to_string(largest - 1) + ";");
    ASSERT_TRUE(big);
    EXPECT_EQ(big->formFor(largest), 1u);
    EXPECT_EQ(big->formFor(largest - 1), 0u);
    EXPECT_FALSE(PluralRule::parse("nplurals=2; plural=" + std::to_string(largest) + "0;"));
}

TEST(PluralRuleTest, RejectsWhatIsNoRule)
{
    for (const char* text :
         {"", "nplurals=2;", "plural=n!=1; nplurals=2;", "nplurals=0; plural=0;", "nplurals=7; plural=0;",
          "nplurals=2 plural=n!=1;", "nplurals=2; plural=n!=1;;", "nplurals=2; plural=(n!=1;",
          "nplurals=2; plural=n!=1);", "nplurals=2; plural=n=1;", "nplurals=2; plural=n!=;", "nplurals=2; plural=-n;",
          "nplurals=2; plural=n|1;", "nplurals=2; plural=m;", "nplurals=2; plural=nn;", "nplurals=2; plural=n ? 1;",
          "nplurals=2; plural=99999999999999999999;", "nplurals=2; plural=n!=1; extra", "nplurals=2; pluralx=n;"})
        EXPECT_FALSE(PluralRule::parse(text).has_value()) << text;
    std::string chain = "nplurals=2; plural=n";
    for (int i = 0; i < 2000; ++i)
        chain += "+n";
    for (const std::string& text : {std::string("nplurals=2; plural=n\0;", 21), chain + ";",
                                    "nplurals=2; plural=" + std::string(200, '(') + "n" + std::string(200, ')') + ";"})
        EXPECT_FALSE(PluralRule::parse(text).has_value()) << text.substr(0, 60);
    // The spellings real catalogues use are accepted.
    for (const char* text : {"nplurals=1; plural=0;", "nplurals=2; plural=n != 1", "  nplurals = 2 ;plural = (n>1) ; ",
                             "nplurals=6; plural=((((((n))))));"})
        EXPECT_TRUE(PluralRule::parse(text).has_value()) << text;
}

// The generated table: every rule parses, its count is what its text says, and each form is
// reached by some whole number.
TEST(PluralRuleTest, TableRulesAreWellFormedAndReachEveryForm)
{
    ASSERT_GT(qor_lang::detail::kPluralRuleRowCount, 150u);
    for (std::size_t i = 0; i < qor_lang::detail::kPluralRuleRowCount; ++i) {
        const auto& row = qor_lang::detail::kPluralRuleRows[i];
        SCOPED_TRACE(row.language);
        EXPECT_TRUE(i == 0 || std::string(qor_lang::detail::kPluralRuleRows[i - 1].language) < row.language);
        auto rule = PluralRule::parse(row.rule);
        ASSERT_TRUE(rule);
        EXPECT_EQ(std::string(row.rule).substr(0, 11), "nplurals=" + std::to_string(rule->count()) + ";");
        std::set<unsigned> reached;
        for (unsigned long n = 0; n < 110000; n += n < 2000 ? 1 : 7)
            reached.insert(rule->formFor(n));
        for (unsigned long k = 1; k <= 3; ++k)
            reached.insert(rule->formFor(k * 1000000));
        EXPECT_EQ(reached.size(), rule->count());
    }
}

// The well-known languages answer as their grammar demands (more of them in PluralLookupTest);
// languages are found in any letter case.
TEST(PluralRuleTest, KnownLanguagesFollowTheirGrammar)
{
    using namespace plural_model;
    const auto czech = [](unsigned long n) -> unsigned long { return n == 1 ? 0 : n >= 2 && n <= 4 ? 1 : 2; };
    const auto slovenian = [](unsigned long n) -> unsigned long {
        return n % 100 == 1 ? 0 : n % 100 == 2 ? 1 : n % 100 == 3 || n % 100 == 4 ? 2 : 3;
    };
    const struct {
        const char* language;
        unsigned count;
        Model model;
    } rows[] = {{"DE", 2, notOne}, {"Uk", 3, slavic}, {"cs", 3, czech}, {"sl", 4, slovenian}};
    for (const auto& row : rows) {
        const char* text = findPluralRule(row.language);
        ASSERT_NE(text, nullptr) << row.language;
        expectMatchesModel(text, row.count, row.model);
    }
    EXPECT_STREQ(findPluralRule("pt-PT"), findPluralRule("PT-pt"));
    EXPECT_STRNE(findPluralRule("pt-PT"), findPluralRule("pt"));
    for (const char* unknown : {"", "x", "zz", "ruu", "r", "root", "de-DE"})
        EXPECT_EQ(findPluralRule(unknown), nullptr) << unknown;
    expectMatchesModel(std::string(qor_lang::kDefaultPluralRule), 2, notOne);
}
