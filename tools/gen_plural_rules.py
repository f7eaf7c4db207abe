#!/usr/bin/env python3
"""Writes src/qor_lang_manager/PluralRuleTable.cpp from CLDR's plural rules (Debian's unicode-cldr-core).

Each CLDR cardinal rule becomes a gettext rule ("nplurals=N; plural=EXPR;") for whole numbers: the
operands of a visible fraction or exponent (v, w, f, t, c, e) are 0, i is n, and a category that no
whole number reaches (Czech "many" and Russian "other" are for fractions only) is left out, so N counts the forms that a
catalogue written for whole numbers has. Categories keep CLDR's order: zero, one, two, few, many, other.

It also writes tools/qorlang/PluralCategoryTable.cpp: the CLDR category of each of those forms
per language ("one few many" for Russian, "one few other" for Croatian, whose rule is the same), which
qorlang needs to map i18next's "_one", "_few", ... suffixes onto forms.

The output is checked in, so a build needs neither python nor CLDR. --check regenerates in memory and
fails if the checked-in file differs.
"""

import argparse
import functools
import os
import re
import sys
import xml.etree.ElementTree as ElementTree

import generated_source

HERE = os.path.dirname(os.path.abspath(__file__))
DEFAULT_PLURALS_XML = "/usr/share/unicode/cldr/common/supplemental/plurals.xml"
DEFAULT_OUTPUT = os.path.join(HERE, os.pardir, "src", "qor_lang_manager", "PluralRuleTable.cpp")
DEFAULT_CATEGORIES_OUTPUT = os.path.join(HERE, "qorlang", "PluralCategoryTable.cpp")

CATEGORY_ORDER = ["zero", "one", "two", "few", "many", "other"]
WHOLE_NUMBER_OPERANDS = {"n", "i"}
FRACTION_OPERANDS = {"v", "w", "f", "t", "c", "e"}  # all 0 for a whole number

RELATION = re.compile(r"^([a-z])\s*(?:%\s*(\d+))?\s*(!=|=)\s*([\d.,\s]+)$")


class RuleError(Exception):
    pass


def parse_ranges(text):
    ranges = []
    for item in text.split(","):
        item = item.strip()
        if ".." in item:
            low, high = item.split("..")
            ranges.append((int(low), int(high)))
        else:
            ranges.append((int(item), int(item)))
    return ranges


def relation(text):
    """A C expression for one relation, or True/False when it does not depend on a whole number."""
    match = RELATION.match(text.strip())
    if not match:
        raise RuleError("unknown relation %r" % text)
    operand, modulus, operator, ranges = match.groups()
    ranges = parse_ranges(ranges)
    if operand in FRACTION_OPERANDS:
        inside = any(low <= 0 <= high for low, high in ranges)
        return inside if operator == "=" else not inside
    if operand not in WHOLE_NUMBER_OPERANDS:
        raise RuleError("unknown operand %r" % operand)
    x = "n" if modulus is None else "n%%%s" % modulus
    parts = []
    for low, high in ranges:
        if operator == "=":
            if low == high:
                parts.append("%s==%d" % (x, low))
            elif low == 0:
                parts.append("%s<=%d" % (x, high))
            else:
                parts.append("%s>=%d && %s<=%d" % (x, low, x, high))
        else:
            if low == high:
                parts.append("%s!=%d" % (x, low))
            elif low == 0:
                parts.append("%s>%d" % (x, high))
            else:
                parts.append("(%s<%d || %s>%d)" % (x, low, x, high))
    if operator == "=":
        return parts[0] if len(parts) == 1 else "(" + " || ".join(parts) + ")"
    return " && ".join(parts)


def condition(text):
    """A C expression for a CLDR condition ("or" of "and"s), or True/False when constant."""
    terms = []
    for and_text in text.split(" or "):
        parts = []
        for relation_text in and_text.split(" and "):
            value = relation(relation_text)
            if value is False:
                parts = None
                break
            if value is not True:
                parts.append(value)
        if parts is None:
            continue
        if not parts:
            return True
        terms.append(" && ".join(parts))
    if not terms:
        return False
    return " || ".join(terms)


# Whole numbers that reach every category a rule can give them: every remainder by 10 up to 100000
# (Cornish tests n % 100000), and around the multiples of a million that French-like rules single out.
SAMPLE = list(range(0, 100200)) + [k * 1000000 + j for k in range(1, 4) for j in range(0, 200)]


def predicate(c_condition):
    return eval("lambda n: " + c_condition.replace("&&", " and ").replace("||", " or "))


@functools.lru_cache(maxsize=None)
def gettext_rule_of(rule_items):
    return gettext_rule(dict(rule_items))


def gettext_rule(rules):
    """rules: {category: CLDR condition text}. The gettext rule for whole numbers and the category
    of each of its forms."""
    conditions = []
    names = []
    for category in CATEGORY_ORDER[:-1]:
        if category not in rules:
            continue
        value = condition(rules[category])
        if value is False:
            continue
        if value is True:
            raise RuleError("category %s holds every whole number" % category)
        conditions.append(value)
        names.append(category)
    # Keep only the forms that some whole number gets (Russian "other" is for fractions only).
    tests = [predicate(c) for c in conditions]
    reached = set()
    for n in SAMPLE:
        reached.add(next((i for i, test in enumerate(tests) if test(n)), len(tests)))
    kept = [c for i, c in enumerate(conditions) if i in reached]
    kept_names = [name for i, name in enumerate(names) if i in reached] + ["other"]
    if len(conditions) not in reached and kept:
        kept.pop()  # the last reached category becomes the one that needs no test
        kept_names.pop()
    if not kept:
        return "nplurals=1; plural=0;", ("other",)
    chain = " : ".join("%s ? %d" % (c, index) for index, c in enumerate(kept))
    return "nplurals=%d; plural=(%s : %d);" % (len(kept) + 1, chain, len(kept)), tuple(kept_names)


def load_rows(path):
    root = ElementTree.parse(path).getroot()
    rows = {}
    for plurals in root.iter("plurals"):
        if plurals.get("type", "cardinal") != "cardinal":
            continue
        for rule_set in plurals.iter("pluralRules"):
            rules = {}
            for rule in rule_set.iter("pluralRule"):
                rules[rule.get("count")] = (rule.text or "").split("@")[0].strip()
            text = gettext_rule_of(tuple(sorted(rules.items())))
            for locale in rule_set.get("locales").split():
                if locale == "root":
                    continue
                rows[locale.replace("_", "-").lower()] = text
    return sorted(rows.items())


def render_categories(rows):
    lines = [
        "// Generated by tools/gen_plural_rules.py from CLDR's plurals.xml (Debian's unicode-cldr-core).",
        "// Do not edit; run the generator instead.",
        '#include "PluralCategories.h"',
        "",
        "#include <iterator>",
        "",
        "namespace qorlang::detail {",
        "",
        "extern const PluralCategoryRow kPluralCategoryRows[] = {",
    ]
    lines += ['    {"%s", "%s"},' % (language, " ".join(names)) for language, (_, names) in rows]
    lines += [
        "};",
        "extern const std::size_t kPluralCategoryRowCount = std::size(kPluralCategoryRows);",
        "",
        "}  // namespace qorlang::detail",
        "",
    ]
    return "\n".join(lines)


def render(rows):
    rows = [(language, rule) for language, (rule, _) in rows]
    rules = sorted(set(rule for _, rule in rows))
    index = {rule: i for i, rule in enumerate(rules)}
    lines = [
        "// Generated by tools/gen_plural_rules.py from CLDR's plurals.xml (Debian's unicode-cldr-core).",
        "// Do not edit; run the generator instead.",
        '#include "PluralRuleTable.h"',
        "",
        "#include <iterator>",
        "",
        "namespace qor_lang::detail {",
        "",
        "namespace {",
    ]
    lines += ['constexpr char kRule%d[] = "%s";' % (index[rule], rule) for rule in rules]
    lines += ["}  // namespace", "", "extern const PluralRuleRow kPluralRuleRows[] = {"]
    lines += ['    {"%s", kRule%d},' % (language, index[rule]) for language, rule in rows]
    lines += [
        "};",
        "extern const std::size_t kPluralRuleRowCount = std::size(kPluralRuleRows);",
        "",
        "}  // namespace qor_lang::detail",
        "",
    ]
    return "\n".join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    parser.add_argument("--plurals", default=DEFAULT_PLURALS_XML, help="CLDR's supplemental/plurals.xml")
    parser.add_argument("--output", default=DEFAULT_OUTPUT, help="the generated C++ file")
    parser.add_argument("--categories-output", default=DEFAULT_CATEGORIES_OUTPUT,
                        help="the generated C++ file of form categories for qorlang")
    parser.add_argument("--check", action="store_true", help="only compare with the existing output")
    args = parser.parse_args()

    try:
        rows = load_rows(args.plurals)
    except (OSError, ElementTree.ParseError, RuleError, ValueError) as error:
        print("cannot read the CLDR plural rules in %s: %s" % (args.plurals, error), file=sys.stderr)
        return 2
    summary = "%d languages, %d distinct rules" % (len(rows), len(set(rule for _, (rule, _) in rows)))
    status = 0
    for output, text in ((args.output, render(rows)), (args.categories_output, render_categories(rows))):
        status = status or generated_source.check_or_write(output, text, args.check, "tools/gen_plural_rules.py", summary)
    return status


if __name__ == "__main__":
    sys.exit(main())
