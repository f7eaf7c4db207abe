#pragma once
// Checks on the error a call must throw. A call that throws nothing fails the test.

#include <gtest/gtest.h>

#include <string>

namespace kore_test {

// Runs `call`, which must throw an E, and hands the error to `check`.
template <class E, class F, class Check>
void expectThrown(F&& call, Check&& check)
{
    try {
        call();
        ADD_FAILURE() << "no error";
    } catch (const E& e) {
        check(e);
    }
}

// The description of the E that `call` throws, "<no error>" when it throws none.
template <class E, class F>
std::string descriptionOf(F&& call)
{
    std::string description = "<no error>";
    expectThrown<E>(call, [&](const E& e) { description = e.getDescription()->toUTF8(); });
    return description;
}

} // namespace kore_test
